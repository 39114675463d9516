#include "results/LcfGraph.h"

#include "display/FramePainter.h"
#include "display/PlotLines.h"
#include "results/Dot.h"
#include "results/GridPainter.h"

#include <QPainter>

namespace
{

constexpr double roomBesideLine = 0.2; // in valences
const QColor diagonalColor(0, 200, 0);

// Where both methods agree.
void drawDiagonal(QPainter& painter, const ChCoord& coord, const ReferenceValences& valences)
{
    PlotLines diagonal(coord);
    diagonal.add(valences.ref1, valences.ref1, valences.ref2, valences.ref2);
    diagonal.draw(painter, diagonalColor);
}

} // namespace

void drawLcfGraph(QPainter& painter, GraphFrame& frame, const std::vector<LCFvs4PSPoint>& points,
                  const ReferenceValences& valences)
{
    if (!beginGraph(painter, frame, !points.empty()))
        return;
    const double low = valences.ref1 - roomBesideLine;
    const double high = valences.ref2 + roomBesideLine;
    frame.setRangeOnce(low, low, high, high);
    const ChCoord& coord = frame.coord;
    const GridSteps steps = valenceSteps(valences.ref1, valences.ref2);
    drawGridColumns(painter, coord, gridColumns(coord, steps));
    drawGridRows(painter, coord, gridRows(coord, steps));
    drawDiagonal(painter, coord, valences);
    painter.setPen(Qt::black);
    for (const LCFvs4PSPoint& point : points)
        drawDot(painter, dotPixel(coord, point.lcfValence, point.psValence));
    const LCFvs4PSPoint& newest = points.back();
    painter.setPen(Qt::red);
    drawRing(painter, dotPixel(coord, newest.lcfValence, newest.psValence));
    drawGraphFrame(painter, coord, true);
}

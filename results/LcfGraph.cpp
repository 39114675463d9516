#include "results/LcfGraph.h"

#include "display/DispABase.h"
#include "display/PlotLines.h"
#include "results/Dot.h"

namespace
{

constexpr double roomAround = 0.2; // in valences
const QColor diagonalColor(0, 200, 0);

// Where both methods agree.
void drawDiagonal(const ChCoord& coord, QPainter* painter, const ReferenceValences& valences)
{
    PlotLines diagonal(coord);
    diagonal.add(valences.ref1, valences.ref1, valences.ref2, valences.ref2);
    diagonal.draw(painter, diagonalColor);
}

} // namespace

void drawLcfGraph(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                  const std::vector<LCFvs4PSPoint>& points, const ReferenceValences& valences)
{
    if (!beginGraph(panel, painter, titles, !points.empty()))
        return;
    const double low = valences.ref1 - roomAround;
    const double high = valences.ref2 + roomAround;
    panel->setRangeOnce(low, low, high, high);
    const ChCoord& coord = panel->DispA->coord;
    const GridSteps steps = valenceSteps(valences.ref1, valences.ref2);
    drawGridColumns(coord, painter, gridColumns(coord, steps));
    drawGridRows(coord, painter, gridRows(coord, steps));
    drawDiagonal(coord, painter, valences);
    painter->setPen(Qt::black);
    for (const LCFvs4PSPoint& point : points)
        drawDot(painter, dotPixel(coord, point.lcfValence, point.psValence));
    const LCFvs4PSPoint& newest = points.back();
    painter->setPen(Qt::red);
    drawRing(painter, dotPixel(coord, newest.lcfValence, newest.psValence));
    panel->DispA->drawFrame(painter, true);
}

#include "results/HistogramGraph.h"

#include "display/FramePainter.h"
#include "results/GridPainter.h"
#include "results/HistogramBars.h"

#include <QPainter>

namespace
{

const QColor valenceBarColor(255, 200, 200);
const QColor thicknessBarColor(200, 255, 200);

constexpr double roomBelow = 0.1; // of the largest count
constexpr double roomAbove = 1.1;

void drawBars(QPainter& painter, const ChCoord& coord, const HistogramCounts& histogram,
              const QColor& color)
{
    for (const QRect& bar : barRects(coord, histogram))
        painter.fillRect(bar, color);
}

bool beginHistogram(QPainter& painter, GraphFrame& frame, const HistogramCounts& histogram,
                    const AxisEnds& xRange)
{
    if (!beginGraph(painter, frame, !histogram.counts.empty()))
        return false;
    frame.setRangeOnce(xRange.from, -roomBelow * histogram.maxCount, xRange.to,
                       roomAbove * histogram.maxCount);
    return true;
}

void finishHistogram(QPainter& painter, const ChCoord& coord, const HistogramCounts& histogram,
                     const QColor& color)
{
    drawGridRows(painter, coord, gridRows(coord, countSteps(histogram.maxCount)));
    drawBars(painter, coord, histogram, color);
    drawGraphFrame(painter, coord, true);
}

} // namespace

void drawValenceHistogram(QPainter& painter, GraphFrame& frame, const HistogramCounts& histogram,
                          const AxisEnds& xRange, const ReferenceValences& valences)
{
    if (!beginHistogram(painter, frame, histogram, xRange))
        return;
    const ChCoord& coord = frame.coord;
    drawGridColumns(painter, coord, gridColumns(coord, valenceSteps(valences.ref1, valences.ref2)));
    finishHistogram(painter, coord, histogram, valenceBarColor);
}

void drawThicknessHistogram(QPainter& painter, GraphFrame& frame, const HistogramCounts& histogram,
                            const AxisEnds& xRange)
{
    if (!beginHistogram(painter, frame, histogram, xRange))
        return;
    drawGridAtX(painter, frame.coord, tenths());
    finishHistogram(painter, frame.coord, histogram, thicknessBarColor);
}

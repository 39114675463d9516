#include "results/HistogramGraph.h"

#include "display/DispABase.h"
#include "results/HistogramBars.h"

#include <QPainter>

namespace
{

const QColor valenceBarColor(255, 200, 200);
const QColor thicknessBarColor(200, 255, 200);

constexpr double roomBelow = 0.1; // of the largest count
constexpr double roomAbove = 1.1;

void drawBars(const ChCoord& coord, QPainter* painter, const HistogramCounts& histogram,
              const QColor& color)
{
    for (const QRect& bar : barRects(coord, histogram))
        painter->fillRect(bar, color);
}

bool beginHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                    const HistogramCounts& histogram, const AxisEnds& xRange)
{
    if (!beginGraph(panel, painter, titles, !histogram.counts.empty()))
        return false;
    panel->setRangeOnce(xRange.from, -roomBelow * histogram.maxCount, xRange.to,
                        roomAbove * histogram.maxCount);
    return true;
}

void finishHistogram(DispABase* panel, QPainter* painter, const HistogramCounts& histogram,
                     const QColor& color)
{
    const ChCoord& coord = panel->DispA->coord;
    drawGridRows(coord, painter, gridRows(coord, countSteps(histogram.maxCount)));
    drawBars(coord, painter, histogram, color);
    panel->DispA->drawFrame(painter, true);
}

} // namespace

void drawValenceHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                          const HistogramCounts& histogram, const AxisEnds& xRange,
                          const ReferenceValences& valences)
{
    if (!beginHistogram(panel, painter, titles, histogram, xRange))
        return;
    const ChCoord& coord = panel->DispA->coord;
    drawGridColumns(coord, painter, gridColumns(coord, valenceSteps(valences.ref1, valences.ref2)));
    finishHistogram(panel, painter, histogram, valenceBarColor);
}

void drawThicknessHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                            const HistogramCounts& histogram, const AxisEnds& xRange)
{
    if (!beginHistogram(panel, painter, titles, histogram, xRange))
        return;
    drawGridAtX(panel->DispA->coord, painter, tenths());
    finishHistogram(panel, painter, histogram, thicknessBarColor);
}

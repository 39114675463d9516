#include "results/HistogramGraph.h"

#include "display/DispABase.h"
#include "display/Pixel.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

const QColor valenceBarColor(255, 200, 200);
const QColor thicknessBarColor(200, 255, 200);

constexpr double roomBelow = 0.1; // of the largest count
constexpr double roomAbove = 1.1;

// From a place over a length, which reaches to the left or upward where it is negative; a length of
// any size ends where it ends, not where the integers do.
struct Span {
    int first;
    int last;

    Span(double start, double length)
    {
        const double end = std::trunc(start) + std::trunc(length);
        first = truncToInt(std::min(std::trunc(start), end));
        last = truncToInt(std::max(std::trunc(start), end)) - 1;
    }
};

QRect barRect(const ChCoord& coord, const HistogramCounts& histogram, int i, int count)
{
    const double xl = coord.xToScreen(i * histogram.width + histogram.from);
    const double xr = coord.xToScreen((i + 1) * histogram.width + histogram.from);
    const double y0 = coord.yToScreen(0.0);
    const double yc = coord.yToScreen(count);
    if (std::isnan(xl) || std::isnan(xr) || std::isnan(y0) || std::isnan(yc))
        return {};
    const Span x(xl + 1.0, xr - xl - 1.0);
    const Span y(y0, yc - y0);
    return {QPoint(x.first, y.first), QPoint(x.last, y.last)};
}

class BarList
{
public:
    explicit BarList(const QRect& canvas) : m_canvas(canvas) {}

    void add(const QRect& bar)
    {
        const QRect visible = bar & m_canvas;
        if (visible.isEmpty())
            return;
        if (!m_bars.empty() && m_bars.back().left() == visible.left() &&
            m_bars.back().width() == visible.width())
            m_bars.back() |= visible;
        else
            m_bars.push_back(visible);
    }

    std::vector<QRect> take() { return std::move(m_bars); }

private:
    QRect m_canvas;
    std::vector<QRect> m_bars;
};

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

std::vector<QRect> barRects(const ChCoord& coord, const HistogramCounts& histogram)
{
    BarList bars(QRect(0, 0, truncToInt(coord.wx1 - coord.wx0), truncToInt(coord.wy0 - coord.wy1)));
    const int n = static_cast<int>(histogram.counts.size());
    bars.add(barRect(coord, histogram, -1, histogram.under));
    for (int i = 0; i < n; ++i)
        bars.add(barRect(coord, histogram, i, histogram.counts[static_cast<std::size_t>(i)]));
    bars.add(barRect(coord, histogram, n, histogram.over));
    return bars.take();
}

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

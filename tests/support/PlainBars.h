#pragma once

#include "analysis/HistogramCounts.h"
#include "display/ChCoord.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

/// The bars of a histogram, one after another for every bin, each the rectangle from int(xl + 1) of
/// the width int(xr - xl - 1), and from the row of zero to that of the count. Negative lengths
/// reach to the left and upward.
namespace plain
{

struct Stretch {
    int first;
    int end;

    Stretch(double start, double length)
    {
        const double a = std::trunc(start);
        const double b = a + std::trunc(length);
        first = inside(std::min(a, b));
        end = inside(std::max(a, b));
    }

    /// Beyond any canvas it does not matter where.
    static int inside(double v) { return static_cast<int>(std::clamp(v, -1e5, 1e5)); }
};

inline void drawBar(const ChCoord& coord, const HistogramCounts& h, int bin, int count,
                    QPainter& painter, const QColor& color)
{
    const double xl = coord.xToScreen(bin * h.width + h.from);
    const double xr = coord.xToScreen((bin + 1) * h.width + h.from);
    const double y0 = coord.yToScreen(0);
    const double yc = coord.yToScreen(count);
    if (std::isnan(xl) || std::isnan(xr) || std::isnan(y0) || std::isnan(yc))
        return;
    const Stretch x(xl + 1, xr - xl - 1);
    const Stretch y(y0, yc - y0);
    if (x.end > x.first && y.end > y.first)
        painter.fillRect(x.first, y.first, x.end - x.first, y.end - y.first, color);
}

inline void drawBars(const ChCoord& coord, const HistogramCounts& h, QPainter& painter,
                     const QColor& color)
{
    const int n = static_cast<int>(h.counts.size());
    drawBar(coord, h, -1, h.under, painter, color);
    for (int i = 0; i < n; ++i)
        drawBar(coord, h, i, h.counts[static_cast<std::size_t>(i)], painter, color);
    drawBar(coord, h, n, h.over, painter, color);
}

} // namespace plain

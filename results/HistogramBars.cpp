#include "results/HistogramBars.h"

#include "display/Pixel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

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

/// The bars of all bins, those of one place at once.
///
/// The left ends of the bins, as they are rounded, never turn back: which bins start in a column is
/// found by halving. A bar's columns follow from its two ends alone, and its height grows with the
/// count.
class Bars
{
public:
    Bars(const ChCoord& coord, const HistogramCounts& histogram)
        : m_coord(coord), m_histogram(histogram), m_bins(static_cast<int>(histogram.counts.size())),
          m_canvas(QPoint(0, 0), coord.canvasSize()), m_step(coord.dxToScreen(histogram.width)),
          m_ordered(std::isfinite(left(0)) && std::isfinite(left(m_bins)) &&
                    std::isfinite(m_step) && std::isfinite(coord.dyToScreen(1.0))),
          m_distinct(stepsAreDistinct())
    {
    }

    std::vector<QRect> all() const
    {
        BarList bars(m_canvas);
        bars.add(bar(-1, m_histogram.under));
        const int end = endOfVisible();
        for (int i = firstVisible(); i < end;) {
            const int next = m_ordered ? endOfPlace(i, end) : i + 1;
            bars.add(bar(i, highest(i, next)));
            i = next;
        }
        bars.add(bar(m_bins, m_histogram.over));
        return bars.take();
    }

private:
    double left(int bin) const
    {
        return m_coord.xToScreen(bin * m_histogram.width + m_histogram.from);
    }

    QRect bar(int bin, int count) const
    {
        const double xl = left(bin);
        const double xr = left(bin + 1);
        const double y0 = m_coord.yToScreen(0.0);
        const double yc = m_coord.yToScreen(count);
        if (std::isnan(xl) || std::isnan(xr) || std::isnan(y0) || std::isnan(yc))
            return {};
        const Span x(xl + 1.0, xr - xl - 1.0);
        const Span y(y0, yc - y0);
        return {QPoint(x.first, y.first), QPoint(x.last, y.last)};
    }

    /// Whether bins far beside the canvas are known to have no bar on it: bars of ordinary width
    /// end within two pixels of where their bins do.
    bool farBinsAreHidden() const { return m_ordered && m_step != 0.0 && std::fabs(m_step) < 1e12; }

    int firstVisible() const
    {
        if (!farBinsAreHidden())
            return 0;
        return firstWithout(0, m_bins, [this](int i) {
            return m_step > 0.0 ? left(i + 1) < -beside : left(i + 1) > m_canvas.width() + beside;
        });
    }

    int endOfVisible() const
    {
        if (!farBinsAreHidden())
            return m_bins;
        return firstWithout(0, m_bins, [this](int i) {
            return m_step > 0.0 ? left(i) <= m_canvas.width() + beside : left(i) >= -beside;
        });
    }

    /// The highest count of a few bins; that of bins without a pixel does not matter.
    int highest(int from, int to) const
    {
        const auto first = m_histogram.counts.begin();
        if (to - from == 1)
            return first[from];
        return isWithoutPixel(from) ? 0 : *std::max_element(first + from, first + to);
    }

    bool isWithoutPixel(int bin) const
    {
        const double xl = left(bin);
        const Span x(xl + 1.0, left(bin + 1) - xl - 1.0);
        return x.last < x.first;
    }

    /// Whether rounding never lets the two ends of a bin fall together: a step is much larger than
    /// the rounding of all that an end is made of.
    bool stepsAreDistinct() const
    {
        constexpr double roundings = 64.0 * std::numeric_limits<double>::epsilon();
        const double farthest = 2.0 * std::fabs(m_histogram.from) +
                                2.0 * std::fabs(m_bins * m_histogram.width) +
                                std::fabs(m_coord.rx0);
        const double largest =
            std::fabs(m_coord.dxToScreen(farthest)) + std::fabs(m_coord.px0) + 1.0;
        return m_step > roundings * largest;
    }

    /// The first bin at or after `from` of which `holds` is not true any more; it is true up to
    /// some bin.
    template <class Condition>
    int firstWithout(int from, int end, const Condition& holds) const
    {
        while (from < end) {
            const int middle = from + (end - from) / 2;
            if (holds(middle))
                from = middle + 1;
            else
                end = middle;
        }
        return from;
    }

    /// The bin after those that have the columns of bin i. Their ends are the same; or they start
    /// in one column and are so narrow that each has no pixel, or, towards the left, just one.
    int endOfPlace(int i, int end) const
    {
        const double start = left(i);
        const double column = std::trunc(start + 1.0);
        const bool known = m_step < 0.0 || m_distinct;
        const auto together = [&](int next) {
            const double x = left(next);
            return x == start ||
                   (known && std::trunc(x + 1.0) == column && std::fabs(x - start) < 0.5);
        };
        // The ends of bins i to k - 1 are those numbered i to k.
        return std::max(i + 1, firstWithout(i + 1, end + 1, together) - 1);
    }

    static constexpr double beside = 4.0; // pixels

    const ChCoord& m_coord;
    const HistogramCounts& m_histogram;
    int m_bins;
    QRect m_canvas;
    double m_step;   ///< pixels from bin to bin
    bool m_ordered;  ///< all ends are numbers
    bool m_distinct; ///< bins go to the right and no bin's ends fall together
};

} // namespace

std::vector<QRect> barRects(const ChCoord& coord, const HistogramCounts& histogram)
{
    return Bars(coord, histogram).all();
}

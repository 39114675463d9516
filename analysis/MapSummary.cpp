#include "analysis/MapSummary.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

/// Pixels that one task takes. Sums are formed for each task and then in the tasks' order, so that
/// they are the same whoever does which.
constexpr std::size_t summaryTask = std::size_t{1} << 16;

/// A sum that keeps what rounding loses (A. Neumaier, Z. Angew. Math. Mech. 54 (1974) 39).
class Sum
{
public:
    void add(double value)
    {
        const double sum = m_sum + value;
        m_lost +=
            std::abs(m_sum) >= std::abs(value) ? (m_sum - sum) + value : (value - sum) + m_sum;
        m_sum = sum;
    }
    void add(const Sum& other)
    {
        add(other.m_sum);
        add(other.m_lost);
    }
    double total() const { return m_sum + m_lost; }

private:
    double m_sum = 0.0;
    double m_lost = 0.0;
};

/// The values of a task, packed at the beginning of its piece of the array.
struct Piece {
    std::size_t count = 0;
    Sum sum;
    Sum squares;
};

double medianOf(double* values, std::size_t count)
{
    double* const middle = values + count / 2;
    std::nth_element(values, middle, values + count);
    if (count % 2 == 1)
        return *middle;
    return 0.5 * *std::max_element(values, middle) + 0.5 * *middle;
}

/// Forms the spreads of several values of a map, one after another.
class Spreads
{
public:
    explicit Spreads(std::size_t pixels, Workers& workers)
        : m_pixels(pixels), m_pieces((pixels + summaryTask - 1) / summaryTask), m_workers(workers)
    {
    }

    bool makeRoom() { return m_values.resize(m_pixels); }

    /// @param value  std::optional<double>(std::size_t pixel); called from all threads
    template <typename Value>
    Spread of(const Value& value)
    {
        m_workers.run(m_pieces.size(), [&](std::size_t task, unsigned) { collect(task, value); });
        Piece all;
        for (const Piece& piece : m_pieces) {
            all.count += piece.count;
            all.sum.add(piece.sum);
        }
        if (all.count == 0)
            return {};
        const auto count = static_cast<double>(all.count);
        Spread spread;
        spread.mean = all.sum.total() / count;
        m_workers.run(m_pieces.size(),
                      [&](std::size_t task, unsigned) { square(task, *spread.mean); });
        for (const Piece& piece : m_pieces)
            all.squares.add(piece.squares);
        if (all.count > 1)
            spread.deviation = std::sqrt(all.squares.total() / (count - 1.0));
        pack();
        spread.median = medianOf(m_values.data(), all.count);
        return spread;
    }

private:
    template <typename Value>
    void collect(std::size_t task, const Value& value)
    {
        Piece piece;
        const std::size_t first = task * summaryTask;
        const std::size_t last = std::min(first + summaryTask, m_pixels);
        for (std::size_t i = first; i < last; ++i) {
            if (const std::optional<double> number = value(i)) {
                m_values[first + piece.count++] = *number;
                piece.sum.add(*number);
            }
        }
        m_pieces[task] = piece;
    }

    void square(std::size_t task, double mean)
    {
        Piece& piece = m_pieces[task];
        const double* values = m_values.data() + task * summaryTask;
        for (std::size_t i = 0; i < piece.count; ++i)
            piece.squares.add((values[i] - mean) * (values[i] - mean));
    }

    /// All values side by side.
    void pack()
    {
        std::size_t count = 0;
        for (std::size_t task = 0; task < m_pieces.size(); ++task) {
            std::memmove(m_values.data() + count, m_values.data() + task * summaryTask,
                         m_pieces[task].count * sizeof(double));
            count += m_pieces[task].count;
        }
    }

    std::size_t m_pixels;
    std::vector<Piece> m_pieces;
    PixelArray<double> m_values;
    Workers& m_workers;
};

} // namespace

MissingPixels::MissingPixels(const PointRows& rows, const std::vector<MapSource>& sources,
                             const MapResults& results)
    : m_results(results), m_whole(results.size())
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!rows[i].use)
            continue;
        const MapImage& image = sources[i].image;
        m_sizes.push_back({image.size, image.columns});
        m_whole = image.columns == results.columns ? std::min(m_whole, image.size) : 0;
    }
}

bool MissingPixels::isMeasured(std::size_t i) const
{
    const auto columns = static_cast<std::size_t>(m_results.columns);
    const std::size_t x = i % columns;
    const std::size_t y = i / columns;
    return std::all_of(m_sizes.begin(), m_sizes.end(), [x, y](const ImageSize& image) {
        const auto width = static_cast<std::size_t>(std::max(image.columns, 0));
        return x < width && y * width + x < image.pixels;
    });
}

bool MissingPixels::operator()(std::size_t i) const
{
    if (i >= m_whole && !isMeasured(i))
        return true;
    return !std::isfinite(m_results.a[i]) || !std::isfinite(m_results.t[i]);
}

std::optional<MapSummary> summaryOf(const MapResults& results, const MissingPixels& missing,
                                    const ReferenceValences& valences,
                                    const HistogramCounts& histogram, Workers& workers)
{
    MapSummary summary;
    summary.pixels = results.size();
    Spreads spreads(results.size(), workers);
    if (!spreads.makeRoom())
        return std::nullopt;
    using Number = std::optional<double>;
    summary.valence = spreads.of(
        [&](std::size_t i) { return missing(i) ? Number() : valences.mean(results.a[i]); });
    summary.thickness =
        spreads.of([&](std::size_t i) { return missing(i) ? Number() : results.t[i]; });
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (missing(i)) {
            ++summary.missing;
            continue;
        }
        const double valence = valences.mean(results.a[i]);
        summary.below += valence < histogram.from ? 1 : 0;
        summary.above += valence >= histogram.to ? 1 : 0;
    }
    return summary;
}

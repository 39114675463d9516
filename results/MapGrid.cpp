#include "results/MapGrid.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Means of positions along one axis, and whether all lie near theirs.
class AxisMeans
{
public:
    explicit AxisMeans(int count)
        : m_sums(static_cast<std::size_t>(count)), m_counts(static_cast<std::size_t>(count))
    {
    }

    void add(std::size_t i, double position)
    {
        m_sums[i] += position;
        m_counts[i] += 1.0;
    }

    /// Turns the sums into means. Places without a position follow the last ones at their step.
    /// @param step  where there is one place only, or one known
    void finish(double step)
    {
        std::size_t known = 0;
        while (known < m_sums.size() && m_counts[known] > 0.0) {
            m_sums[known] /= m_counts[known];
            ++known;
        }
        if (known > 1)
            step = (m_sums[known - 1] - m_sums[0]) / static_cast<double>(known - 1);
        for (std::size_t i = std::max<std::size_t>(known, 1); i < m_sums.size(); ++i)
            m_sums[i] = m_sums[i - 1] + step;
        m_step = step;
    }

    /// The step between the first and the second place; 0 where there is none.
    double knownStep() const
    {
        if (m_sums.size() < 2 || m_counts[1] == 0.0)
            return 0.0;
        return std::fabs(m_sums[1] / m_counts[1] - m_sums[0] / m_counts[0]);
    }

    bool rises() const { return goesOn(1.0); }
    bool isMonotone() const { return rises() || goesOn(-1.0); }

    /// The edges of the cells, rising.
    std::vector<double> edges() const
    {
        std::vector<double> centres = m_sums;
        if (!rises())
            std::reverse(centres.begin(), centres.end());
        std::vector<double> found;
        found.reserve(centres.size() + 1);
        for (std::size_t i = 0; i + 1 < centres.size(); ++i)
            found.push_back(centres[i] + (centres[i + 1] - centres[i]) / 2.0);
        const double step = std::fabs(m_step);
        const double first = found.empty() ? step / 2.0 : found.front() - centres.front();
        const double last = found.empty() ? step / 2.0 : centres.back() - found.back();
        found.insert(found.begin(), centres.front() - first);
        found.push_back(centres.back() + last);
        return found;
    }

    /// The half of the narrowest step.
    double tolerance() const
    {
        double narrowest = std::fabs(m_step);
        for (std::size_t i = 1; i < m_sums.size(); ++i)
            narrowest = std::min(narrowest, std::fabs(m_sums[i] - m_sums[i - 1]));
        return narrowest / 2.0;
    }

    double operator[](std::size_t i) const { return m_sums[i]; }

private:
    bool goesOn(double sign) const
    {
        for (std::size_t i = 1; i < m_sums.size(); ++i)
            if (!(sign * (m_sums[i] - m_sums[i - 1]) > 0.0))
                return false;
        return true;
    }

    std::vector<double> m_sums;
    std::vector<double> m_counts;
    double m_step = 0.0;
};

std::size_t measuredCount(const MapPixels& pixels)
{
    return pixels.positions ? std::min(pixels.positions->size(), pixels.size()) : 0;
}

/// Calls a function with column, row and position of each pixel that was measured, as long as it
/// returns true.
/// @return whether it always did
template <class Use>
bool forEachMeasured(const MapPixels& pixels, const Use& use)
{
    const std::size_t measured = measuredCount(pixels);
    const auto columns = static_cast<std::size_t>(pixels.columns);
    for (std::size_t i = 0, row = 0; i < measured; ++row)
        for (std::size_t column = 0; column < columns && i < measured; ++column, ++i)
            if (!use(column, row, (*pixels.positions)[i]))
                return false;
    return true;
}

struct Extent {
    double from = 0.0;
    double to = 0.0;

    double length() const { return to - from; }
    void include(double v)
    {
        from = std::min(from, v);
        to = std::max(to, v);
    }
};

struct Extents {
    Extent first;
    Extent second;
    bool usable = false; ///< all numbers are finite, and there are at least two places
};

/// Beyond, the difference of two positions would not be a number.
constexpr double farthest = 1e150;

Extents extentsOf(const MapPosition* positions, std::size_t count)
{
    Extents extents;
    if (count == 0)
        return extents;
    extents.first = {positions[0].first, positions[0].first};
    extents.second = {positions[0].second, positions[0].second};
    bool finite = true;
    for (std::size_t i = 0; i < count; ++i) {
        finite = finite && std::fabs(positions[i].first) < farthest &&
                 std::fabs(positions[i].second) < farthest;
        extents.first.include(positions[i].first);
        extents.second.include(positions[i].second);
    }
    extents.usable =
        finite && (extents.first.length() > 0.0 || extents.second.length() > 0.0 || count == 1);
    return extents;
}

/// Median distance of pixels that lie a number of places apart in the scan; of a sample of them.
double medianDistance(const MapPosition* positions, std::size_t count, std::size_t apart)
{
    constexpr std::size_t sample = 10000;
    std::vector<double> distances;
    if (count <= apart)
        return 0.0;
    const std::size_t pairs = count - apart;
    const std::size_t stride = pairs / sample + 1;
    for (std::size_t i = 0; i < pairs; i += stride) {
        const MapPosition& p = positions[i];
        const MapPosition& q = positions[i + apart];
        const double distance = std::hypot(q.first - p.first, q.second - p.second);
        if (distance > 0.0)
            distances.push_back(distance);
    }
    if (distances.empty())
        return 0.0;
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return *middle;
}

/// An axis of the fine grid on which scattered pixels are laid.
struct FineAxis {
    double from = 0.0; ///< lower edge of the first cell
    double cell = 1.0; ///< width of a cell
    int count = 1;
    double step = 1.0; ///< of the pixels

    FineAxis(const Extent& extent, double pixelStep, int cellsInStep, int most) : step(pixelStep)
    {
        const double length = extent.length() + step;
        cell = std::max(step / cellsInStep, length / most);
        count = std::max(1, static_cast<int>(std::ceil(length / cell - 1e-9)));
        from = extent.from - step / 2.0;
    }

    double place(double position) const { return (position - from) / cell; }
    double reach() const { return std::max(0.5, 0.75 * step / cell); } ///< in cells
    int firstCell(double place) const
    {
        return std::max(0, static_cast<int>(std::ceil(place - reach() - 0.5)));
    }
    int lastCell(double place) const
    {
        return std::min(count - 1, static_cast<int>(std::floor(place + reach() - 0.5)));
    }
    std::vector<double> edges() const
    {
        std::vector<double> found;
        for (int i = 0; i <= count; ++i)
            found.push_back(from + i * cell);
        return found;
    }
};

/// Lays each pixel on the cells around it that no other pixel is nearer to.
std::vector<std::int32_t> nearestPixels(const MapPosition* positions, std::size_t count,
                                        const FineAxis& x, const FineAxis& y)
{
    const std::size_t cells = static_cast<std::size_t>(x.count) * static_cast<std::size_t>(y.count);
    std::vector<std::int32_t> nearest(cells, MapGrid::none);
    std::vector<float> distance(cells, 4.0F);
    for (std::size_t i = 0; i < count; ++i) {
        const double px = x.place(positions[i].first);
        const double py = y.place(positions[i].second);
        for (int row = y.firstCell(py); row <= y.lastCell(py); ++row) {
            const double dy = (row + 0.5 - py) / y.reach();
            for (int column = x.firstCell(px); column <= x.lastCell(px); ++column) {
                const double dx = (column + 0.5 - px) / x.reach();
                const auto here = static_cast<float>(dx * dx + dy * dy);
                const std::size_t cell =
                    static_cast<std::size_t>(row) * static_cast<std::size_t>(x.count) +
                    static_cast<std::size_t>(column);
                if (here < distance[cell]) {
                    distance[cell] = here;
                    nearest[cell] = static_cast<std::int32_t>(i);
                }
            }
        }
    }
    return nearest;
}

/// A pixel far off the others makes the grid no larger than they deserve.
int mostCellsAlong(std::size_t pixels)
{
    return static_cast<int>(
        std::clamp(8.0 * std::sqrt(static_cast<double>(pixels)), 256.0, 4096.0));
}

int cellAt(const std::vector<double>& edges, double place)
{
    if (!(place >= edges.front() && place < edges.back()))
        return -1;
    const auto above = std::upper_bound(edges.begin(), edges.end(), place);
    return static_cast<int>(above - edges.begin()) - 1;
}

} // namespace

MapGrid::MapGrid(const MapPixels& pixels)
{
    if (pixels.size() == 0) {
        xEdges = yEdges = {0.0};
        return;
    }
    const std::size_t measured = measuredCount(pixels);
    const Extents extents = extentsOf(measured > 0 ? pixels.positions->begin() : nullptr, measured);
    if (!extents.usable)
        layCounted(pixels);
    else if (!layRegular(pixels))
        layScattered(pixels);
}

std::ptrdiff_t MapGrid::pixelAt(double x, double y) const
{
    const int column = cellAt(xEdges, x);
    const int row = cellAt(yEdges, y);
    return column < 0 || row < 0 ? none : pixel(column, row);
}

bool MapGrid::layRegular(const MapPixels& pixels)
{
    AxisMeans x(pixels.columns);
    AxisMeans y(pixels.rows);
    forEachMeasured(pixels, [&](std::size_t column, std::size_t row, const MapPosition& position) {
        x.add(column, position.first);
        y.add(row, position.second);
        return true;
    });
    const double largest = std::max(x.knownStep(), y.knownStep());
    const double either = largest > 0.0 ? largest : 1.0;
    for (AxisMeans* means : {&x, &y})
        means->finish(means->knownStep() > 0.0 ? means->knownStep() : either);
    if (!x.isMonotone() || !y.isMonotone())
        return false;
    const double xTolerance = x.tolerance();
    const double yTolerance = y.tolerance();
    const auto isNear = [&](std::size_t column, std::size_t row, const MapPosition& position) {
        return std::fabs(position.first - x[column]) <= xTolerance &&
               std::fabs(position.second - y[row]) <= yTolerance;
    };
    if (!forEachMeasured(pixels, isNear))
        return false;
    xEdges = x.edges();
    yEdges = y.edges();
    m_xFalls = !x.rises();
    m_yFalls = !y.rises();
    return true;
}

void MapGrid::layScattered(const MapPixels& pixels)
{
    constexpr std::size_t fineUpTo = std::size_t{1} << 20;
    const MapPosition* positions = pixels.positions->begin();
    const std::size_t measured = measuredCount(pixels);
    const Extents extents = extentsOf(positions, measured);
    double along = medianDistance(positions, measured, 1);
    double across = medianDistance(positions, measured, static_cast<std::size_t>(pixels.columns));
    along = along > 0.0 ? along : across;
    across = across > 0.0 ? across : along;
    const int cellsInStep = measured <= fineUpTo ? 4 : 2;
    const int mostCells = mostCellsAlong(measured);
    const FineAxis x(extents.first, along, cellsInStep, mostCells);
    const FineAxis y(extents.second, across, cellsInStep, mostCells);
    m_nearest = nearestPixels(positions, measured, x, y);
    xEdges = x.edges();
    yEdges = y.edges();
    std::vector<bool> shown(measured);
    for (const std::int32_t pixel : m_nearest)
        if (pixel != none)
            shown[static_cast<std::size_t>(pixel)] = true;
    hidden = static_cast<std::size_t>(std::count(shown.begin(), shown.end(), false));
}

void MapGrid::layCounted(const MapPixels& pixels)
{
    inPositionUnits = false;
    for (int i = 0; i <= pixels.columns; ++i)
        xEdges.push_back(i + 0.5);
    for (int i = 0; i <= pixels.rows; ++i)
        yEdges.push_back(i + 0.5);
}

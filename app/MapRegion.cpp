#include "app/MapRegion.h"

#include <algorithm>
#include <cmath>

namespace
{

bool hasResult(const MapPixels& pixels, std::size_t i)
{
    return pixels.isMeasured(i) && std::isfinite(pixels.a[i]);
}

/// The cells between rising edges that meet a range: from the first to behind the last.
std::pair<int, int> cellsMeeting(const std::vector<double>& edges, double from, double to)
{
    const auto first = std::upper_bound(edges.begin(), edges.end(), from) - edges.begin() - 1;
    const auto behind = std::lower_bound(edges.begin(), edges.end(), to) - edges.begin();
    const auto cells = static_cast<std::ptrdiff_t>(edges.size()) - 1;
    return {static_cast<int>(std::clamp<std::ptrdiff_t>(first, 0, cells)),
            static_cast<int>(std::clamp<std::ptrdiff_t>(behind, 0, cells))};
}

template <class Value>
RegionMean meanOf(const std::vector<std::size_t>& region, const Value& value)
{
    RegionMean result;
    double sum = 0.0;
    for (const std::size_t i : region) {
        if (!std::isfinite(value(i)))
            continue;
        sum += value(i);
        ++result.count;
    }
    if (result.count == 0)
        return result;
    const double mean = sum / static_cast<double>(result.count);
    result.mean = mean;
    double squares = 0.0;
    for (const std::size_t i : region) {
        if (std::isfinite(value(i)))
            squares += (value(i) - mean) * (value(i) - mean);
    }
    if (result.count > 1)
        result.deviation = std::sqrt(squares / static_cast<double>(result.count - 1));
    return result;
}

} // namespace

std::vector<std::size_t> pixelsIn(const MapPixels& pixels, const MapGrid& grid, const QRectF& area)
{
    const auto [left, right] = cellsMeeting(grid.xEdges, area.left(), area.right());
    const auto [low, high] = cellsMeeting(grid.yEdges, area.top(), area.bottom());
    std::vector<std::size_t> found;
    for (int row = low; row < high; ++row) {
        for (int column = left; column < right; ++column) {
            const std::ptrdiff_t pixel = grid.pixel(column, row);
            if (pixel != MapGrid::none && hasResult(pixels, static_cast<std::size_t>(pixel)))
                found.push_back(static_cast<std::size_t>(pixel));
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<std::size_t> pixelsBetween(const MapPixels& pixels, const QRectF& valenceAndThickness)
{
    const QRectF& area = valenceAndThickness;
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const double valence = pixels.valence(i);
        const double t = pixels.t[i];
        if (valence >= area.left() && valence <= area.right() && t >= area.top() &&
            t <= area.bottom() && hasResult(pixels, i))
            found.push_back(i);
    }
    return found;
}

RegionMean valenceOf(const MapPixels& pixels, const std::vector<std::size_t>& region)
{
    return meanOf(region, [&](std::size_t i) { return pixels.valence(i); });
}

RegionMean thicknessOf(const MapPixels& pixels, const std::vector<std::size_t>& region)
{
    return meanOf(region, [&](std::size_t i) { return pixels.t[i]; });
}

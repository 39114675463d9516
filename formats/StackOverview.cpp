#include "formats/StackOverview.h"

#include "formats/StackMaps.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{

constexpr int longestSide = 2048;
constexpr std::size_t mostPixels = std::size_t{1} << 29;
constexpr std::size_t leastFrames = 3;

/// Pixels that are in memory at once, so that neighbouring frames are read together.
constexpr std::size_t pixelsAtOnce = std::size_t{1} << 23;

Region middleOf(const StackFacts& facts)
{
    Region region{0, 0, std::min(facts.columns, longestSide), std::min(facts.rows, longestSide)};
    region.x = (facts.columns - region.width) / 2;
    region.y = (facts.rows - region.height) / 2;
    return region;
}

std::size_t pixelsOf(const Region& region)
{
    return static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
}

/// Frames evenly spread over the file.
std::vector<std::size_t> someOf(std::size_t frames, std::size_t pixels)
{
    const std::size_t most = std::max(leastFrames, mostPixels / std::max<std::size_t>(1, pixels));
    std::vector<std::size_t> some;
    if (frames <= most) {
        some.resize(frames);
        std::iota(some.begin(), some.end(), std::size_t{0});
        return some;
    }
    for (std::size_t i = 0; i < most; ++i)
        some.push_back(i * (frames - 1) / (most - 1));
    return some;
}

double meanOf(const Frame& frame, std::size_t pixels, std::vector<double>& mut)
{
    double sum = 0.0;
    std::size_t count = 0;
    for (std::size_t first = 0; first < pixels; first += mut.size()) {
        const std::size_t n = std::min(mut.size(), pixels - first);
        addMut(frame, first, n, mut.data(), false);
        for (std::size_t i = 0; i < n; ++i)
            if (std::isfinite(mut[i])) {
                sum += mut[i];
                ++count;
            }
    }
    return sum / static_cast<double>(count);
}

} // namespace

std::optional<FileFault> overviewOf(Stack& stack, const QString& path, StackOverview& overview)
{
    const std::vector<double>& energies = stack.facts().energies;
    overview.region = middleOf(stack.facts());
    const std::size_t pixels = pixelsOf(overview.region);
    overview.frames = someOf(energies.size(), pixels);
    const std::size_t atOnce = std::max<std::size_t>(1, pixelsAtOnce / pixels);
    std::vector<double> mut(std::size_t{1} << 14);
    for (std::size_t first = 0; first < overview.frames.size(); first += atOnce) {
        const auto begin = overview.frames.begin() + static_cast<std::ptrdiff_t>(first);
        const std::size_t n = std::min(atOnce, overview.frames.size() - first);
        FrameSet set;
        if (auto fault =
                stack.read({begin, begin + static_cast<std::ptrdiff_t>(n)}, overview.region, set))
            return fault;
        for (std::size_t k = 0; k < n; ++k) {
            const double mean = meanOf(set.frames[k], pixels, mut);
            if (std::isfinite(mean))
                overview.spectrum.push_back({0.0, energies[overview.frames[first + k]], mean});
        }
    }
    std::stable_sort(
        overview.spectrum.begin(), overview.spectrum.end(),
        [](const SpectrumPoint& a, const SpectrumPoint& b) { return a.energy < b.energy; });
    std::vector<double> sorted = energies;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    overview.energy = *middle;
    std::vector<MapData> images;
    if (auto fault = stackMaps(stack, path, {overview.energy}, overview.region, images))
        return fault;
    overview.image = std::move(images.front());
    return std::nullopt;
}

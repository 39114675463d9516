#include "formats/StackMaps.h"

#include "formats/StackEnergies.h"

#include <algorithm>

namespace
{

/// Pixels of one task.
constexpr std::size_t taskPixels = std::size_t{1} << 14;

using Parts = std::vector<std::vector<FramePart>>;

QString rangeText(const StackFacts& facts)
{
    const auto [low, high] = std::minmax_element(facts.energies.begin(), facts.energies.end());
    return QStringLiteral("%1 to %2 eV").arg(*low, 0, 'g', 10).arg(*high, 0, 'g', 10);
}

std::vector<std::size_t> neededFrames(const Parts& parts)
{
    std::vector<std::size_t> frames;
    for (const auto& image : parts)
        for (const FramePart& part : image)
            frames.push_back(part.frame);
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

SharedPositions positionsOf(const StackFacts& facts, const Region& region, Workers& workers)
{
    const auto width = static_cast<std::size_t>(region.width);
    const auto height = static_cast<std::size_t>(region.height);
    MapPositions positions;
    if (!positions.resize(width * height))
        return nullptr;
    const double stepX = facts.pixelWidth > 0.0 ? facts.pixelWidth : 1.0;
    const double stepY = facts.pixelHeight > 0.0 ? facts.pixelHeight : 1.0;
    workers.run(height, [&](std::size_t y, unsigned) {
        const double second = stepY * static_cast<double>(y + static_cast<std::size_t>(region.y));
        for (std::size_t x = 0; x < width; ++x)
            positions[y * width + x] = {stepX * static_cast<double>(region.x + static_cast<int>(x)),
                                        second};
    });
    return std::make_shared<const MapPositions>(std::move(positions));
}

bool makeRoom(const Region& region, bool variances, std::vector<MapData>& maps)
{
    const std::size_t pixels =
        static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
    for (MapData& map : maps) {
        map.columns = region.width;
        map.rows = region.height;
        map.valid = true;
        if (!map.mut.resize(pixels) || (variances && !map.variance.resize(pixels)))
            return false;
    }
    return true;
}

bool areCounts(const FrameSet& set)
{
    return std::all_of(set.frames.begin(), set.frames.end(),
                       [](const Frame& frame) { return frame.values == StackValues::Counts; });
}

/// Whether some frame has a flat of its own.
bool flatsDiffer(const FrameSet& set)
{
    return std::any_of(set.frames.begin(), set.frames.end(), [&set](const Frame& frame) {
        return frame.flat.pixels != set.frames.front().flat.pixels;
    });
}

/// Fills the images from the frames.
/// @param gains  where the images have room for variances
void calculate(const Parts& parts, const std::vector<std::size_t>& indices, const FrameSet& set,
               std::vector<MapData>& maps, const DetectorGains& gains, Workers& workers)
{
    const bool ownFlats = flatsDiffer(set);
    const std::size_t pixels = maps.front().mut.size();
    const std::size_t tasks = (pixels + taskPixels - 1) / taskPixels;
    workers.run(tasks, [&](std::size_t task, unsigned) {
        const std::size_t first = task * taskPixels;
        const std::size_t count = std::min(taskPixels, pixels - first);
        for (std::size_t image = 0; image < maps.size(); ++image)
            for (std::size_t k = 0; k < parts[image].size(); ++k) {
                const FramePart& part = parts[image][k];
                const auto at = std::lower_bound(indices.begin(), indices.end(), part.frame);
                Frame frame = set.frames[static_cast<std::size_t>(at - indices.begin())];
                frame.weight = part.weight;
                MapData& map = maps[image];
                addMut(frame, first, count, map.mut.data() + first, k > 0);
                if (!map.variance.empty())
                    addVariance(frame, gains, ownFlats, first, count, map.variance.data() + first,
                                k > 0);
            }
    });
}

} // namespace

std::optional<Region> regionWithin(const StackFacts& facts, const Region& region)
{
    if (region.width == 0 && region.height == 0)
        return Region{0, 0, facts.columns, facts.rows};
    const bool within = region.x >= 0 && region.y >= 0 && region.width > 0 && region.height > 0 &&
                        region.width <= facts.columns - region.x &&
                        region.height <= facts.rows - region.y;
    return within ? std::optional(region) : std::nullopt;
}

QString outsideText(const StackFacts& facts)
{
    return QStringLiteral("the region is not within its %1 x %2 pixels")
        .arg(facts.columns)
        .arg(facts.rows);
}

std::optional<FileFault> stackMaps(Stack& stack, const QString& path,
                                   const std::vector<double>& energies, const Region& region,
                                   std::vector<MapData>& maps, Workers& workers,
                                   const std::optional<DetectorGains>& gains)
{
    const StackFacts& facts = stack.facts();
    const auto within = regionWithin(facts, region);
    if (!within)
        return FileFault{path, 0, outsideText(facts)};
    Parts parts;
    for (const double energy : energies) {
        parts.push_back(framesAt(facts.energies, energy));
        if (parts.back().empty())
            return FileFault{path, 0,
                             QStringLiteral("%1 eV is outside of the stack, which has %2")
                                 .arg(energy, 0, 'g', 10)
                                 .arg(rangeText(facts))};
    }
    const std::vector<std::size_t> indices = neededFrames(parts);
    FrameSet set;
    set.workers = &workers;
    if (auto fault = stack.read(indices, *within, set))
        return fault;
    std::vector<MapData> made(energies.size());
    const FileFault tooLarge{path, 0, QStringLiteral("does not fit in memory")};
    if (!makeRoom(*within, gains && areCounts(set), made))
        return tooLarge;
    if (!made.empty())
        calculate(parts, indices, set, made, gains.value_or(DetectorGains()), workers);
    set = {}; // the positions take its place
    const SharedPositions positions = positionsOf(facts, *within, workers);
    if (!positions)
        return tooLarge;
    for (MapData& map : made)
        map.positions = positions;
    maps = std::move(made);
    return std::nullopt;
}

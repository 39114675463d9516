#include "formats/StackSpectrum.h"

#include "formats/StackMaps.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace
{

/// That are in memory at once. A small region may be cut out of large frames, which the reader has
/// to read in its time.
constexpr std::size_t mostPixelsRead = std::size_t{1} << 22;
constexpr std::size_t mostFramesRead = 64;

/// The mean of one frame.
struct FrameMean {
    double mut = 0.0;
    Readings readings{};
    std::size_t missing = 0; ///< pixels
};

FrameMean frameMeanOf(const Frame& frame, std::size_t pixels, bool ownFlat)
{
    const FrameSums sums = sumsOf(frame, pixels);
    constexpr double beyondCounting = std::numeric_limits<double>::infinity();
    return {sums.meanMut(frame),
            {ownFlat ? sums.incident : beyondCounting, sums.transmitted},
            pixels - sums.pixels};
}

/// @param pixels  of the region
std::optional<FileFault> readMeans(Stack& stack, const Region& region, std::size_t pixels,
                                   std::vector<FrameMean>& means)
{
    const std::size_t frames = stack.facts().energies.size();
    const std::size_t atOnce = std::clamp<std::size_t>(mostPixelsRead / pixels, 1, mostFramesRead);
    FrameSet set;
    for (std::size_t first = 0; first < frames; first += atOnce) {
        std::vector<std::size_t> indices(std::min(atOnce, frames - first));
        std::iota(indices.begin(), indices.end(), first);
        set.dropFrames();
        if (auto fault = stack.read(indices, region, set))
            return fault;
        const bool ownFlat = set.shared.flat.pixels == nullptr;
        for (const Frame& frame : set.frames)
            means.push_back(frameMeanOf(frame, pixels, ownFlat));
    }
    return std::nullopt;
}

/// One point of the frames at one energy, of which some have a mean. The variance of a mean of n
/// logarithms is the sum of theirs over n^2: that of n^2 over the sum of 1/counts.
class EnergyPoint
{
public:
    void add(const FrameMean& mean)
    {
        m_count += 1.0;
        m_mut += mean.mut;
        m_incident += 1.0 / mean.readings.incident;
        m_transmitted += 1.0 / mean.readings.transmitted;
    }
    bool isThere() const { return m_count > 0.0; }
    double mut() const { return m_mut / m_count; }
    Readings readings() const
    {
        return {m_count * m_count / m_incident, m_count * m_count / m_transmitted};
    }

private:
    double m_count = 0.0;
    double m_mut = 0.0;
    double m_incident = 0.0; ///< sum of 1/counts
    double m_transmitted = 0.0;
};

/// The frames in the order of energy.
std::vector<std::size_t> risingEnergies(const std::vector<double>& energies)
{
    std::vector<std::size_t> order(energies.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return energies[a] < energies[b]; });
    return order;
}

/// @return energies that have no point
std::size_t takePoints(const StackFacts& facts, const std::vector<FrameMean>& means,
                       StackSpectrum& spectrum)
{
    const std::vector<double>& energies = facts.energies;
    const std::vector<std::size_t> order = risingEnergies(energies);
    std::size_t none = 0;
    for (std::size_t i = 0; i < order.size();) {
        const double energy = energies[order[i]];
        EnergyPoint point;
        for (; i < order.size() && energies[order[i]] == energy; ++i)
            if (std::isfinite(means[order[i]].mut))
                point.add(means[order[i]]);
        if (!point.isThere()) {
            ++none;
            continue;
        }
        spectrum.points.push_back({0.0, energy, point.mut()});
        if (facts.values == StackValues::Counts)
            spectrum.readings.push_back(point.readings());
    }
    return none;
}

/// The mean of a line over the rows is the line in their middle; how it bends over them is lost.
void tiltEnergies(const EnergyTilt& tilt, const Region& region, StackSpectrum& spectrum)
{
    constexpr double mostBlur = 0.5; // eV: less than 0.001 of an edge that rises in 5 eV
    const double rows = region.height - 1;
    const double shift = tilt.evPerRow * (region.y + rows / 2.0 - tilt.row0);
    for (SpectrumPoint& point : spectrum.points)
        point.energy += shift;
    const double blur = std::abs(tilt.evPerRow) * rows;
    if (blur > mostBlur)
        spectrum.warnings += QStringLiteral("the energies of the region's rows differ by %1 eV, "
                                            "which blurs the spectrum")
                                 .arg(blur, 0, 'g', 3);
}

std::size_t pixelsIn(const Region& region)
{
    return static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
}

} // namespace

std::optional<FileFault> stackSpectrum(Stack& stack, const QString& path, const Region& region,
                                       const EnergyTilt& tilt, StackSpectrum& spectrum)
{
    const StackFacts& facts = stack.facts();
    const auto within = regionWithin(facts, region);
    if (!within)
        return FileFault{path, 0, outsideText(facts)};
    const std::size_t pixels = pixelsIn(*within);
    std::vector<FrameMean> means;
    if (auto fault = readMeans(stack, *within, pixels, means))
        return fault;
    StackSpectrum found;
    const std::size_t none = takePoints(facts, means, found);
    if (found.points.size() < 2)
        return FileFault{path, 0,
                         QStringLiteral("has %1 energies with a mu-t; a spectrum needs two")
                             .arg(found.points.size())};
    std::size_t missing = 0;
    for (const FrameMean& mean : means)
        missing = std::max(missing, mean.missing);
    if (missing > 0)
        found.warnings += QStringLiteral("up to %1 of the %2 pixels of a frame have no number; the "
                                         "mean is that of the others")
                              .arg(missing)
                              .arg(pixels);
    if (none > 0)
        found.warnings +=
            QStringLiteral("there is no light at %1 of %2 energies, which are left out")
                .arg(none)
                .arg(none + found.points.size());
    tiltEnergies(tilt, *within, found);
    spectrum = std::move(found);
    return std::nullopt;
}

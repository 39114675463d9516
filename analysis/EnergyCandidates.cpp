#include "analysis/EnergyCandidates.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace
{

/// What is not noise.
constexpr double significant = 4.0;

/// A run of points between two changes of sign.
struct Lobe {
    std::size_t extreme; ///< where the difference is largest
    std::size_t first;   ///< points beyond noise, of one sign
    std::size_t last;
};

std::vector<Lobe> lobesOf(const StateDifference& difference, double above)
{
    const double limit = significant * difference.noise;
    const std::vector<double>& values = difference.values;
    std::vector<Lobe> lobes;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!(difference.energies[i] > above) || !(std::abs(values[i]) > limit))
            continue;
        if (lobes.empty() || std::signbit(values[lobes.back().last]) != std::signbit(values[i]))
            lobes.push_back({i, i, i});
        Lobe& lobe = lobes.back();
        lobe.last = i;
        if (std::abs(values[i]) > std::abs(values[lobe.extreme]))
            lobe.extreme = i;
    }
    return lobes;
}

/// Zero of the straight line through the points of a range.
double zeroOfLine(const StateDifference& difference, std::size_t first, std::size_t last)
{
    const auto n = static_cast<double>(last - first + 1);
    double meanE = 0.0;
    double mean = 0.0;
    for (std::size_t i = first; i <= last; ++i) {
        meanE += difference.energies[i] / n;
        mean += difference.values[i] / n;
    }
    double ee = 0.0;
    double ev = 0.0;
    for (std::size_t i = first; i <= last; ++i) {
        const double e = difference.energies[i] - meanE;
        ee += e * e;
        ev += e * (difference.values[i] - mean);
    }
    return meanE - mean * ee / ev;
}

/// Where a lobe falls to half of its height, going from its extreme to its end.
double halfHeight(const StateDifference& difference, std::size_t extreme, std::size_t end)
{
    std::size_t i = extreme;
    while (i != end && std::abs(difference.values[i]) > 0.5 * std::abs(difference.values[extreme]))
        i += end > extreme ? 1 : static_cast<std::size_t>(-1);
    return difference.energies[i];
}

std::optional<double> lessBlank(const FittedSpectrum& spectrum, const FittedSpectrum* blank,
                                double energy)
{
    std::optional<double> mut = interpolateMut(spectrum.points, energy);
    if (!mut || energy < spectrum.energyMin)
        return std::nullopt;
    if (blank != nullptr && !blank->points.empty())
        *mut -= interpolateMut(blank->points, energy).value_or(0.0);
    return mut;
}

/// Mean square of the second differences below a limit would take glitches for noise; the median is
/// enough for a threshold.
double scatterBelow(const StateDifference& difference, double limit)
{
    std::vector<double> bends;
    for (std::size_t i = 1; i + 1 < difference.values.size(); ++i) {
        if (!(difference.energies[i + 1] < limit))
            break;
        const double part = (difference.energies[i] - difference.energies[i - 1]) /
                            (difference.energies[i + 1] - difference.energies[i - 1]);
        const double line =
            (1.0 - part) * difference.values[i - 1] + part * difference.values[i + 1];
        bends.push_back(std::abs(difference.values[i] - line) /
                        std::sqrt(1.0 + part * part + (1.0 - part) * (1.0 - part)));
    }
    if (bends.empty())
        return 0.0;
    const auto middle = bends.begin() + static_cast<std::ptrdiff_t>(bends.size() / 2);
    std::nth_element(bends.begin(), middle, bends.end());
    constexpr double medianOfNormal = 0.6744897501960817;
    return *middle / medianOfNormal;
}

} // namespace

StateDifference stateDifference(const FittedSpectrum& ref1, const FittedSpectrum& ref2,
                                const FittedSpectrum* blank)
{
    StateDifference difference;
    std::vector<double> first;
    std::vector<double> second;
    double products = 0.0;
    double squares = 0.0;
    for (const SpectrumPoint& point : ref1.points) {
        if (!difference.energies.empty() && !(point.energy > difference.energies.back()))
            continue;
        const auto r1 = lessBlank(ref1, blank, point.energy);
        const auto r2 = lessBlank(ref2, blank, point.energy);
        if (!r1 || !r2 || !std::isfinite(*r1) || !std::isfinite(*r2))
            continue;
        difference.energies.push_back(point.energy);
        first.push_back(*r1);
        second.push_back(*r2);
        if (point.energy < ref1.preEdgeEnd) {
            products += *r1 * *r2;
            squares += *r2 * *r2;
        }
    }
    difference.rho = products / squares;
    if (!(difference.rho > 0.0))
        return {};
    for (std::size_t i = 0; i < first.size(); ++i)
        difference.values.push_back(first[i] / difference.rho - second[i]);
    difference.noise = scatterBelow(difference, ref1.preEdgeEnd);
    return difference;
}

std::vector<double> crossingsOf(const StateDifference& difference, double above)
{
    std::vector<double> found;
    const std::vector<Lobe> lobes = lobesOf(difference, above);
    for (std::size_t i = 1; i < lobes.size(); ++i) {
        // Between the two lobes, and one point of either.
        const double zero = zeroOfLine(difference, lobes[i - 1].last, lobes[i].first);
        const double from = difference.energies[lobes[i - 1].last];
        const double to = difference.energies[lobes[i].first];
        if (from <= zero && zero <= to)
            found.push_back(zero);
    }
    return found;
}

std::vector<double> vPointsOf(const StateDifference& difference, double above)
{
    std::vector<double> found;
    for (const Lobe& lobe : lobesOf(difference, above)) {
        found.push_back(difference.energies[lobe.extreme]);
        found.push_back(halfHeight(difference, lobe.extreme, lobe.first));
        found.push_back(halfHeight(difference, lobe.extreme, lobe.last));
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<double> preEdgePointsOf(const StateDifference& difference, double limit)
{
    std::vector<double> alike;
    const double allowed = significant * difference.noise;
    for (std::size_t i = 0; i < difference.values.size(); ++i)
        if (difference.energies[i] < limit && std::abs(difference.values[i]) <= allowed)
            alike.push_back(difference.energies[i]);
    std::vector<double> found;
    constexpr std::size_t wanted = 4;
    for (std::size_t k = 0; k < wanted && !alike.empty(); ++k)
        found.push_back(alike[alike.size() - 1 - k * (alike.size() - 1) / (wanted - 1)]);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

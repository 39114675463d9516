#include "analysis/SpectrumNoise.h"

#include <algorithm>
#include <cmath>

namespace
{

/// mu-t of a point against the line through its neighbours, as a sum with weights of norm 1.
struct Difference {
    std::size_t at; ///< the middle point
    double before;  ///< weights
    double middle;
    double after;
    double value;
};

std::vector<Difference> differencesBelow(const SpectrumPoints& points, double limit)
{
    std::vector<Difference> differences;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const SpectrumPoint& left = points[i - 1];
        const SpectrumPoint& point = points[i];
        const SpectrumPoint& right = points[i + 1];
        if (!(left.energy < limit && point.energy < limit && right.energy < limit))
            continue;
        const double part = (point.energy - left.energy) / (right.energy - left.energy);
        if (!(part > 0.0 && part < 1.0))
            continue;
        const double before = 1.0 - part;
        const double norm = std::sqrt(before * before + part * part + 1.0);
        const double value = (before * left.mut + part * right.mut - point.mut) / norm;
        if (std::isfinite(value))
            differences.push_back({i, before / norm, -1.0 / norm, part / norm, value});
    }
    return differences;
}

/// Standard deviation from the median magnitude of normal deviates.
double medianEstimate(const std::vector<Difference>& differences)
{
    constexpr double medianOfNormal = 0.6744897501960817;
    std::vector<double> magnitudes;
    magnitudes.reserve(differences.size());
    for (const Difference& d : differences)
        magnitudes.push_back(std::abs(d.value));
    const auto middle = magnitudes.begin() + static_cast<std::ptrdiff_t>(magnitudes.size() / 2);
    std::nth_element(magnitudes.begin(), middle, magnitudes.end());
    return *middle / medianOfNormal;
}

std::vector<Difference> withoutGlitches(const std::vector<Difference>& differences)
{
    constexpr std::size_t enough = 5; // for a median that one glitch does not move
    constexpr double beyond = 5.0;
    if (differences.size() < enough)
        return differences;
    const double limit = beyond * medianEstimate(differences);
    std::vector<std::size_t> glitches;
    for (const Difference& d : differences)
        if (std::abs(d.value) > limit)
            glitches.push_back(d.at);
    const auto besideGlitch = [&](const Difference& d) {
        return std::any_of(glitches.begin(), glitches.end(), [&](std::size_t glitch) {
            return d.at + 1 >= glitch && d.at <= glitch + 1;
        });
    };
    std::vector<Difference> kept;
    std::copy_if(differences.begin(), differences.end(), std::back_inserter(kept),
                 [&](const Difference& d) { return !besideGlitch(d); });
    return kept.size() < 2 ? differences : kept;
}

/// Correlation of two differences, the second not before the first.
double correlation(const Difference& a, const Difference& b)
{
    switch (b.at - a.at) {
    case 0:
        return 1.0;
    case 1:
        return a.middle * b.before + a.after * b.middle;
    case 2:
        return a.after * b.before;
    default:
        return 0.0;
    }
}

/// Degrees of freedom of the mean square of correlated deviates of one variance: those of the
/// chi-square distribution with the same mean and variance.
double degreesOf(const std::vector<Difference>& differences)
{
    const auto n = static_cast<double>(differences.size());
    double squares = 0.0;
    for (std::size_t i = 0; i < differences.size(); ++i) {
        squares += 1.0;
        for (std::size_t j = i + 1; j < differences.size() && j <= i + 2; ++j) {
            const double r = correlation(differences[i], differences[j]);
            squares += 2.0 * r * r;
        }
    }
    return n * n / squares;
}

} // namespace

std::optional<SpectrumNoise> scatterNoise(const SpectrumPoints& points, double limit)
{
    const std::vector<Difference> differences = withoutGlitches(differencesBelow(points, limit));
    if (differences.empty())
        return std::nullopt;
    double sum = 0.0;
    for (const Difference& d : differences)
        sum += d.value * d.value;
    SpectrumNoise noise;
    noise.sigma = std::sqrt(sum / static_cast<double>(differences.size()));
    noise.degrees = degreesOf(differences);
    return noise;
}

double countingVariance(const Readings& readings, const DetectorGains& gains)
{
    if (!(readings.incident > 0.0 && readings.transmitted > 0.0))
        return notANumber;
    return gains.incident / readings.incident + gains.transmitted / readings.transmitted;
}

std::optional<SpectrumNoise> countingNoise(const SpectrumPoints& points,
                                           const std::vector<Readings>& readings,
                                           const DetectorGains& gains, double limit)
{
    if (points.size() != readings.size())
        return std::nullopt;
    SpectrumNoise noise;
    double sum = 0.0;
    double below = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        noise.variance.push_back(countingVariance(readings[i], gains));
        if (!std::isfinite(noise.variance.back()))
            return std::nullopt;
        if (points[i].energy < limit) {
            sum += noise.variance.back();
            below += 1.0;
        }
    }
    if (below == 0.0)
        return std::nullopt;
    noise.sigma = std::sqrt(sum / below);
    return noise;
}

std::optional<double> gainFound(const SpectrumPoints& points, const std::vector<Readings>& readings,
                                double limit)
{
    const auto scatter = scatterNoise(points, limit);
    const auto counting = countingNoise(points, readings, {}, limit);
    if (!scatter || !counting)
        return std::nullopt;
    return scatter->sigma * scatter->sigma / (counting->sigma * counting->sigma);
}

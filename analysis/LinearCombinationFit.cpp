#include "analysis/LinearCombinationFit.h"

#include "analysis/Constants.h"
#include "analysis/LinearSolver.h"
#include "analysis/NormalizedSpectrum.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace
{

/// The spectra at the fitted energies, in the order of the target's points.
struct Samples {
    std::vector<double> x1; ///< Ref 1
    std::vector<double> x2; ///< Ref 2
    std::vector<double> y;  ///< target
    SpectrumPoints points;  ///< of the target
};

Samples sample(const FittedSpectrum& ref1, const FittedSpectrum& ref2, const FittedSpectrum& target,
               const LcfRange& range)
{
    const NormalizedSpectrum normalized1(ref1.points, ref1.preVic, ref1.postVic);
    const NormalizedSpectrum normalized2(ref2.points, ref2.preVic, ref2.postVic);
    Samples samples;
    for (const SpectrumPoint& point : target.points) {
        if (!range.contains(point.energy))
            continue;
        samples.x1.push_back(normalized1.at(point.energy));
        samples.x2.push_back(normalized2.at(point.energy));
        samples.y.push_back(normalizedPoint(point, target.preVic, target.postVic));
        samples.points.push_back(point);
    }
    return samples;
}

/// Solution of the normal equations of y = p1 x1 + p2 x2 + p3.
Vector<3> solve(const Samples& samples)
{
    double s11 = 0.0, s12 = 0.0, s1 = 0.0, s22 = 0.0, s2 = 0.0, n = 0.0;
    double s1y = 0.0, s2y = 0.0, sy = 0.0;
    for (std::size_t k = 0; k < samples.y.size(); ++k) {
        const double x1 = samples.x1[k];
        const double x2 = samples.x2[k];
        const double y = samples.y[k];
        s11 += x1 * x1;
        s12 += x1 * x2;
        s1 += x1;
        s22 += x2 * x2;
        s2 += x2;
        n += 1.0;
        s1y += x1 * y;
        s2y += x2 * y;
        sy += y;
    }
    return solveLinear<3>({{{s11, s12, s1}, {s12, s22, s2}, {s1, s2, n}}}, {s1y, s2y, sy});
}

} // namespace

std::optional<LcfRange> lcfRange(const PointRows& rows)
{
    LcfRange range{beyondAll, -beyondAll};
    int count = 0;
    for (const PointRow& row : rows) {
        if (!row.tRatio)
            continue;
        if (row.energy < range.min)
            range.min = row.energy;
        if (row.energy > range.max)
            range.max = row.energy;
        ++count;
    }
    if (range.min > range.max || count < 2)
        return std::nullopt;
    return range;
}

LinearCombination fitLinearCombination(const FittedSpectrum& ref1, const FittedSpectrum& ref2,
                                       const FittedSpectrum& target, const LcfRange& range)
{
    Samples samples = sample(ref1, ref2, target, range);
    const Vector<3> p = solve(samples);
    double missed = 0.0;
    double whole = 0.0;
    for (std::size_t k = 0; k < samples.points.size(); ++k) {
        const double fitted = p[0] * samples.x1[k] + p[1] * samples.x2[k] + p[2];
        const double difference = samples.y[k] - fitted;
        missed += difference * difference;
        whole += samples.y[k] * samples.y[k];
        samples.points[k].mut = fitted;
    }
    return {p[0], p[1], p[2], std::move(samples.points), missed / whole};
}

std::variant<LinearCombination, RunRefusal> lcfResult(const AnalysisInput& input)
{
    const std::optional<LcfRange> range = lcfRange(input.table);
    if (!range)
        return RunRefusal{Refusal::NoFitRange, 0};
    const FittedSpectrum none;
    const auto spectrum = [&](SpectrumSet::Index i) -> const FittedSpectrum& {
        return input.spectra[i] != nullptr ? *input.spectra[i] : none;
    };
    return fitLinearCombination(spectrum(SpectrumSet::Ref1), spectrum(SpectrumSet::Ref2),
                                spectrum(SpectrumSet::Target), *range);
}

#include "analysis/SystematicErrors.h"

#include "analysis/LinearCombinationFit.h"
#include "analysis/SpectrumChange.h"

#include <cmath>

namespace
{

std::optional<double> difference(const std::optional<double>& a, const std::optional<double>& b)
{
    if (!a || !b)
        return std::nullopt;
    return *a - *b;
}

} // namespace

Fractions Fractions::operator-(const Fractions& other) const
{
    return {difference(point, other.point), difference(fit, other.fit)};
}

Fractions fractionsOf(const AnalysisInput& input)
{
    AnalysisInput exact = input;
    exact.table = unroundedTable(input.table, input.spectra, input.conditions);
    Fractions fractions;
    const auto result = targetResult(exact);
    if (const auto* found = std::get_if<TargetResult>(&result))
        fractions.point = found->a;
    const auto fit = lcfResult(exact);
    if (const auto* found = std::get_if<LinearCombination>(&fit))
        fractions.fit = found->share1();
    return fractions;
}

Fractions fractionsWith(const AnalysisInput& input, SpectrumSet::Index place,
                        const FittedSpectrum& spectrum)
{
    AnalysisInput changed = input;
    changed.spectra.all.at(place) = &spectrum;
    return fractionsOf(changed);
}

SystematicErrors systematicErrors(const AnalysisInput& input, double spread)
{
    const Fractions found = fractionsOf(input);
    const auto shifted = [&](SpectrumSet::Index place) -> Fractions {
        if (!input.spectra.isValid(place))
            return {};
        return fractionsWith(input, place, withShift(*input.spectra[place], usualShift)) - found;
    };
    SystematicErrors errors;
    errors.targetShift = shifted(SpectrumSet::Target);
    errors.ref1Shift = shifted(SpectrumSet::Ref1);
    errors.ref2Shift = shifted(SpectrumSet::Ref2);
    if (!input.spectra.isValid(SpectrumSet::Target))
        return errors;
    const FittedSpectrum& target = *input.spectra[SpectrumSet::Target];
    errors.leakage =
        fractionsWith(input, SpectrumSet::Target, withLeakage(target, usualLeakage)) - found;
    if (spread != 0.0)
        errors.thickness =
            fractionsWith(input, SpectrumSet::Target, withUnevenThickness(target, spread)) - found;
    return errors;
}

std::optional<double> Closure::errorAt(double a) const
{
    if (!ref1.point || !ref2.point)
        return std::nullopt;
    return a * (*ref1.point - 1.0) + (1.0 - a) * *ref2.point;
}

bool Closure::isDoubtful() const
{
    constexpr double acceptable = 0.05;
    const auto off = [](const std::optional<double>& found, double expected) {
        return found && !(std::abs(*found - expected) <= acceptable);
    };
    return off(ref1.point, 1.0) || off(ref2.point, 0.0);
}

TargetChanges targetChanges(const AnalysisInput& input)
{
    if (!input.spectra.isValid(SpectrumSet::Target))
        return {};
    AnalysisInput exact = input;
    exact.table = unroundedTable(input.table, input.spectra, input.conditions);
    const auto fraction = [&]() -> std::optional<double> {
        const auto result = targetResult(exact);
        const auto* found = std::get_if<TargetResult>(&result);
        return found != nullptr ? std::optional<double>(found->a) : std::nullopt;
    };
    const std::optional<double> found = fraction();
    const SubtractedLine line = subtractedLine(SpectrumSet::Target, input.conditions);
    const auto with = [&](const FittedSpectrum& target) {
        for (PointRow& row : exact.table)
            row.mutTarget =
                row.energy != 0.0 ? mutLess(target, line, row.energy).value_or(0.0) : 0.0;
        return difference(fraction(), found);
    };
    const FittedSpectrum& target = *input.spectra[SpectrumSet::Target];
    return {with(withShift(target, usualShift)), with(withLeakage(target, usualLeakage))};
}

Closure closureOf(const AnalysisInput& input)
{
    Closure closure;
    if (input.spectra.isValid(SpectrumSet::Ref1))
        closure.ref1 = fractionsWith(input, SpectrumSet::Target, *input.spectra[SpectrumSet::Ref1]);
    if (input.spectra.isValid(SpectrumSet::Ref2))
        closure.ref2 = fractionsWith(input, SpectrumSet::Target, *input.spectra[SpectrumSet::Ref2]);
    return closure;
}

double sigmasOutside(double a, double sigma)
{
    if (a > 1.0)
        return (a - 1.0) / sigma;
    return a < 0.0 ? -a / sigma : 0.0;
}

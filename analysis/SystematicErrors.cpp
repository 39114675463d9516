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

double& mutOf(SpectrumSet::Index place, PointRow& row)
{
    switch (place) {
    case SpectrumSet::Ref1:
        return row.mut1;
    case SpectrumSet::Ref2:
        return row.mut2;
    case SpectrumSet::Target:
        return row.mutTarget;
    case SpectrumSet::Blank:
        break;
    }
    return row.mutBlank;
}

/// Changes of the fraction that the point method finds from an input, without the six digits.
class PointFractions
{
public:
    explicit PointFractions(const AnalysisInput& input) : m_exact(input)
    {
        m_exact.table = unroundedTable(input.table, input.spectra, input.conditions);
        m_found = fraction(m_exact);
    }

    /// With another spectrum in one place.
    std::optional<double> with(SpectrumSet::Index place, const FittedSpectrum& spectrum) const
    {
        AnalysisInput changed = m_exact;
        changed.spectra.all.at(place) = &spectrum;
        const SubtractedLine line = subtractedLine(place, changed.conditions);
        for (PointRow& row : changed.table)
            mutOf(place, row) =
                row.energy != 0.0 ? mutLess(spectrum, line, row.energy).value_or(0.0) : 0.0;
        return difference(fraction(changed), m_found);
    }

    /// With so many of the rows in use, exactly.
    /// @return nothing where no more are in use
    std::optional<double> withRows(std::size_t count) const
    {
        const PointChoice choice = choosePoints(m_exact.table);
        if (!choice.hasVPoint() || choice.normalization.size() < count)
            return std::nullopt;
        AnalysisInput changed = m_exact;
        changed.conditions.exact = true;
        changed.conditions.leastSquares = false;
        for (std::size_t i = count - 1; i < choice.normalization.size(); ++i)
            changed.table[choice.normalization[i]].use = false;
        return difference(fraction(changed), m_found);
    }

private:
    static std::optional<double> fraction(const AnalysisInput& input)
    {
        const auto result = targetResult(input);
        const auto* found = std::get_if<TargetResult>(&result);
        return found != nullptr ? std::optional<double>(found->a) : std::nullopt;
    }

    AnalysisInput m_exact;
    std::optional<double> m_found;
};

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

ShiftedReferences shiftedReferences(const SpectrumSet& spectra)
{
    ShiftedReferences shifted;
    if (spectra.isValid(SpectrumSet::Ref1))
        shifted.ref1 = withShift(*spectra[SpectrumSet::Ref1], usualShift);
    if (spectra.isValid(SpectrumSet::Ref2))
        shifted.ref2 = withShift(*spectra[SpectrumSet::Ref2], usualShift);
    return shifted;
}

TargetChanges targetChanges(const AnalysisInput& input, const ShiftedReferences& shifted,
                            double spread)
{
    if (!input.spectra.isValid(SpectrumSet::Target))
        return {};
    const PointFractions fractions(input);
    const FittedSpectrum& target = *input.spectra[SpectrumSet::Target];
    TargetChanges changes;
    changes.shift = fractions.with(SpectrumSet::Target, withShift(target, usualShift));
    if (shifted.ref1)
        changes.ref1Shift = fractions.with(SpectrumSet::Ref1, *shifted.ref1);
    if (shifted.ref2)
        changes.ref2Shift = fractions.with(SpectrumSet::Ref2, *shifted.ref2);
    changes.leakage = fractions.with(SpectrumSet::Target, withLeakage(target, usualLeakage));
    if (spread != 0.0)
        changes.thickness =
            fractions.with(SpectrumSet::Target, withUnevenThickness(target, spread));
    changes.threePoint = fractions.withRows(3);
    changes.fourPoint = fractions.withRows(4);
    return changes;
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

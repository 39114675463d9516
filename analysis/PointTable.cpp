#include "analysis/PointTable.h"

#include "text/NumberText.h"

namespace
{

/// 0 without the spectrum, or where it does not reach the energy.
double mutAt(SpectrumSet::Index i, double energy, const SpectrumSet& spectra,
             const Conditions& conditions)
{
    if (spectra[i] == nullptr)
        return 0.0;
    return mutLess(*spectra[i], subtractedLine(i, conditions), energy).value_or(0.0);
}

} // namespace

SubtractedLine subtractedLine(SpectrumSet::Index spectrum, const Conditions& conditions)
{
    const bool loses = spectrum == SpectrumSet::Blank    ? false
                       : spectrum == SpectrumSet::Target ? conditions.targetMinusVictreen
                                                         : conditions.referencesMinusVictreen;
    if (!loses)
        return SubtractedLine::None;
    return conditions.victreenIsPre ? SubtractedLine::Pre : SubtractedLine::Post;
}

PointRows pointTable(const std::vector<ChosenPoint>& points, const SpectrumSet& spectra,
                     const Conditions& conditions)
{
    PointRows table;
    for (const ChosenPoint& point : points) {
        const auto mutOf = [&](SpectrumSet::Index i) {
            return point.energy ? sixDigits(mutAt(i, *point.energy, spectra, conditions)) : 0.0;
        };
        PointRow row;
        row.use = point.use;
        row.tRatio = point.tRatio;
        row.vPoint = point.vPoint;
        row.useVicRefs = conditions.referencesMinusVictreen;
        row.useVicTarget = conditions.targetMinusVictreen;
        row.energy = point.energy.value_or(0.0);
        row.mut1 = mutOf(SpectrumSet::Ref1);
        row.mut2 = mutOf(SpectrumSet::Ref2);
        row.mutTarget = mutOf(SpectrumSet::Target);
        row.mutBlank = mutOf(SpectrumSet::Blank);
        table.push_back(row);
    }
    return table;
}

PointRows unroundedTable(const PointRows& chosen, const SpectrumSet& spectra,
                         const Conditions& conditions)
{
    PointRows table = chosen;
    for (PointRow& row : table) {
        const auto mutOf = [&](SpectrumSet::Index i) {
            return row.energy != 0.0 ? mutAt(i, row.energy, spectra, conditions) : 0.0;
        };
        row.mut1 = mutOf(SpectrumSet::Ref1);
        row.mut2 = mutOf(SpectrumSet::Ref2);
        row.mutTarget = mutOf(SpectrumSet::Target);
        row.mutBlank = mutOf(SpectrumSet::Blank);
    }
    return table;
}

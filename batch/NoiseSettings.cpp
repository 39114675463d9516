#include "batch/NoiseSettings.h"

#include "text/NumberText.h"

namespace
{

void takeIfGiven(const QString& text, double& value)
{
    if (!text.isEmpty())
        value = numberFromText(text);
}

} // namespace

NoiseSettings noiseSettingsOf(const Job& job)
{
    NoiseSettings settings;
    settings.model = job.noise;
    takeIfGiven(job.gain, settings.gains.transmitted);
    takeIfGiven(job.gain0, settings.gains.incident);
    takeIfGiven(job.level, settings.level);
    takeIfGiven(job.uneven, settings.uneven);
    if (!job.mapScatter.isEmpty())
        settings.mapScatter = numberFromText(job.mapScatter);
    return settings;
}

RankedTarget rankedTargetOf(const Job& job)
{
    RankedTarget target;
    takeIfGiven(job.rankCounts, target.counts);
    takeIfGiven(job.rankThickness, target.thickness);
    return target;
}

std::optional<SpectrumNoise> noiseOf(const FittedSpectrum& spectrum,
                                     const std::vector<Readings>& readings,
                                     const NoiseSettings& settings)
{
    switch (settings.model) {
    case NoiseModel::Scatter:
        return scatterNoise(spectrum.points, spectrum.preEdgeEnd);
    case NoiseModel::Counts:
        return countingNoise(spectrum.points, readings, settings.gains, spectrum.preEdgeEnd);
    case NoiseModel::None:
        break;
    }
    return std::nullopt;
}

std::shared_ptr<const CommonUncertainty> commonUncertainty(const AnalysisInput& input,
                                                           const SpectrumNoises& noises,
                                                           const EnergyShifts& shifts)
{
    auto common = std::make_shared<CommonUncertainty>();
    common->covariances = tableCovariances(input, noises);
    for (std::size_t i = 0; i < shifts.size(); ++i) {
        const auto spectrum = static_cast<SpectrumSet::Index>(i);
        if (shifts[i].sigma > 0.0 && common->covariances[i] && input.spectra.isValid(spectrum))
            common->covariances[i]->shift =
                entryShift(*input.spectra[spectrum], subtractedLine(spectrum, input.conditions),
                           input.table, shifts[i].sigma);
    }
    if (input.spectra.isValid(SpectrumSet::Ref1))
        common->ref1.emplace(*input.spectra[SpectrumSet::Ref1]).keepNormalizedBases();
    if (input.spectra.isValid(SpectrumSet::Ref2))
        common->ref2.emplace(*input.spectra[SpectrumSet::Ref2]).keepNormalizedBases();
    common->closure = closureOf(input);
    common->shifted = shiftedReferences(input.spectra);
    return common;
}

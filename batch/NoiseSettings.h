#pragma once

#include "analysis/EnergyRanking.h"
#include "analysis/LcfUncertainty.h"
#include "analysis/SystematicErrors.h"
#include "analysis/TargetUncertainty.h"
#include "batch/Alignment.h"
#include "jobs/JobFile.h"

#include <memory>
#include <optional>
#include <vector>

/// What a job says of the noise, and of what no noise shows, in numbers.
struct NoiseSettings {
    NoiseModel model = NoiseModel::Scatter;
    DetectorGains gains;
    double level = 0.683;             ///< of the valence's interval
    double uneven = 0.0;              ///< spread of the targets' thickness over its mean
    std::optional<double> mapScatter; ///< standard deviation of the mu-t of a map's images

    /// Whether the counts of a map's images are to be used: a scatter that the job gives takes
    /// their place, unless it wants counts.
    bool wantsMapCounts() const
    {
        return model == NoiseModel::Counts || (model == NoiseModel::Scatter && !mapScatter);
    }
};

NoiseSettings noiseSettingsOf(const Job& job);

/// For what target a job wants energies ranked.
RankedTarget rankedTargetOf(const Job& job);

/// The noise of a spectrum.
/// @param readings  at each of its points
/// @return nothing for no model, or where it cannot be known
std::optional<SpectrumNoise> noiseOf(const FittedSpectrum& spectrum,
                                     const std::vector<Readings>& readings,
                                     const NoiseSettings& settings);

/// What all targets of a job share of their uncertainties, formed once.
struct CommonUncertainty {
    TableCovariances covariances; ///< of references and blank
    std::optional<MeasuredSums> ref1;
    std::optional<MeasuredSums> ref2;
    Closure closure;
    ShiftedReferences shifted;
};

/// @param input   of the job without a target; its spectra must live as long
/// @param shifts  of the spectra's energies
std::shared_ptr<const CommonUncertainty> commonUncertainty(const AnalysisInput& input,
                                                           const SpectrumNoises& noises,
                                                           const EnergyShifts& shifts);

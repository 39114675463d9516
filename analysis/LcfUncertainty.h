#pragma once

#include "analysis/LinearCombinationFit.h"
#include "analysis/MeasuredSum.h"
#include "analysis/RatioInterval.h"
#include "analysis/TargetUncertainty.h"

#include <array>
#include <optional>
#include <vector>

/// How sure the fraction of a linear combination fit is, by the noise of what was measured.
struct LcfUncertainty {
    double sigmaA = 0.0;       ///< standard deviation of the fraction of Ref 1, target's own part
    double sigmaARef = 0.0;    ///< common part, by the references
    double degrees = 0.0;      ///< of freedom, of the variance of both parts together
    std::optional<Interval> a; ///< both parts together, symmetric about the fraction
    /// Of the residuals, over the points less the three weights; the variance of a residual holds
    /// the references' noise as well.
    double reducedChiSquare = 0.0;
    /// By which the references' noise moves the fraction: it sits in the regressors, not only in
    /// what is fitted.
    double biasA = 0.0;

    double sigmaValence(const ReferenceValences& valences) const;
    /// The bias is not small against what both parts together make uncertain.
    bool isBiased() const;
};

/// Derivatives of the fraction of Ref 1 by the measured mu-t of Ref 1, Ref 2 and target [points],
/// through the normalization of each.
using LcfGradient = std::array<std::vector<double>, 3>;

/// A linear combination fit to be judged.
struct JudgedFit {
    const MeasuredSums& ref1;
    const MeasuredSums& ref2;
    const MeasuredSums& target;
    LcfRange range;
    const LinearCombination& fit; ///< of these spectra over this range
};

LcfGradient lcfGradient(const JudgedFit& judged);

/// How the fraction changes for one standard deviation of the spectra's energies: half of what lies
/// between the spectrum shifted upward and downward.
struct LcfShift {
    double own = 0.0;    ///< of the target
    double common = 0.0; ///< of both references, which do not know of one another
};

/// @param sigmas  eV, of Ref 1, Ref 2 and target; 0 for energies that are known
LcfShift lcfShift(const JudgedFit& judged, const std::array<double, 3>& sigmas);

/// To first order in the noise, exact to this order.
/// @param noises  those of Ref 1, Ref 2 and target are needed
/// @param level   of the interval, such as 0.683
/// @param shift   by energies that are not known; normal, and known itself
/// @return not-a-number where the fit has no finite derivatives, or a noise is not known
LcfUncertainty lcfUncertainty(const JudgedFit& judged, const SpectrumNoises& noises, double level,
                              const LcfShift& shift = {});

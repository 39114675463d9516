#pragma once

#include "analysis/RatioInterval.h"
#include "analysis/TableCovariance.h"
#include "analysis/TargetResult.h"

#include <array>
#include <optional>

/// The noise of each spectrum; nothing where there is none, or it is not known.
using SpectrumNoises = std::array<std::optional<SpectrumNoise>, SpectrumSet::count>;

/// How the noise of each spectrum moves its entries; nothing where it is not known.
using TableCovariances = std::array<std::optional<TableCovariance>, SpectrumSet::count>;

/// Those of references and blank serve all targets of one table. A spectrum that is missing has
/// entries of 0, which do not move.
TableCovariances tableCovariances(const AnalysisInput& input, const SpectrumNoises& noises);

/// How sure the result of a point method is, by the noise of what was measured. The own part comes
/// from the target, the common part from references and blank, which all targets share.
struct TargetUncertainty {
    double sigmaA = 0.0;    ///< standard deviation of the fraction of Ref 1, own part
    double sigmaT = 0.0;    ///< of t/ts; of three points that which a map has
    double sigmaARef = 0.0; ///< common part
    double sigmaTRef = 0.0;
    double degrees = 0.0; ///< of freedom, of the variance of both parts together
    /// Of the fraction of Ref 1, both parts together; nothing where it is unbounded.
    std::optional<Interval> a;

    double sigmaValence(const ReferenceValences& valences) const;
    double sigmaValenceRef(const ReferenceValences& valences) const;
    /// Of the valence, in rising order.
    std::optional<Interval> valence(const ReferenceValences& valences) const;
};

/// To first order in the noise, exact to this order: through interpolation, both fits, edge jumps,
/// thickness ratio and method.
/// @param input    of which the table has mu-t
/// @param method   that targetResult() used
/// @param level    of the interval, such as 0.683
/// @return not-a-number where the result has no finite derivatives, or a spectrum's noise that it
/// depends on is not known
TargetUncertainty targetUncertainty(const AnalysisInput& input, Method method,
                                    const TableCovariances& covariances, double level);

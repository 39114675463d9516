#include "analysis/TargetUncertainty.h"

#include "analysis/Constants.h"
#include "analysis/PointRatio.h"
#include "analysis/PooledVariance.h"
#include "analysis/StudentT.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

using Covariances = std::optional<TableCovariance>;

bool vanishes(const EntryVector& g)
{
    return std::all_of(g.begin(), g.end(), [](double value) { return value == 0.0; });
}

/// What one spectrum adds to the variances of L1, L2 and t/ts.
struct SpectrumPart {
    RatioVariance noise;
    RatioVariance shift;
    double thickness = 0.0;
    double degrees = 0.0;
};

SpectrumPart partOf(const PointRatio& ratio, std::size_t spectrum, const Covariances& covariance)
{
    const EntryVector& g1 = ratio.by1[spectrum];
    const EntryVector& g2 = ratio.by2[spectrum];
    const EntryVector& gT = ratio.byThickness[spectrum];
    SpectrumPart part;
    part.degrees = std::numeric_limits<double>::infinity();
    if (vanishes(g1) && vanishes(g2) && vanishes(gT))
        return part;
    if (!covariance) {
        part.noise = {notANumber, notANumber, notANumber};
        part.thickness = notANumber;
        return part;
    }
    part.noise = {covariance->ofNoise(g1, g1), covariance->ofNoise(g1, g2),
                  covariance->ofNoise(g2, g2)};
    part.shift = {covariance->ofShift(g1, g1), covariance->ofShift(g1, g2),
                  covariance->ofShift(g2, g2)};
    part.thickness = covariance->ofNoise(gT, gT) + covariance->ofShift(gT, gT);
    part.degrees = covariance->degrees;
    return part;
}

PointRatio ratioOf(const AnalysisInput& input, Method method)
{
    RatioGradient rho;
    if (method != Method::ThreePoint)
        rho = ratioGradient(input.table, input.conditions.thickness,
                            input.spectra.edgeJump(SpectrumSet::Ref1),
                            input.spectra.edgeJump(SpectrumSet::Ref2));
    return pointRatio(input.table, choosePoints(input.table), method, rho);
}

Interval scaled(const Interval& a, const ReferenceValences& valences)
{
    const double one = valences.mean(a.low);
    const double other = valences.mean(a.high);
    return {std::min(one, other), std::max(one, other)};
}

} // namespace

TableCovariances tableCovariances(const AnalysisInput& input, const SpectrumNoises& noises)
{
    TableCovariances covariances;
    for (std::size_t i = 0; i < covariances.size(); ++i) {
        const auto spectrum = static_cast<SpectrumSet::Index>(i);
        if (!input.spectra.isValid(spectrum))
            covariances[i] = TableCovariance();
        else if (noises[i])
            covariances[i] = tableCovariance(MeasuredSums(*input.spectra[spectrum]),
                                             subtractedLine(spectrum, input.conditions),
                                             input.table, *noises[i]);
    }
    return covariances;
}

double TargetUncertainty::sigmaValence(const ReferenceValences& valences) const
{
    return sigmaA * std::abs(valences.ref1 - valences.ref2);
}

double TargetUncertainty::sigmaValenceRef(const ReferenceValences& valences) const
{
    return sigmaARef * std::abs(valences.ref1 - valences.ref2);
}

std::optional<Interval> TargetUncertainty::valence(const ReferenceValences& valences) const
{
    if (!a)
        return std::nullopt;
    return scaled(*a, valences);
}

TargetUncertainty targetUncertainty(const AnalysisInput& input, Method method,
                                    const TableCovariances& covariances, double level)
{
    const PointRatio ratio = ratioOf(input, method);
    const double a = ratio.fraction();
    RatioVariance own;
    RatioVariance common;
    PooledVariance pooled;
    double ownThickness = 0.0;
    double commonThickness = 0.0;
    for (std::size_t i = 0; i < covariances.size(); ++i) {
        const SpectrumPart part = partOf(ratio, i, covariances[i]);
        const bool isOwn = i == SpectrumSet::Target;
        (isOwn ? own : common) += part.noise;
        (isOwn ? own : common) += part.shift;
        (isOwn ? ownThickness : commonThickness) += part.thickness;
        pooled.add(part.noise.at(a), part.degrees);
        pooled.add(part.shift.at(a), std::numeric_limits<double>::infinity());
    }
    TargetUncertainty result;
    result.sigmaA = std::sqrt(std::max(own.at(a), 0.0)) / std::abs(ratio.l2);
    result.sigmaARef = std::sqrt(std::max(common.at(a), 0.0)) / std::abs(ratio.l2);
    result.sigmaT = std::sqrt(ownThickness);
    result.sigmaTRef = std::sqrt(commonThickness);
    result.degrees = pooled.degrees();
    RatioVariance both = own;
    both += common;
    result.a = ratioInterval(ratio.l1, ratio.l2, both, studentQuantile(level, result.degrees));
    return result;
}

#include "analysis/MapMean.h"

#include "analysis/PointRatio.h"

#include <cmath>

namespace
{

double scaled(double value, double zero, double one)
{
    return (value - zero) / (one - zero);
}

void fillThreePoint(double a, double t, const PointChoice& choice, PointRows& rows)
{
    PointRow& p0 = rows[choice.normalization[0]];
    PointRow& p1 = rows[choice.normalization[1]];
    PointRow& v = rows[choice.vPoint];
    const double scaled1 = scaled(v.reference1(), p0.reference1(), p1.reference1());
    const double scaled2 = scaled(v.reference2(), p0.reference2(), p1.reference2());
    const double step =
        t * 0.5 * ((p1.reference1() - p0.reference1()) + (p1.reference1() - p0.reference2()));
    p0.mutTarget = 0.0;
    p1.mutTarget = step;
    v.mutTarget = step * (scaled2 + a * (scaled1 - scaled2));
}

void fillFourPoint(double a, double t, double rho, const PointChoice& choice, PointRows& rows)
{
    const double c = 0.5 * t;
    for (const std::size_t i : choice.normalization)
        rows[i].mutTarget = c * (rows[i].reference1() + rows[i].reference2());
    PointRow& v = rows[choice.vPoint];
    const double contrast = v.reference2() - v.reference1() / rho;
    v.mutTarget = c * (rho + 1.0) * (v.reference2() - a * contrast);
}

/// A target without background that has these results: what the references' noise does depends on
/// nothing else.
AnalysisInput likeTarget(const AnalysisInput& input, Method method, double a, double t)
{
    AnalysisInput like = input;
    const PointChoice choice = choosePoints(like.table);
    for (PointRow& row : like.table)
        row.useVicTarget = true; // map values keep the blank
    if (method == Method::ThreePoint)
        fillThreePoint(a, t, choice, like.table);
    else
        fillFourPoint(a, t,
                      ratioGradient(input.table, input.conditions.thickness,
                                    input.spectra.edgeJump(SpectrumSet::Ref1),
                                    input.spectra.edgeJump(SpectrumSet::Ref2))
                          .rho,
                      choice, like.table);
    return like;
}

} // namespace

MapMean mapMean(const AnalysisInput& input, Method method, const MapSums& sums,
                const TableCovariances& covariances)
{
    MapMean mean;
    const double n = sums.pixels;
    mean.biasA = sums.biasA / n;
    mean.biasT = sums.biasT / n;
    mean.a = sums.a / n - mean.biasA;
    mean.t = sums.t / n - mean.biasT;
    mean.sigmaA = std::sqrt(sums.varianceA) / n;
    mean.sigmaT = std::sqrt(sums.varianceT) / n;
    TableCovariances common = covariances;
    common[SpectrumSet::Target] = TableCovariance();
    constexpr double anyLevel = 0.683; // no interval is wanted
    const TargetUncertainty uncertainty =
        targetUncertainty(likeTarget(input, method, mean.a, mean.t), method, common, anyLevel);
    mean.sigmaARef = uncertainty.sigmaARef;
    mean.sigmaTRef = uncertainty.sigmaTRef;
    mean.degrees = uncertainty.degrees;
    return mean;
}

#include "analysis/LcfUncertainty.h"

#include "analysis/Constants.h"
#include "analysis/LinearSolver.h"
#include "analysis/NormalizedSpectrum.h"
#include "analysis/PooledVariance.h"
#include "analysis/SpectrumChange.h"
#include "analysis/StudentT.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace
{

/// A normalized value between two points of a spectrum.
struct Between {
    std::size_t left = 0;
    std::size_t right = 0;
    double part = 0.0; ///< of the right point
    bool isMeasured = false;
};

/// The normalized values of the points of one spectrum.
class Normalization
{
public:
    explicit Normalization(const MeasuredSums& sums) : m_sums(sums), m_spectrum(sums.spectrum())
    {
        const SpectrumPoints& points = m_spectrum.points;
        const auto doesNotRise = [](const SpectrumPoint& left, const SpectrumPoint& right) {
            return !(left.energy < right.energy);
        };
        if (std::adjacent_find(points.begin(), points.end(), doesNotRise) != points.end())
            m_normalized.emplace(points, m_spectrum.preVic, m_spectrum.postVic);
    }

    Between place(double energy) const
    {
        const std::size_t right = rightNeighbour(energy);
        if (right == 0)
            return {};
        const double from = m_spectrum.points[right - 1].energy;
        const double to = m_spectrum.points[right].energy;
        return {right - 1, right, to > from ? (energy - from) / (to - from) : 0.0, true};
    }
    double at(const Between& place, double energy) const
    {
        if (!place.isMeasured)
            return 0.0;
        return normalizedBetween(m_spectrum.points[place.left], m_spectrum.points[place.right],
                                 m_spectrum.preVic, m_spectrum.postVic, energy);
    }
    double ofPoint(std::size_t i) const { return m_sums.normalizedBases(i).normalized; }
    double heightAt(std::size_t i) const { return m_sums.normalizedBases(i).height; }

    /// Variance of a normalized value by the noise of its own points; that of the lines is left
    /// out.
    double variance(const Between& place, const SpectrumNoise& noise) const
    {
        if (!place.isMeasured)
            return 0.0;
        const double left = (1.0 - place.part) / heightAt(place.left);
        const double right = place.part / heightAt(place.right);
        return left * left * noise.varianceAt(place.left) +
               right * right * noise.varianceAt(place.right);
    }

    /// Derivatives of a result by the measured mu-t from those by the normalized values of all
    /// points: an error of a mu-t moves its own value, and by the lines all others.
    std::vector<double> byMeasured(const std::vector<double>& byNormalized) const
    {
        std::vector<double> by(byNormalized.size(), 0.0);
        Vector<6> byFits{};
        for (std::size_t i = 0; i < by.size(); ++i) {
            if (byNormalized[i] == 0.0)
                continue;
            const NormalizedBases bases = m_sums.normalizedBases(i);
            by[i] = byNormalized[i] / bases.height;
            for (std::size_t k = 0; k < bases.pre.size(); ++k) {
                byFits[k] -= by[i] * ((1.0 - bases.normalized) * bases.pre[k]);
                byFits[k + bases.pre.size()] -= by[i] * (bases.normalized * bases.post[k]);
            }
        }
        for (std::size_t i = 0; i < by.size(); ++i)
            by[i] += m_sums.fitWeight(byFits, i);
        return by;
    }

private:
    /// As NormalizedSpectrum finds it, which is needed only for energies that do not rise.
    std::size_t rightNeighbour(double energy) const
    {
        if (m_normalized)
            return m_normalized->rightNeighbour(energy);
        const SpectrumPoints& points = m_spectrum.points;
        if (points.size() < 2 ||
            !(energy >= points.front().energy && energy <= points.back().energy))
            return 0;
        const auto found =
            std::lower_bound(points.begin() + 1, points.end(), energy,
                             [](const SpectrumPoint& point, double e) { return point.energy < e; });
        return static_cast<std::size_t>(found - points.begin());
    }

    const MeasuredSums& m_sums;
    const FittedSpectrum& m_spectrum;
    std::optional<NormalizedSpectrum> m_normalized;
};

/// A fitted point of the target with the references there.
struct FittedPoint {
    std::size_t index; ///< of the target's point
    Between place1;
    Between place2;
    double x1;
    double x2;
    double residual;
};

/// What the noise of the spectra makes of a fit.
struct FitNoise {
    double reducedChiSquare;
    double bias; ///< of the fraction
};

/// The fit once more, point by point.
class Residuals
{
public:
    explicit Residuals(const JudgedFit& judged);

    LcfGradient gradient() const;
    FitNoise judge(const SpectrumNoises& noises) const;

private:
    void findInfluence();

    const LinearCombination& m_fit;
    Normalization m_ref1;
    Normalization m_ref2;
    Normalization m_target;
    std::array<std::size_t, 3> m_sizes; ///< points of Ref 1, Ref 2 and target
    std::vector<FittedPoint> m_points;
    /// The inverse normal matrix times the derivatives of the fraction by the weights.
    Vector<3> m_influence{};
};

Residuals::Residuals(const JudgedFit& judged)
    : m_fit(judged.fit), m_ref1(judged.ref1), m_ref2(judged.ref2),
      m_target(judged.target), m_sizes{judged.ref1.spectrum().points.size(),
                                       judged.ref2.spectrum().points.size(),
                                       judged.target.spectrum().points.size()}
{
    const SpectrumPoints& points = judged.target.spectrum().points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double energy = points[i].energy;
        if (!judged.range.contains(energy))
            continue;
        const Between place1 = m_ref1.place(energy);
        const Between place2 = m_ref2.place(energy);
        const double x1 = m_ref1.at(place1, energy);
        const double x2 = m_ref2.at(place2, energy);
        const double fitted = m_fit.p1 * x1 + m_fit.p2 * x2 + m_fit.p3;
        m_points.push_back({i, place1, place2, x1, x2, m_target.ofPoint(i) - fitted});
    }
    findInfluence();
}

void Residuals::findInfluence()
{
    Matrix<3> normal{};
    for (const FittedPoint& point : m_points) {
        const Vector<3> x{point.x1, point.x2, 1.0};
        for (std::size_t k = 0; k < x.size(); ++k)
            for (std::size_t l = 0; l < x.size(); ++l)
                normal[k][l] += x[k] * x[l];
    }
    const double sum = m_fit.p1 + m_fit.p2;
    m_influence = solveLinear<3>(normal, {m_fit.p2 / (sum * sum), -m_fit.p1 / (sum * sum), 0.0});
}

LcfGradient Residuals::gradient() const
{
    const auto add = [](const Between& place, double derivative, std::vector<double>& to) {
        if (!place.isMeasured)
            return;
        to[place.left] += (1.0 - place.part) * derivative;
        to[place.right] += place.part * derivative;
    };
    std::vector<double> by1(m_sizes[0], 0.0);
    std::vector<double> by2(m_sizes[1], 0.0);
    std::vector<double> byTarget(m_sizes[2], 0.0);
    for (const FittedPoint& point : m_points) {
        const double influence =
            m_influence[0] * point.x1 + m_influence[1] * point.x2 + m_influence[2];
        add(point.place1, m_influence[0] * point.residual - m_fit.p1 * influence, by1);
        add(point.place2, m_influence[1] * point.residual - m_fit.p2 * influence, by2);
        byTarget[point.index] += influence;
    }
    return {m_ref1.byMeasured(by1), m_ref2.byMeasured(by2), m_target.byMeasured(byTarget)};
}

FitNoise Residuals::judge(const SpectrumNoises& noises) const
{
    double squares = 0.0;
    double sum1 = 0.0;
    double sum2 = 0.0;
    for (const FittedPoint& point : m_points) {
        const double variance1 = m_ref1.variance(point.place1, *noises[SpectrumSet::Ref1]);
        const double variance2 = m_ref2.variance(point.place2, *noises[SpectrumSet::Ref2]);
        const double own = std::sqrt(noises[SpectrumSet::Target]->varianceAt(point.index)) /
                           m_target.heightAt(point.index);
        const double variance =
            own * own + m_fit.p1 * m_fit.p1 * variance1 + m_fit.p2 * m_fit.p2 * variance2;
        squares += point.residual * point.residual / variance;
        sum1 += variance1;
        sum2 += variance2;
    }
    const double degrees = static_cast<double>(m_points.size()) - 3.0;
    return {degrees > 0.0 ? squares / degrees : notANumber,
            -(m_influence[0] * sum1 * m_fit.p1 + m_influence[1] * sum2 * m_fit.p2)};
}

double variance(const std::vector<double>& gradient, const SpectrumNoise& noise)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < gradient.size(); ++i)
        sum += gradient[i] * gradient[i] * noise.varianceAt(i);
    return sum;
}

} // namespace

double LcfUncertainty::sigmaValence(const ReferenceValences& valences) const
{
    return sigmaA * std::abs(valences.ref1 - valences.ref2);
}

bool LcfUncertainty::isBiased() const
{
    constexpr double small = 0.2;
    return std::abs(biasA) > small * std::hypot(sigmaA, sigmaARef);
}

LcfGradient lcfGradient(const JudgedFit& judged)
{
    return Residuals(judged).gradient();
}

LcfShift lcfShift(const JudgedFit& judged, const std::array<double, 3>& sigmas)
{
    const std::array<const FittedSpectrum*, 3> spectra{
        &judged.ref1.spectrum(), &judged.ref2.spectrum(), &judged.target.spectrum()};
    const auto change = [&](std::size_t place) {
        if (sigmas[place] == 0.0)
            return 0.0;
        const auto fraction = [&](double shift) {
            const FittedSpectrum shifted = withShift(*spectra[place], shift);
            auto all = spectra;
            all[place] = &shifted;
            return fitLinearCombination(*all[0], *all[1], *all[2], judged.range).share1();
        };
        return (fraction(sigmas[place]) - fraction(-sigmas[place])) / 2.0;
    };
    return {change(2), std::hypot(change(0), change(1))};
}

LcfUncertainty lcfUncertainty(const JudgedFit& judged, const SpectrumNoises& noises, double level,
                              const LcfShift& shift)
{
    constexpr std::array<SpectrumSet::Index, 3> spectra{SpectrumSet::Ref1, SpectrumSet::Ref2,
                                                        SpectrumSet::Target};
    LcfUncertainty result;
    if (!std::all_of(spectra.begin(), spectra.end(),
                     [&](auto i) { return noises[i].has_value(); })) {
        result.sigmaA = result.sigmaARef = result.reducedChiSquare = result.biasA = notANumber;
        return result;
    }
    const Residuals residuals(judged);
    const LcfGradient gradient = residuals.gradient();
    PooledVariance all;
    double own = 0.0;
    double common = 0.0;
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        const SpectrumNoise& noise = *noises[spectra[i]];
        const double part = variance(gradient[i], noise);
        (spectra[i] == SpectrumSet::Target ? own : common) += part;
        all.add(part, noise.degrees);
    }
    own += shift.own * shift.own;
    common += shift.common * shift.common;
    for (const double part : {shift.own, shift.common})
        if (part != 0.0)
            all.add(part * part, std::numeric_limits<double>::infinity());
    result.sigmaA = std::sqrt(own);
    result.sigmaARef = std::sqrt(common);
    result.degrees = all.degrees();
    const FitNoise fitNoise = residuals.judge(noises);
    result.reducedChiSquare = fitNoise.reducedChiSquare;
    result.biasA = fitNoise.bias;
    const double a = judged.fit.share1();
    const double halfWidth =
        studentQuantile(level, result.degrees) * std::hypot(result.sigmaA, result.sigmaARef);
    if (std::isfinite(a) && std::isfinite(halfWidth))
        result.a = Interval{a - halfWidth, a + halfWidth};
    return result;
}

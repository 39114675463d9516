#include "examples/ErrorBudget.h"

#include "analysis/FittedSpectrum.h"
#include "examples/AbsorptionModel.h"
#include "examples/MixedSampleFiles.h"

#include <array>
#include <cmath>

namespace
{

using Three = std::array<double, 3>;

constexpr Three normalization = {8313.0, 8381.0, 8404.5};
constexpr double vPoint = absorption::contrastEnergy;

/// f[0, 1, 2], the divided difference of second order: 0 for a straight line.
double secondDifference(const Three& f)
{
    const auto& e = normalization;
    return ((f[2] - f[1]) / (e[2] - e[1]) - (f[1] - f[0]) / (e[1] - e[0])) / (e[2] - e[0]);
}

/// The straight line through the outer two of three values, at the V point.
double straightAtV(const Three& f)
{
    const auto& e = normalization;
    return f[0] + (f[2] - f[0]) / (e[2] - e[0]) * (vPoint - e[0]);
}

/// The references as the method sees them.
struct Seen {
    Three reference1, reference2;
    double reference1V, reference2V;
};

/// The method's view of a sample, linearised around the truth.
class Linearised
{
public:
    Linearised(const MixedSample& sample, const Seen& seen)
        : m_sample(sample), m_seen(seen),
          m_c(sample.thicknessT / (sample.thickness1 + sample.thickness2))
    {
        for (std::size_t i = 0; i < 3; ++i)
            m_sum[i] = seen.reference1[i] + seen.reference2[i];
    }

    double c() const { return m_c; }
    double weight1() const { return m_sample.thicknessT * m_sample.fraction / m_sample.thickness1; }
    double weight2() const
    {
        return m_sample.thicknessT * (1.0 - m_sample.fraction) / m_sample.thickness2;
    }

    /// How much c grows by an addition to the target at the normalization points.
    double scaleGrowth(const Three& addition) const
    {
        return secondDifference(addition) / secondDifference(m_sum);
    }

    /// What the method then expects in addition at the V point.
    double expectedAtV(const Three& addition) const
    {
        const double growth = scaleGrowth(addition);
        Three rest = addition;
        for (std::size_t i = 0; i < 3; ++i)
            rest[i] -= growth * m_sum[i];
        return growth / m_c * (weight1() * m_seen.reference1V + weight2() * m_seen.reference2V) +
               straightAtV(rest);
    }

    /// Change of mu-t at the V point for a change of a from 0 to 1.
    double contrast() const
    {
        return m_sample.thicknessT * (m_seen.reference1V / m_sample.thickness1 -
                                      m_seen.reference2V / m_sample.thickness2);
    }

    /// What a thickness ratio that is too large by 1 adds to the expected target at the V point.
    double perRatio() const
    {
        const double rho = m_sample.thickness1 / m_sample.thickness2;
        return m_c * ((1.0 - m_sample.fraction) * m_seen.reference2V -
                      m_sample.fraction * m_seen.reference1V / (rho * rho));
    }

private:
    MixedSample m_sample;
    Seen m_seen;
    double m_c;
    Three m_sum{};
};

FittedSpectrum spectrumOf(const MixedSample& sample, Measurement measurement)
{
    FittedSpectrum spectrum;
    for (const double energy : scanEnergies())
        spectrum.points.push_back({0.0, energy, muT(sample, measurement, energy)});
    spectrum.setBounds({8300.0, 8350.0, 8450.0});
    spectrum.fitVictreens();
    return spectrum;
}

double blankAt(const MixedSample& sample, double energy)
{
    return muT(sample, Measurement::Blank, energy);
}

template <typename Function>
Three atNormalization(Function f)
{
    return {f(normalization[0]), f(normalization[1]), f(normalization[2])};
}

/// @param lines  whether the post-edge lines are subtracted
Seen seenReferences(const MixedSample& sample, const FittedSpectrum& ref1,
                    const FittedSpectrum& ref2, bool lines)
{
    const auto seen1 = [&](double e) {
        return muT(sample, Measurement::Ref1, e) - blankAt(sample, e) -
               (lines ? ref1.postVicAt(e) : 0.0);
    };
    const auto seen2 = [&](double e) {
        return muT(sample, Measurement::Ref2, e) - blankAt(sample, e) -
               (lines ? ref2.postVicAt(e) : 0.0);
    };
    return {atNormalization(seen1), atNormalization(seen2), seen1(vPoint), seen2(vPoint)};
}

/// Variance of mu-t by the counting of both intensities.
double variance(const MixedSample& sample, Measurement measurement, double energy)
{
    return (1.0 + std::exp(muT(sample, measurement, energy))) / photonsPerStep;
}

double square(double x)
{
    return x * x;
}

/// Of one normalization point: what its noise does to the target expected at the V point.
/// @param perTarget  weight of the target's noise
/// @param ratio1, ratio2  weights by the thickness ratio, of Ref 1 and Ref 2
double pointVariance(const MixedSample& sample, double c, double energy, double perTarget,
                     double ratio1, double ratio2)
{
    return square(perTarget) * variance(sample, Measurement::Target, energy) +
           square(c * perTarget - ratio1) * variance(sample, Measurement::Ref1, energy) +
           square(c * perTarget - ratio2) * variance(sample, Measurement::Ref2, energy) +
           square((2.0 * c - 1.0) * perTarget - ratio1 - ratio2) *
               variance(sample, Measurement::Blank, energy);
}

NoiseErrors noiseErrors(const MixedSample& sample, bool defaults)
{
    const FittedSpectrum ref1 = spectrumOf(sample, Measurement::Ref1);
    const FittedSpectrum ref2 = spectrumOf(sample, Measurement::Ref2);
    const Seen seen = seenReferences(sample, ref1, ref2, defaults);
    const Linearised method(sample, seen);
    const double c = method.c();

    // Sum by sum, rho changes by rho (n1 / sum R1 - n2 / sum R2); edge jumps hardly change.
    double ratio1 = 0.0;
    double ratio2 = 0.0;
    if (!defaults) {
        const double rho = sample.thickness1 / sample.thickness2;
        const auto sum = [](const Three& r) { return r[0] + r[1] + r[2]; };
        ratio1 = -method.perRatio() * rho / sum(seen.reference1);
        ratio2 = method.perRatio() * rho / sum(seen.reference2);
    }
    const double w1 = method.weight1();
    const double w2 = method.weight2();
    double ofV = variance(sample, Measurement::Target, vPoint) +
                 square(w1) * variance(sample, Measurement::Ref1, vPoint) +
                 square(w2) * variance(sample, Measurement::Ref2, vPoint) +
                 square(w1 + w2 - 1.0) * variance(sample, Measurement::Blank, vPoint);
    double ofScale = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        Three unit{};
        unit[i] = 1.0;
        const double e = normalization[i];
        ofV += pointVariance(sample, c, e, -method.expectedAtV(unit), ratio1, ratio2);
        ofScale += pointVariance(sample, c, e, method.scaleGrowth(unit), 0.0, 0.0);
    }
    return {std::sqrt(ofV) / std::abs(method.contrast()), 2.0 * std::sqrt(ofScale)};
}

} // namespace

DefaultErrors defaultErrors(const MixedSample& sample)
{
    const FittedSpectrum ref1 = spectrumOf(sample, Measurement::Ref1);
    const FittedSpectrum ref2 = spectrumOf(sample, Measurement::Ref2);
    const Linearised method(sample, seenReferences(sample, ref1, ref2, true));
    const double t = sample.thicknessT;
    const double sum = sample.thickness1 + sample.thickness2;

    // The lines per thickness, without the blank that they hold.
    const auto line1 = [&](double e) {
        return (ref1.postVicAt(e) - blankAt(sample, e)) / sample.thickness1;
    };
    const auto line2 = [&](double e) {
        return (ref2.postVicAt(e) - blankAt(sample, e)) / sample.thickness2;
    };
    const auto meanLine = [&](double e) {
        return t * (sample.thickness1 * line1(e) + sample.thickness2 * line2(e)) / sum;
    };
    const auto blank = [&](double e) { return 2.0 * method.c() * blankAt(sample, e); };
    const Three meanLines = atNormalization(meanLine);
    const Three blanks = atNormalization(blank);

    const double contrast = method.contrast();
    DefaultErrors errors{};
    errors.lineCurved = (meanLine(vPoint) - method.expectedAtV(meanLines)) / contrast;
    errors.linesDiffer = t * (line1(vPoint) - line2(vPoint)) *
                         (sample.fraction - sample.thickness1 / sum) / contrast;
    errors.blankTwice = ((method.weight1() + method.weight2()) * blankAt(sample, vPoint) -
                         method.expectedAtV(blanks)) /
                        contrast;
    const double ratioError =
        ref1.edgeJump() / ref2.edgeJump() - sample.thickness1 / sample.thickness2;
    errors.ratio = -method.perRatio() * ratioError / contrast;
    errors.thickness = 2.0 * (method.scaleGrowth(meanLines) + method.scaleGrowth(blanks));
    return errors;
}

NoiseErrors noiseOfJob(const MixedSample& sample)
{
    return noiseErrors(sample, false);
}

NoiseErrors noiseOfDefaults(const MixedSample& sample)
{
    return noiseErrors(sample, true);
}

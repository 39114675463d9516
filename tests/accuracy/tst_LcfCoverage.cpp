#include "analysis/LcfUncertainty.h"
#include "tests/accuracy/CoverageTable.h"
#include "tests/accuracy/SimulatedSample.h"

#include <QtTest>

#include <cmath>

namespace
{

constexpr LcfRange range{8313.0, 8404.5};

LinearCombination fitOf(const SimulatedSample::Spectra& spectra)
{
    return fitLinearCombination(spectra[SpectrumSet::Ref1], spectra[SpectrumSet::Ref2],
                                spectra[SpectrumSet::Target], range);
}

LcfUncertainty uncertaintyOf(const SimulatedSample::Spectra& spectra, const SpectrumNoises& noises,
                             double level)
{
    MeasuredSums ref1(spectra[SpectrumSet::Ref1]);
    MeasuredSums ref2(spectra[SpectrumSet::Ref2]);
    MeasuredSums target(spectra[SpectrumSet::Target]);
    for (MeasuredSums* sums : {&ref1, &ref2, &target})
        sums->keepNormalizedBases();
    const LinearCombination fit = fitOf(spectra);
    return lcfUncertainty({ref1, ref2, target, range, fit}, noises, level);
}

SpectrumNoises known(double sigma)
{
    SpectrumNoises noises;
    for (auto& noise : noises)
        noise = SpectrumNoise{sigma, 1e9, {}};
    return noises;
}

} // namespace

/// How often the intervals of the linear combination fit hold its result without noise, and what is
/// said of its residuals and its bias.
class tst_LcfCoverage : public QObject
{
    Q_OBJECT

private:
    CoverageTable m_cells; ///< deviations in those expected
    double m_chiSquares = 0.0;
    int m_fits = 0;

    void draw(double fraction, double sigma, const SimulatedSample::Chosen& chosen,
              const QByteArray& name, std::uint_fast64_t seed);

private slots:
    void initTestCase();
    void intervalsHoldTheResultWithoutNoise();
    void deviationsAreAsPredicted();
    void chiSquareCountsTheReferencesNoise();
    void biasIsThatOfManyDraws();
    void unknownNoiseHasNoFigures();
    void cleanupTestCase();
};

void tst_LcfCoverage::draw(double fraction, double sigma, const SimulatedSample::Chosen& chosen,
                           const QByteArray& name, std::uint_fast64_t seed)
{
    MixedSample truth;
    truth.fraction = fraction;
    const SimulatedSample sample(truth);
    const double expected = fitOf(sample.smooth()).share1();
    const LcfUncertainty known68 = uncertaintyOf(sample.smooth(), known(sigma), 0.683);
    const bool all = chosen == SimulatedSample::everySpectrum;
    const double expectedSigma =
        all ? std::hypot(known68.sigmaA, known68.sigmaARef) : known68.sigmaA;
    if (all && known68.isBiased())
        return;
    NormalNoise random(seed);
    const QByteArray cell = isFull() ? name + ", a " + QByteArray::number(fraction) + ", noise " +
                                           QByteArray::number(sigma)
                                     : name;
    for (int draw = drawsOr(400); draw > 0; --draw) {
        const SimulatedSample::Spectra spectra = sample.noisy(sigma, random, chosen);
        const SpectrumNoises noises = SimulatedSample::scatter(spectra);
        const LcfUncertainty one = uncertaintyOf(spectra, noises, 0.683);
        const LcfUncertainty two = uncertaintyOf(spectra, noises, 0.954);
        const double predicted = std::hypot(one.sigmaA, one.sigmaARef) / expectedSigma;
        m_cells[cell].add((fitOf(spectra).share1() - expected) / expectedSigma,
                          predicted * predicted, holds(one.a, expected), holds(two.a, expected));
        if (all && sigma > 5e-4) { // smaller noise is less than what the model leaves
            m_chiSquares += uncertaintyOf(spectra, known(sigma), 0.683).reducedChiSquare;
            ++m_fits;
        }
    }
}

void tst_LcfCoverage::initTestCase()
{
    std::uint_fast64_t seed = 300;
    for (const double fraction : {0.0, 0.35, 1.0}) {
        for (const double sigma : {1e-4, 1e-3, 5e-3, 1e-2})
            draw(fraction, sigma, {false, false, true, false}, "noise of the target", ++seed);
        for (const double sigma : {1e-4, 5e-4, 1e-3, 2e-3, 3e-3})
            draw(fraction, sigma, SimulatedSample::everySpectrum, "noise of all", ++seed);
    }
}

void tst_LcfCoverage::intervalsHoldTheResultWithoutNoise()
{
    for (const auto& [name, cell] : m_cells.cells()) {
        QVERIFY2(std::abs(cell.percentOne() - 68.3) < 3.0, cell.text(name));
        QVERIFY2(std::abs(cell.percentTwo() - 95.4) < 1.5, cell.text(name));
    }
}

void tst_LcfCoverage::deviationsAreAsPredicted()
{
    for (const auto& [name, cell] : m_cells.cells())
        QVERIFY2(std::abs(cell.predictedOverFound() - 1.0) < 0.05, cell.text(name));
}

void tst_LcfCoverage::chiSquareCountsTheReferencesNoise()
{
    const double mean = m_chiSquares / m_fits;
    std::printf("| reduced chi-square | %d | %.3f |\n", m_fits, mean);
    QVERIFY2(std::abs(mean - 1.0) < 0.05, qPrintable(QString::number(mean)));
}

/// At a noise of 0.01 the references' noise moves the fraction by half a standard deviation.
void tst_LcfCoverage::biasIsThatOfManyDraws()
{
    MixedSample truth;
    truth.fraction = 1.0;
    const SimulatedSample sample(truth);
    constexpr double sigma = 0.01;
    const LcfUncertainty expected = uncertaintyOf(sample.smooth(), known(sigma), 0.683);
    QVERIFY(expected.isBiased());
    const double total = std::hypot(expected.sigmaA, expected.sigmaARef);
    NormalNoise random(500);
    double sum = 0.0;
    constexpr int draws = 2000;
    for (int draw = 0; draw < draws; ++draw)
        sum += fitOf(sample.noisy(sigma, random)).share1();
    const double found = sum / draws - fitOf(sample.smooth()).share1();
    std::printf("| bias in sigma at a noise of 0.01 | %.3f | %.3f found |\n",
                expected.biasA / total, found / total);
    QVERIFY2(std::abs(found - expected.biasA) < 0.1 * total,
             qPrintable(QStringLiteral("%1 %2").arg(found).arg(expected.biasA)));
}

void tst_LcfCoverage::unknownNoiseHasNoFigures()
{
    const SimulatedSample sample{MixedSample()};
    SpectrumNoises noises = known(1e-3);
    noises[SpectrumSet::Blank].reset(); // which the fit does not use
    QVERIFY(std::isfinite(uncertaintyOf(sample.smooth(), noises, 0.683).sigmaA));
    noises[SpectrumSet::Ref2].reset();
    const LcfUncertainty unknown = uncertaintyOf(sample.smooth(), noises, 0.683);
    QVERIFY(std::isnan(unknown.sigmaA));
    QVERIFY(std::isnan(unknown.sigmaARef));
    QVERIFY(std::isnan(unknown.reducedChiSquare));
    QVERIFY(!unknown.a);
}

void tst_LcfCoverage::cleanupTestCase()
{
    m_cells.print("intervals of the linear combination fit");
}

QTEST_APPLESS_MAIN(tst_LcfCoverage)
#include "tst_LcfCoverage.moc"

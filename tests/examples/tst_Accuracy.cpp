#include "examples/ErrorBudget.h"
#include "examples/MeasuredSample.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace
{

MixedSample sampleOf(double fraction, double thickness1, double thickness2, double blank)
{
    MixedSample sample;
    sample.fraction = fraction;
    sample.thickness1 = thickness1;
    sample.thickness2 = thickness2;
    sample.blank = blank;
    return sample;
}

} // namespace

/// What docs/numerics.md says of the example, by the panel itself.
class tst_Accuracy : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    std::optional<Found> found(const Measuring& conditions, const MixedSample& sample,
                               std::optional<std::uint_fast64_t> seed) const
    {
        return measure(conditions, sample, m_dir.path(), seed);
    }

private slots:
    void fourDigitsUnderTheJobsConditions_data();
    void fourDigitsUnderTheJobsConditions();
    void defaultsErrAsDerived_data();
    void defaultsErrAsDerived();
    void threePointsNeedAFlatBackground();
    void noiseScattersAsDerived();
};

void tst_Accuracy::fourDigitsUnderTheJobsConditions_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<double>("thickness1");
    QTest::addColumn<double>("thickness2");
    QTest::newRow("the example") << 0.35 << 0.55 << 0.50;
    QTest::newRow("pure Ref 1") << 1.0 << 0.55 << 0.50;
    QTest::newRow("pure Ref 2") << 0.0 << 0.55 << 0.50;
    QTest::newRow("unlike references") << 0.35 << 0.30 << 0.60;
}

void tst_Accuracy::fourDigitsUnderTheJobsConditions()
{
    QFETCH(double, fraction);
    QFETCH(double, thickness1);
    QFETCH(double, thickness2);
    const MixedSample sample = sampleOf(fraction, thickness1, thickness2, 1.0);
    for (const bool exact : {false, true}) {
        Measuring conditions = exampleConditions();
        conditions.job.exactMethod = exact;
        const auto result = found(conditions, sample, std::nullopt);
        QVERIFY(result);
        QVERIFY2(std::abs(result->a - fraction) < 5e-5, qPrintable(QString::number(result->a)));
        QVERIFY2(std::abs(result->thickness - sample.thicknessRatio()) < 5e-5,
                 qPrintable(QString::number(result->thickness)));
    }
}

void tst_Accuracy::defaultsErrAsDerived_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<double>("blank");
    QTest::newRow("the example") << 0.35 << 1.0;
    QTest::newRow("no blank in the spectra") << 0.35 << 0.0;
    QTest::newRow("twice the blank") << 0.35 << 2.0;
    QTest::newRow("another mixture") << 0.8 << 1.0;
}

// First order in the errors, which are a few hundredths: the rest is of their square.
void tst_Accuracy::defaultsErrAsDerived()
{
    QFETCH(double, fraction);
    QFETCH(double, blank);
    const MixedSample sample = sampleOf(fraction, 0.55, 0.50, blank);
    const auto result = found(defaultConditions(), sample, std::nullopt);
    QVERIFY(result);
    const DefaultErrors derived = defaultErrors(sample);
    const double inA = result->a - sample.fraction;
    const double inThickness = result->thickness - sample.thicknessRatio();
    QVERIFY2(std::abs(inA - derived.a()) < 6e-4, qPrintable(QString::number(inA)));
    QVERIFY2(std::abs(inThickness - derived.thickness) < 6e-4,
             qPrintable(QString::number(inThickness)));
    QVERIFY(std::abs(inA) < 0.025);
}

// Without a slope under the target the three points are exact as well.
void tst_Accuracy::threePointsNeedAFlatBackground()
{
    Measuring conditions = exampleConditions();
    std::vector<JobPoint> points(3);
    points[0].energy = QStringLiteral("8313");
    points[1].energy = QStringLiteral("8381");
    points[2].energy = QStringLiteral("8390");
    points[2].vPoint = true;
    conditions.job.points = points;
    MixedSample sample;
    const auto sloping = found(conditions, sample, std::nullopt);
    QVERIFY(sloping);
    QVERIFY(std::abs(sloping->a - sample.fraction) > 1e-3);
    sample.backgroundK = 0.0;
    const auto flat = found(conditions, sample, std::nullopt);
    QVERIFY(flat);
    QVERIFY2(std::abs(flat->a - sample.fraction) < 5e-5, qPrintable(QString::number(flat->a)));
}

// The scatter of 60 samples is known to a tenth; four of these tenths are allowed.
void tst_Accuracy::noiseScattersAsDerived()
{
    constexpr int count = 60;
    const MixedSample sample;
    const NoiseErrors derived = noiseOfJob(sample);
    double squaresA = 0.0;
    double squaresThickness = 0.0;
    for (std::uint_fast64_t seed = 1; seed <= count; ++seed) {
        const auto result = found(exampleConditions(), sample, seed);
        QVERIFY(result);
        squaresA += std::pow(result->a - sample.fraction, 2);
        squaresThickness += std::pow(result->thickness - sample.thicknessRatio(), 2);
    }
    QVERIFY(std::abs(std::sqrt(squaresA / count) / derived.a - 1.0) < 0.4);
    QVERIFY(std::abs(std::sqrt(squaresThickness / count) / derived.thickness - 1.0) < 0.4);
}

QTEST_MAIN(tst_Accuracy)
#include "tst_Accuracy.moc"

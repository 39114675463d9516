#include "analysis/TargetUncertainty.h"
#include "tests/accuracy/SimulatedSample.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

SpectrumNoises known(double sigma)
{
    SpectrumNoises noises;
    for (auto& noise : noises)
        noise = SpectrumNoise{sigma, 20.0, {}};
    return noises;
}

TargetUncertainty uncertaintyOf(const AnalysisInput& input, Method method,
                                const SpectrumNoises& noises)
{
    return targetUncertainty(input, method, tableCovariances(input, noises), 0.683);
}

bool near(double value, double expected)
{
    return std::abs(value - expected) <= 1e-9 * std::abs(expected);
}

} // namespace

/// What is told of a point method's result, beside the coverage that many draws show.
class tst_TargetUncertainty : public QObject
{
    Q_OBJECT

private:
    SimulatedSample m_sample{MixedSample()};

private slots:
    void threePointsByHand();
    void ownAndCommonPartAreApart();
    void noiseThatIsNotKnownTellsNothing();
    void missingBlankHasNoNoise();
    void valenceIsScaledAndInOrder();
    void energyShiftAddsToTheOwnPart();
    void degenerateTableIsNotANumber();
};

/// Exact references: with x = (TV - T0) / (T1 - T0), the fraction (x - x2) / (x1 - x2) has the
/// variance sigma^2 (1 + h (1 - x)^2 + x^2) / ((T1 - T0) (x1 - x2))^2, where h = 0.4^2 + 0.6^2
/// since T0 is interpolated at three fifths of the way.
void tst_TargetUncertainty::threePointsByHand()
{
    Conditions conditions;
    conditions.referencesMinusVictreen = false;
    const AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 3, conditions);
    SpectrumNoises noises = known(0.0);
    noises[SpectrumSet::Target] = SpectrumNoise{1e-3, 20.0, {}};
    const TargetUncertainty found = uncertaintyOf(input, Method::ThreePoint, noises);
    const PointRows& rows = input.table;
    const auto scaled = [](double v, double zero, double one) { return (v - zero) / (one - zero); };
    const double x = scaled(rows[2].target(), rows[0].target(), rows[1].target());
    const double x1 = scaled(rows[2].reference1(), rows[0].reference1(), rows[1].reference1());
    const double x2 = scaled(rows[2].reference2(), rows[0].reference2(), rows[1].reference2());
    const double step = rows[1].target() - rows[0].target();
    const double sigma =
        1e-3 * std::sqrt(1.0 + 0.52 * (1.0 - x) * (1.0 - x) + x * x) / std::abs(step * (x1 - x2));
    QVERIFY(near(found.sigmaA, sigma));
    QCOMPARE(found.sigmaARef, 0.0);
    QVERIFY(near(found.degrees, 20.0));
    QVERIFY(found.a.has_value());
    // Student's quantile for 20 degrees is 1.028; Fieller's interval is hardly wider here.
    QVERIFY(std::abs((found.a->high - found.a->low) / (2.0 * 1.0283 * sigma) - 1.0) < 2e-3);
}

void tst_TargetUncertainty::ownAndCommonPartAreApart()
{
    const AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 4, {});
    SpectrumNoises own = known(0.0);
    own[SpectrumSet::Target] = SpectrumNoise{1e-3, 20.0, {}};
    SpectrumNoises common = known(1e-3);
    common[SpectrumSet::Target] = SpectrumNoise{0.0, 20.0, {}};
    const Method method = Method::FourPointLeastSquares;
    const TargetUncertainty ofOwn = uncertaintyOf(input, method, own);
    const TargetUncertainty ofCommon = uncertaintyOf(input, method, common);
    const TargetUncertainty both = uncertaintyOf(input, method, known(1e-3));
    QVERIFY(ofOwn.sigmaA > 0.0 && ofCommon.sigmaARef > 0.0);
    QCOMPARE(ofOwn.sigmaARef, 0.0);
    QCOMPARE(ofCommon.sigmaA, 0.0);
    QVERIFY(near(both.sigmaA, ofOwn.sigmaA));
    QVERIFY(near(both.sigmaARef, ofCommon.sigmaARef));
    QVERIFY(near(both.sigmaT, ofOwn.sigmaT));
    QVERIFY(near(both.sigmaTRef, ofCommon.sigmaTRef));
    QVERIFY(both.degrees > 20.0); // four estimates know more than one
}

void tst_TargetUncertainty::noiseThatIsNotKnownTellsNothing()
{
    const AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 4, {});
    SpectrumNoises noises = known(1e-3);
    noises[SpectrumSet::Ref2].reset();
    const TargetUncertainty found = uncertaintyOf(input, Method::FourPointExact, noises);
    QVERIFY(found.sigmaA > 0.0);
    QVERIFY(std::isnan(found.sigmaARef));
    QVERIFY(!found.a);
    noises = known(1e-3);
    noises[SpectrumSet::Target].reset();
    QVERIFY(std::isnan(uncertaintyOf(input, Method::FourPointExact, noises).sigmaA));
}

void tst_TargetUncertainty::missingBlankHasNoNoise()
{
    AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 4, {});
    input.spectra.all[SpectrumSet::Blank] = nullptr;
    input.table = unroundedTable(input.table, input.spectra, input.conditions);
    SpectrumNoises noises = known(1e-3);
    noises[SpectrumSet::Blank].reset();
    const TargetUncertainty found = uncertaintyOf(input, Method::FourPointExact, noises);
    QVERIFY(found.sigmaARef > 0.0);
    QVERIFY(found.a.has_value());
}

void tst_TargetUncertainty::valenceIsScaledAndInOrder()
{
    const AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 4, {});
    const TargetUncertainty found = uncertaintyOf(input, Method::FourPointExact, known(1e-3));
    const ReferenceValences falling{2.0, 4.0};
    QVERIFY(near(found.sigmaValence(falling), 2.0 * found.sigmaA));
    QVERIFY(near(found.sigmaValenceRef(falling), 2.0 * found.sigmaARef));
    QVERIFY(near(found.valence(falling)->low, 4.0 - 2.0 * found.a->high));
    QVERIFY(near(found.valence(falling)->high, 4.0 - 2.0 * found.a->low));
    const ReferenceValences rising{4.0, 2.0};
    QVERIFY(near(found.valence(rising)->low, 2.0 + 2.0 * found.a->low));
    QVERIFY(!TargetUncertainty().valence(rising));
}

/// One standard deviation of the energies moves the entries as told, and is known exactly.
void tst_TargetUncertainty::energyShiftAddsToTheOwnPart()
{
    const AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 3, {});
    SpectrumNoises noises = known(0.0);
    TableCovariances covariances = tableCovariances(input, noises);
    covariances[SpectrumSet::Target]->shift = {0.0, 0.0, 0.01};
    const TargetUncertainty found =
        targetUncertainty(input, Method::ThreePoint, covariances, 0.683);
    AnalysisInput moved = input;
    moved.table[2].mutTarget += 0.01;
    const double change = std::get<TargetResult>(targetResult(moved)).a -
                          std::get<TargetResult>(targetResult(input)).a;
    QVERIFY(near(found.sigmaA, std::abs(change)));
    QVERIFY(std::isinf(found.degrees));
    QCOMPARE(found.sigmaARef, 0.0);
}

void tst_TargetUncertainty::degenerateTableIsNotANumber()
{
    AnalysisInput input = SimulatedSample::input(m_sample.smooth(), 4, {});
    for (PointRow& row : input.table)
        row.mutTarget = row.mutBlank; // the target is nothing
    const TargetUncertainty found = uncertaintyOf(input, Method::FourPointExact, known(1e-3));
    QVERIFY(!std::isfinite(found.sigmaA));
    QVERIFY(!found.a);
    input.table.clear();
    QVERIFY(std::isnan(uncertaintyOf(input, Method::FourPointExact, known(1e-3)).sigmaA));
    QVERIFY(std::isnan(uncertaintyOf(input, Method::ThreePoint, known(1e-3)).sigmaA));
}

QTEST_APPLESS_MAIN(tst_TargetUncertainty)
#include "tst_TargetUncertainty.moc"

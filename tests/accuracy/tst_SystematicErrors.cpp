#include "analysis/SpectrumChange.h"
#include "analysis/SystematicErrors.h"
#include "tests/accuracy/SimulatedSample.h"
#include "tests/model/LiteralFormulas.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

/// Nothing but the blank is taken from the spectra: then the four-point methods hold exactly.
Conditions exactConditions()
{
    Conditions conditions;
    conditions.thickness = ThicknessType::SumBySum;
    conditions.referencesMinusVictreen = false;
    return conditions;
}

SimulatedSample sample()
{
    return SimulatedSample{MixedSample()};
}

/// The three-point result of the sample, literally, with the spectra's energies and mu-t changed.
struct LiteralChange {
    std::array<double, SpectrumSet::count> shift{}; ///< eV
    double leakage = 0.0;                           ///< of the target
    double spread = 0.0;                            ///< of the target's thickness
};

double literalThreePoint(const SimulatedSample::Spectra& spectra, const LiteralChange& change)
{
    const auto mut = [&](SpectrumSet::Index i, double energy) {
        SpectrumPoints points = spectra[i].points;
        for (SpectrumPoint& point : points) {
            point.energy += change.shift[i];
            if (i == SpectrumSet::Target) {
                const double light = (1.0 - change.leakage) * std::exp(-point.mut) + change.leakage;
                point.mut = -std::log(light) - 0.5 * std::pow(point.mut * change.spread, 2);
            }
        }
        return *formulas::muTAt(points, energy);
    };
    const auto point = [&](double energy) {
        const double blank = mut(SpectrumSet::Blank, energy);
        return formulas::Point{energy, mut(SpectrumSet::Ref1, energy) - blank,
                               mut(SpectrumSet::Ref2, energy) - blank,
                               mut(SpectrumSet::Target, energy) - blank};
    };
    return formulas::threePoint(point(8313.0), point(8381.0), point(8390.0)).a;
}

bool near(double value, double expected, double tolerance)
{
    return std::abs(value - expected) <= tolerance;
}

} // namespace

/// What faults that no scatter shows do to the results.
class tst_SystematicErrors : public QObject
{
    Q_OBJECT

private slots:
    void changedSpectrumIsFittedAnew();
    void leakageAddsLight();
    void unevenThicknessTakesTheSquare();
    void changesAreThoseOfTheLiteralMethod();
    void changesOfManyTargetsAreTheSame();
    void fewerPointsAreComparedWithAll();
    void smallChangesAreNoRounding();
    void missingSpectraHaveNoChanges();
    void referencesCloseWhereTheMethodHolds();
    void wrongCrossingDoesNotClose();
    void closureTellsTheErrorBetweenItsEnds();
    void outsideIsCountedInSigmas();
};

void tst_SystematicErrors::changedSpectrumIsFittedAnew()
{
    const auto made = sample();
    const FittedSpectrum& before = made.smooth()[SpectrumSet::Target];
    const FittedSpectrum shifted = withShift(before, 0.25);
    QCOMPARE(shifted.edge, before.edge);
    QCOMPARE(shifted.preEdgeEnd, before.preEdgeEnd);
    QCOMPARE(shifted.points.size(), before.points.size());
    for (std::size_t i = 0; i < before.points.size(); ++i) {
        QCOMPARE(shifted.points[i].energy, before.points[i].energy + 0.25);
        QCOMPARE(shifted.points[i].mut, before.points[i].mut);
    }
    QCOMPARE(shifted.energyMin, before.energyMin + 0.25);
    const auto post = formulas::fitVictreen(
        shifted.points, [&](double energy) { return energy > before.postEdgeStart; });
    QCOMPARE(shifted.postVic.c, post.c);
    QVERIFY(shifted.postVic.c != before.postVic.c);
}

void tst_SystematicErrors::leakageAddsLight()
{
    FittedSpectrum spectrum;
    spectrum.setPoints({{0.0, 8000.0, 0.0}, {0.0, 8010.0, std::log(2.0)}});
    const FittedSpectrum leaking = withLeakage(spectrum, 0.5);
    QVERIFY(near(leaking.points[0].mut, 0.0, 1e-15));
    QVERIFY(near(leaking.points[1].mut, -std::log(0.75), 1e-15));
    QCOMPARE(withLeakage(spectrum, 0.0).points[1].mut, spectrum.points[1].mut);
}

void tst_SystematicErrors::unevenThicknessTakesTheSquare()
{
    FittedSpectrum spectrum;
    spectrum.setPoints({{0.0, 8000.0, 2.0}});
    QVERIFY(near(withUnevenThickness(spectrum, 0.1).points[0].mut, 2.0 - 0.02, 1e-15));
}

void tst_SystematicErrors::changesAreThoseOfTheLiteralMethod()
{
    const auto made = sample();
    const auto& spectra = made.smooth();
    const AnalysisInput input = SimulatedSample::input(spectra, 3, exactConditions());
    const double a = literalThreePoint(spectra, {});
    QVERIFY(near(*fractionsOf(input).point, a, 1e-12));
    const SystematicErrors errors = systematicErrors(input, 0.1);
    const auto change = [&](const LiteralChange& literal) {
        return literalThreePoint(spectra, literal) - a;
    };
    LiteralChange target;
    target.shift[SpectrumSet::Target] = 0.1;
    QVERIFY(near(*errors.targetShift.point, change(target), 1e-12));
    QVERIFY(std::abs(*errors.targetShift.point) > 1e-3);
    LiteralChange ref1;
    ref1.shift[SpectrumSet::Ref1] = 0.1;
    QVERIFY(near(*errors.ref1Shift.point, change(ref1), 1e-12));
    LiteralChange ref2;
    ref2.shift[SpectrumSet::Ref2] = 0.1;
    QVERIFY(near(*errors.ref2Shift.point, change(ref2), 1e-12));
    LiteralChange leakage;
    leakage.leakage = 0.01;
    QVERIFY(near(*errors.leakage.point, change(leakage), 1e-12));
    LiteralChange spread;
    spread.spread = 0.1;
    QVERIFY(near(*errors.thickness.point, change(spread), 1e-12));
    QVERIFY(errors.targetShift.fit.has_value());
    QVERIFY(!systematicErrors(input).thickness.point);
}

void tst_SystematicErrors::changesOfManyTargetsAreTheSame()
{
    const auto made = sample();
    const AnalysisInput input = SimulatedSample::input(made.smooth(), 3, exactConditions());
    const SystematicErrors errors = systematicErrors(input, 0.1);
    const TargetChanges changes = targetChanges(input, shiftedReferences(input.spectra), 0.1);
    QCOMPARE(changes.shift, errors.targetShift.point);
    QCOMPARE(changes.ref1Shift, errors.ref1Shift.point);
    QCOMPARE(changes.ref2Shift, errors.ref2Shift.point);
    QCOMPARE(changes.leakage, errors.leakage.point);
    QCOMPARE(changes.thickness, errors.thickness.point);
    QVERIFY(!changes.threePoint);
    QVERIFY(!changes.fourPoint);
    QVERIFY(!targetChanges(input, {}).ref1Shift);
    QVERIFY(!targetChanges(input, {}).thickness);
}

/// Three points take the first two beside the V point, as if the others were not in use.
void tst_SystematicErrors::fewerPointsAreComparedWithAll()
{
    const auto made = sample();
    const auto& spectra = made.smooth();
    Conditions conditions = exactConditions();
    conditions.thickness = ThicknessType::EdgeJumps; // not exact, so that the methods differ
    for (const int rows : {4, 6}) {
        const AnalysisInput input = SimulatedSample::input(spectra, rows, conditions);
        const double a = *fractionsOf(input).point;
        const TargetChanges changes = targetChanges(input, {});
        QVERIFY(near(*changes.threePoint, literalThreePoint(spectra, {}) - a, 1e-12));
        QCOMPARE(changes.fourPoint.has_value(), rows > 4);
        if (rows > 4)
            QVERIFY(near(*changes.fourPoint,
                         *fractionsOf(SimulatedSample::input(spectra, 4, conditions)).point - a,
                         1e-12));
        QVERIFY(std::abs(*changes.threePoint) > 1e-5);
    }
}

/// Six digits of a mu-t would move the fraction by some 1e-5.
void tst_SystematicErrors::smallChangesAreNoRounding()
{
    const auto made = sample();
    const AnalysisInput input = SimulatedSample::input(made.smooth(), 4, exactConditions());
    QVERIFY(near(*fractionsOf(input).point, MixedSample().fraction, 1e-9));
    const double rounded = std::get<TargetResult>(targetResult(input)).a;
    QVERIFY(!near(rounded, MixedSample().fraction, 1e-9));
}

void tst_SystematicErrors::missingSpectraHaveNoChanges()
{
    const auto made = sample();
    AnalysisInput input = SimulatedSample::input(made.smooth(), 4, exactConditions());
    input.spectra.all[SpectrumSet::Ref2] = nullptr;
    const SystematicErrors errors = systematicErrors(input);
    QVERIFY(!errors.targetShift.point);
    QVERIFY(!errors.ref2Shift.point);
    QVERIFY(!closureOf(input).ref2.point);
    QVERIFY(!closureOf(input).errorAt(0.5));
    input.spectra.all[SpectrumSet::Target] = nullptr;
    QVERIFY(!systematicErrors(input).leakage.fit);
}

void tst_SystematicErrors::referencesCloseWhereTheMethodHolds()
{
    const auto made = sample();
    for (const int rows : {4, 5, 6}) {
        const Closure closure =
            closureOf(SimulatedSample::input(made.smooth(), rows, exactConditions()));
        QVERIFY(near(*closure.ref1.point, 1.0, 1e-9));
        QVERIFY(near(*closure.ref2.point, 0.0, 1e-9));
        QVERIFY(near(*closure.ref1.fit, 1.0, 1e-6));
        QVERIFY(near(*closure.ref2.fit, 0.0, 1e-6));
        QVERIFY(!closure.isDoubtful());
    }
}

void tst_SystematicErrors::wrongCrossingDoesNotClose()
{
    const auto made = sample();
    AnalysisInput input = SimulatedSample::input(made.smooth(), 4, exactConditions());
    input.table[1].energy = 8385.0;
    const Closure closure = closureOf(input);
    QVERIFY(std::abs(*closure.ref1.point - 1.0) > 0.05 || std::abs(*closure.ref2.point) > 0.05);
    QVERIFY(closure.isDoubtful());
}

void tst_SystematicErrors::closureTellsTheErrorBetweenItsEnds()
{
    const Closure closure{{1.04, {}}, {-0.02, {}}};
    QVERIFY(near(*closure.errorAt(1.0), 0.04, 1e-15));
    QVERIFY(near(*closure.errorAt(0.0), -0.02, 1e-15));
    QVERIFY(near(*closure.errorAt(0.25), 0.01 - 0.015, 1e-15));
    QVERIFY(!closure.isDoubtful());
    QVERIFY((Closure{{0.9, {}}, {0.0, {}}}.isDoubtful()));
    QVERIFY((Closure{{1.0, {}}, {0.06, {}}}.isDoubtful()));
    const double none = std::numeric_limits<double>::quiet_NaN();
    QVERIFY((Closure{{none, {}}, {0.0, {}}}.isDoubtful()));
}

void tst_SystematicErrors::outsideIsCountedInSigmas()
{
    QCOMPARE(sigmasOutside(1.5, 0.25), 2.0);
    QCOMPARE(sigmasOutside(-0.5, 0.25), 2.0);
    QCOMPARE(sigmasOutside(0.0, 0.25), 0.0);
    QCOMPARE(sigmasOutside(1.0, 0.25), 0.0);
}

QTEST_APPLESS_MAIN(tst_SystematicErrors)
#include "tst_SystematicErrors.moc"

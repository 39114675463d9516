#include "analysis/LinearCombinationFit.h"
#include "analysis/TargetResult.h"
#include "tests/support/Exact.h"
#include "tests/support/TableRow.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

constexpr double tolerance = 1e-9;

/// A spectrum whose jump at the edge has this height.
FittedSpectrum withJump(double jump)
{
    FittedSpectrum spectrum;
    spectrum.setPoints({{14.0, 8000.0, 0.0}, {12.0, 9000.0, jump}});
    spectrum.postVic = {jump, 0.0, 0.0};
    spectrum.edge = 8350.0;
    return spectrum;
}

/// Both references absorb alike at the normalization points: 1, 2, 1 times a thickness of 0.5; at
/// the V point 1 and 2 times. The target is 0.5 times the sum of the references on 0.25 + 0.5 E,
/// and a quarter of Ref 1 at the V point. Energies are small numbers, so that all is exact.
PointRows fourRows()
{
    return {row(1.0, 0.5, 0.5, 1.25), row(2.0, 1.0, 1.0, 2.25), vRow(3.0, 0.5, 1.0, 2.625),
            row(4.0, 0.5, 0.5, 2.75)};
}

/// k = 0.75 of Ref 2 and 0.25 of Ref 1 at the V point; the target's 0.5 is half of each.
PointRows threeRows()
{
    return {row(1.0, 0.25, 0.5, 0.0), row(2.0, 2.25, 1.5, 1.0), vRow(3.0, 0.75, 1.25, 0.5)};
}

struct Case {
    FittedSpectrum ref1 = withJump(3.0);
    FittedSpectrum ref2 = withJump(1.0);
    FittedSpectrum target = withJump(2.0);
    Conditions conditions;
    PointRows table;

    explicit Case(PointRows rows) : table(std::move(rows))
    {
        conditions.thickness = ThicknessType::SumBySum;
    }
    void chooseExact()
    {
        conditions.exact = true;
        conditions.leastSquares = false;
    }
    AnalysisInput input() const
    {
        return {table, {{&ref1, &ref2, &target, nullptr}}, conditions, {2.0, 3.0}};
    }
};

TargetResult resultOf(const Case& made)
{
    const auto outcome = targetResult(made.input());
    if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
        qFatal("refused: %d", static_cast<int>(refusal->reason));
    return std::get<TargetResult>(outcome);
}

bool isRefused(const AnalysisInput& input, Refusal reason, int rows)
{
    const auto outcome = targetResult(input);
    const auto* refusal = std::get_if<RunRefusal>(&outcome);
    return refusal != nullptr && refusal->reason == reason && refusal->rowsInUse == rows;
}

} // namespace

class tst_TargetResult : public QObject
{
    Q_OBJECT

private slots:
    void threePoints();
    void fourPointsExact();
    void fourPointsLeastSquares();
    void fivePointsLeastSquares();
    void ratioIsTheChosenOne();
    void allSevenRatios();
    void blankOfTheTarget();
    void rowsNotInUseDoNotCount();
    void refusalsInTheirOrder();
    void rowCountsThatNoMethodTakes();
    void fitNeedsTwoMarkedRows();
    void fitByHand();
};

void tst_TargetResult::threePoints()
{
    const TargetResult result = resultOf(Case(threeRows()));
    QCOMPARE(result.method, Method::ThreePoint);
    COMPARE_EXACT(result.a, 0.5);
    COMPARE_EXACT(result.valence, 2.5);
    QVERIFY(std::isnan(result.thickness));
    QVERIFY(!result.ratios);
}

void tst_TargetResult::fourPointsExact()
{
    Case made(fourRows());
    made.chooseExact();
    const TargetResult result = resultOf(made);
    QCOMPARE(result.method, Method::FourPointExact);
    COMPARE_EXACT(result.a, 0.25);
    COMPARE_EXACT(result.valence, 2.75);
    COMPARE_EXACT(result.thickness, 1.0); // the target against the mean of the references
    QVERIFY(result.ratios);
    COMPARE_EXACT(result.ratios->trSbyS, 1.0);
}

void tst_TargetResult::fourPointsLeastSquares()
{
    const TargetResult result = resultOf(Case(fourRows()));
    QCOMPARE(result.method, Method::FourPointLeastSquares);
    QVERIFY2(within(tolerance, result.a, 0.25), qPrintable(QString::number(result.a, 'g', 17)));
    QVERIFY(within(tolerance, result.valence, 2.75));
    QVERIFY(within(tolerance, result.thickness, 1.0));
    QVERIFY(result.ratios);
}

/// A fourth normalization point that does not lie on the line has to draw the line to itself, which
/// the exact form, of the first three, would not notice.
void tst_TargetResult::fivePointsLeastSquares()
{
    Case made(fourRows());
    made.table.push_back(row(6.0, 1.5, 1.5, 4.75)); // 0.5 S + 0.25 + 0.5 E
    QVERIFY(within(tolerance, resultOf(made).a, 0.25));
    made.table.back().mutTarget = 4.5;
    const TargetResult result = resultOf(made);
    QCOMPARE(result.method, Method::FourPointLeastSquares);
    QVERIFY(!within(tolerance, result.a, 0.25));
}

/// With rho = 3 for 1 the fraction is (R2 rho - rho u 0.875) / (R2 rho - R1), u = 2 / (rho + 1):
/// (3 - 1.3125) / 2.5.
void tst_TargetResult::ratioIsTheChosenOne()
{
    Case made(fourRows());
    made.chooseExact();
    made.conditions.thickness = ThicknessType::EdgeJumps;
    const TargetResult result = resultOf(made);
    COMPARE_EXACT(result.ratios->trVic2, 3.0);
    QVERIFY2(within(tolerance, result.a, 0.675), qPrintable(QString::number(result.a, 'g', 17)));
    COMPARE_EXACT(result.thickness, 1.0);
}

/// Ref 1 has 3, 5, 9 and Ref 2 1, 2, 4 with a blank of 1: 2, 4, 8 against 0, 1, 3.
void tst_TargetResult::allSevenRatios()
{
    Case made({row(1.0, 3.0, 1.0, 0.0), row(2.0, 5.0, 2.0, 0.0), row(4.0, 9.0, 4.0, 0.0),
               vRow(3.0, 100.0, -100.0, 0.0)});
    for (PointRow& changed : made.table)
        changed.mutBlank = 1.0;
    const ThicknessRatios ratios = thicknessRatios(made.input());
    COMPARE_EXACT(ratios.trSbyS, 3.5);                                     // 14 / 4
    COMPARE_EXACT(ratios.trMean, std::numeric_limits<double>::infinity()); // 2 / 0 among them
    COMPARE_EXACT(ratios.trLsA, 2.0);                                      // y = 2 x + 2
    COMPARE_EXACT(ratios.trLsB, 2.0);
    COMPARE_EXACT(ratios.trLsANB, 2.0); // y = 2 x + 1
    COMPARE_EXACT(ratios.trLsBNB, 1.0);
    COMPARE_EXACT(ratios.trVic2, 3.0);
    for (PointRow& changed : made.table)
        changed.useVicRefs = true; // the line took the blank along
    COMPARE_EXACT(thicknessRatios(made.input()).trMean, (3.0 + 2.5 + 2.25) / 3.0);
    COMPARE_EXACT(thicknessRatios(made.input()).trLsB, 1.0);
}

/// A blank under all is taken from the references in any case, from the target only where no line
/// was taken before.
void tst_TargetResult::blankOfTheTarget()
{
    Case made(threeRows());
    const double blanks[] = {0.125, 0.25, 0.5};
    for (std::size_t i = 0; i < made.table.size(); ++i) {
        made.table[i].mut1 += blanks[i];
        made.table[i].mut2 += blanks[i];
        made.table[i].mutTarget += blanks[i];
        made.table[i].mutBlank = blanks[i];
    }
    COMPARE_EXACT(resultOf(made).a, 0.5);
    for (std::size_t i = 0; i < made.table.size(); ++i) {
        made.table[i].useVicTarget = true;
        made.table[i].mutTarget -= blanks[i];
    }
    COMPARE_EXACT(resultOf(made).a, 0.5);
}

void tst_TargetResult::rowsNotInUseDoNotCount()
{
    Case made(threeRows());
    PointRow other = vRow(2.5, 7.0, 8.0, 9.0);
    other.use = false;
    made.table.insert(made.table.begin(), other);
    other.vPoint = false;
    made.table.push_back(other);
    const TargetResult result = resultOf(made);
    QCOMPARE(result.method, Method::ThreePoint);
    COMPARE_EXACT(result.a, 0.5);
}

/// All is wrong at first, and mended one after the other.
void tst_TargetResult::refusalsInTheirOrder()
{
    Case made(threeRows());
    made.table[1].use = false;
    made.table[2].use = false;
    AnalysisInput input = made.input();
    const FittedSpectrum empty;
    input.spectra.all = {&empty, nullptr, nullptr, nullptr};
    QVERIFY(isRefused(input, Refusal::NoVPoint, 1));
    input.table[2].use = true;
    QVERIFY(isRefused(input, Refusal::Ref1NotValid, 2));
    input.spectra.all[SpectrumSet::Ref1] = &made.ref1;
    QVERIFY(isRefused(input, Refusal::Ref2NotValid, 2));
    input.spectra.all[SpectrumSet::Ref2] = &made.ref2;
    QVERIFY(isRefused(input, Refusal::TargetNotValid, 2));
    input.spectra.all[SpectrumSet::Target] = &made.target;
    QVERIFY(isRefused(input, Refusal::RowCount, 2));
    input.table[1].use = true;
    QVERIFY(std::holds_alternative<TargetResult>(targetResult(input)));
}

void tst_TargetResult::rowCountsThatNoMethodTakes()
{
    Case made(fourRows());
    made.chooseExact();
    QVERIFY(std::holds_alternative<TargetResult>(targetResult(made.input())));
    made.table.push_back(row(6.0, 1.5, 1.5, 4.75));
    QVERIFY(isRefused(made.input(), Refusal::RowCount, 5));
    made.table.resize(3);
    for (PointRow& changed : made.table)
        changed.use = changed.vPoint;
    QVERIFY(isRefused(made.input(), Refusal::RowCount, 1));
    QVERIFY(isRefused({}, Refusal::NoVPoint, 0));
}

void tst_TargetResult::fitNeedsTwoMarkedRows()
{
    Case made(threeRows());
    const auto refused = [&made] {
        const auto outcome = lcfResult(made.input());
        const auto* refusal = std::get_if<RunRefusal>(&outcome);
        return refusal != nullptr && refusal->reason == Refusal::NoFitRange;
    };
    QVERIFY(refused());
    made.table[0].tRatio = true;
    QVERIFY(refused());
    made.table[2].tRatio = true;
    QVERIFY(!refused());
    QVERIFY(std::isnan(std::get<LinearCombination>(lcfResult({made.table, {}, {}, {}})).p1));
}

/// With lines of 0 and 1 the mu-t are normalized as they are. The target is a quarter of Ref 1 and
/// three quarters of Ref 2, but outside of the range.
void tst_TargetResult::fitByHand()
{
    Case made({row(8200.0, 0, 0, 0), row(8280.0, 0, 0, 0)});
    made.table[0].tRatio = made.table[1].tRatio = true;
    SpectrumPoints points1;
    SpectrumPoints points2;
    SpectrumPoints mixture;
    const double values1[] = {0.0, 1.0, 0.5, 0.25, 1.0, 7.0};
    const double values2[] = {0.5, 0.0, 1.0, 0.25, 0.5, -7.0};
    for (int i = 0; i < 6; ++i) { // the last one is outside of the range
        const double energy = 8200.0 + 20.0 * i;
        points1.push_back({1.0 * i, energy, values1[i]});
        points2.push_back({1.0 * i, energy, values2[i]});
        mixture.push_back({1.0 * i, energy, 0.25 * values1[i] + 0.75 * values2[i] + (i / 5)});
    }
    made.ref1 = made.ref2 = made.target = withJump(1.0);
    made.ref1.setPoints(points1);
    made.ref2.setPoints(points2);
    made.target.setPoints(mixture);
    const auto outcome = lcfResult(made.input());
    QVERIFY(std::holds_alternative<LinearCombination>(outcome));
    const auto& fit = std::get<LinearCombination>(outcome);
    QVERIFY(within(tolerance, fit.p1, 0.25));
    QVERIFY(within(tolerance, fit.p2, 0.75));
    QVERIFY(within(tolerance, fit.p3, 0.0));
    QVERIFY(within(tolerance, fit.share1(), 0.25));
    QVERIFY(within(tolerance, fit.valence({2.0, 3.0}), 2.75));
    QCOMPARE(fit.curve.size(), std::size_t{5});
    for (std::size_t i = 0; i < fit.curve.size(); ++i) {
        COMPARE_EXACT(fit.curve[i].energy, mixture[i].energy);
        QVERIFY(within(tolerance, fit.curve[i].mut, mixture[i].mut));
    }
}

QTEST_APPLESS_MAIN(tst_TargetResult)
#include "tst_TargetResult.moc"

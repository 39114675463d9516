#include "analysis/FourPoint.h"
#include "analysis/Method.h"
#include "analysis/TargetResult.h"
#include "analysis/ThreePoint.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"
#include "tests/support/TableRow.h"

#include <QtTest>

#include <algorithm>

namespace
{

/// Two normalization points and the V point; all values are sums of powers of two.
PointRows threeRows()
{
    return {row(8313, 0.25, 0.5), row(8381, 2.25, 1.5), vRow(8350, 0.75, 1.25)};
}

double fraction(const PointRows& rows)
{
    const PointChoice choice = choosePoints(rows);
    const ThreePoint method(rows, choice);
    return method.fraction(rows[choice.normalization[0]].target(),
                           rows[choice.normalization[1]].target(), rows[choice.vPoint].target());
}

void setTargets(PointRows& rows, const std::function<double(const PointRow&)>& value)
{
    for (PointRow& changed : rows)
        changed.mutTarget = value(changed);
}

/// References of thicknesses t1 and t2 whose states absorb alike but at the V point, and a target
/// of thickness t, the mixture a : (1 - a), on mu0 + k E.
struct Sample {
    double t1 = 0.5;
    double t2 = 0.625;
    double t = 0.75;
    double a = 0.375;
    double mu0 = 0.3;
    double k = -2e-5;

    PointRow at(double energy, double state1, double state2) const
    {
        return row(energy, t1 * state1, t2 * state2,
                   t * (a * state1 + (1 - a) * state2) + mu0 + k * energy);
    }
    PointRows rows(int normalizationPoints) const
    {
        PointRows made;
        const double alike[] = {0.25, 1.3, 1.1, 0.9, 1.05, 1.2};
        for (int i = 0; i < normalizationPoints; ++i)
            made.push_back(at(8300 + 25.0 * i, alike[i], alike[i]));
        made.push_back(at(8350, 0.8, 1.0));
        made.back().vPoint = true;
        return made;
    }
    double rho() const { return t1 / t2; }
    /// The target against the mean of the references.
    double ratio() const { return t / ((t1 + t2) / 2); }
};

TargetScale exactScale(const PointRows& rows)
{
    const PointChoice choice = choosePoints(rows);
    return FourPointExact(rows, choice)
        .scale(rows[choice.normalization[0]].target(), rows[choice.normalization[1]].target(),
               rows[choice.normalization[2]].target());
}

TargetScale leastSquaresScale(const PointRows& rows)
{
    const PointChoice choice = choosePoints(rows);
    std::vector<double> targets;
    for (const std::size_t i : choice.normalization)
        targets.push_back(rows[i].target());
    const FourPointLeastSquares method(rows, choice);
    return method.size() == targets.size() ? method.scale(targets.data()) : TargetScale{0, 0, 0};
}

double fourPointFraction(const PointRows& rows, const TargetScale& scale, double rho)
{
    const PointChoice choice = choosePoints(rows);
    return vPointFraction(rows, choice, rho).at(scale, rows[choice.vPoint].target());
}

bool close(double found, double expected, double relative)
{
    return std::abs(found - expected) <= relative * std::abs(expected);
}

formulas::Point literal(const PointRow& row)
{
    return {row.energy, row.mut1 - row.mutBlank, row.mut2 - row.mutBlank,
            row.useVicTarget ? row.mutTarget : row.mutTarget - row.mutBlank};
}

PointRows randomRows(Random& random, int count)
{
    PointRows rows(static_cast<std::size_t>(count));
    for (PointRow& made : rows) {
        made.use = !random.oneIn(4);
        made.vPoint = random.oneIn(4);
        made.useVicTarget = random.oneIn(2);
        made.energy = random.oneIn(10) ? random.anyNumber() : random.uniform(8000, 9000);
        for (double* const value : {&made.mut1, &made.mut2, &made.mutTarget, &made.mutBlank})
            *value = random.oneIn(10) ? random.anyNumber() : random.uniform(-2, 3);
    }
    return rows;
}

} // namespace

class tst_PointMethods : public QObject
{
    Q_OBJECT
private slots:
    void choiceOfPoints();
    void choiceOfPointsWithSeveralVPoints();
    void choiceOfMethod_data();
    void choiceOfMethod();
    void meanOfTheValences();
    void blankIsSubtracted();

    void threePointByHand();
    void targetLikeAReferenceIsItsState();
    void offsetAndScaleOfTheTargetDoNotMatter();
    void victreenFlagKeepsTheTargetsBlankOnly();
    void equalReferencesGiveNoFraction();
    void zeroDenominatorsAreNotFinite();
    void mapThicknessMixesTheReferences();
    void tooFewPointsGiveNotANumber();
    void threePointAgreesWithTheLiteralFormula();

    void exactScaleByHand();
    void knownScaleComesBack_data();
    void knownScaleComesBack();
    void knownMixtureComesBack_data();
    void knownMixtureComesBack();
    void threePointsGiveTheExactFormByLeastSquares();
    void exactFormTakesTheFirstThreePoints();
    void sumIsRegressedNotTheTarget();
    void straightLineUnderTheTargetDoesNotMatter();
    void ratioOfZeroGivesFractionOfZero();
    void degenerateSumsAreNotFinite();
    void fourPointAgreesWithTheLiteralFormula();
};

void tst_PointMethods::choiceOfPoints()
{
    PointRows rows = threeRows();
    rows.insert(rows.begin() + 1, row(8360, 1, 1));
    rows[1].use = false;
    const PointChoice choice = choosePoints(rows);
    QCOMPARE(choice.count, 3);
    QCOMPARE(choice.normalization, (std::vector<std::size_t>{0, 2}));
    QVERIFY(choice.hasVPoint());
    QCOMPARE(choice.vPoint, std::size_t{3});

    rows[3].use = false;
    QVERIFY(!choosePoints(rows).hasVPoint());
    QCOMPARE(choosePoints(rows).count, 2);
    QVERIFY(!choosePoints({}).hasVPoint());
}

void tst_PointMethods::choiceOfPointsWithSeveralVPoints()
{
    PointRows rows = threeRows();
    rows[0].vPoint = true;
    const PointChoice choice = choosePoints(rows);
    QCOMPARE(choice.vPoint, std::size_t{2});
    QCOMPARE(choice.normalization, (std::vector<std::size_t>{1}));
    QCOMPARE(choice.count, 3);
}

void tst_PointMethods::choiceOfMethod_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<bool>("exact");
    QTest::addColumn<bool>("leastSquares");
    QTest::addColumn<int>("method"); // -1: none
    const auto number = [](Method method) { return static_cast<int>(method); };
    QTest::newRow("two") << 2 << true << false << -1;
    QTest::newRow("none") << 0 << false << true << -1;
    QTest::newRow("three") << 3 << true << false << number(Method::ThreePoint);
    QTest::newRow("three, ls") << 3 << false << true << number(Method::ThreePoint);
    QTest::newRow("four") << 4 << true << false << number(Method::FourPointExact);
    QTest::newRow("four, ls") << 4 << false << true << number(Method::FourPointLeastSquares);
    QTest::newRow("four, neither") << 4 << false << false << number(Method::FourPointLeastSquares);
    QTest::newRow("five") << 5 << true << false << -1;
    QTest::newRow("five, ls") << 5 << false << true << number(Method::FourPointLeastSquares);
    QTest::newRow("five, neither") << 5 << false << false << -1;
    QTest::newRow("eight, ls") << 8 << false << true << number(Method::FourPointLeastSquares);
}

void tst_PointMethods::choiceOfMethod()
{
    QFETCH(int, rows);
    QFETCH(bool, exact);
    QFETCH(bool, leastSquares);
    QFETCH(int, method);
    const std::optional<Method> chosen = chooseMethod(rows, exact, leastSquares);
    QCOMPARE(chosen ? static_cast<int>(*chosen) : -1, method);
}

void tst_PointMethods::meanOfTheValences()
{
    const ReferenceValences valences{2, 3};
    COMPARE_EXACT(valences.mean(0.25), 2.75);
    COMPARE_EXACT(valences.mean(1), 2.0);
    COMPARE_EXACT(valences.mean(0), 3.0);
    const ReferenceValences others{2, 4};
    COMPARE_EXACT(others.mean(-0.5), 5.0);
}

void tst_PointMethods::blankIsSubtracted()
{
    PointRow made = row(8350, 1.5, 2.5, 3.5);
    made.mutBlank = 0.25;
    COMPARE_EXACT(made.reference1(), 1.25);
    COMPARE_EXACT(made.reference2(), 2.25);
    COMPARE_EXACT(made.target(), 3.25);
    made.useVicRefs = true;
    COMPARE_EXACT(made.reference1(), 1.25);
    made.useVicTarget = true;
    COMPARE_EXACT(made.reference2(), 2.25);
    COMPARE_EXACT(made.target(), 3.5);
}

// Scaled values at V: Ref 2 (1.25 - 0.5) / 1 = 0.75, Ref 1 (0.75 - 0.25) / 2 = 0.25. A target of
// 0.375 there is (0.375 - 0.75) / (0.25 - 0.75) = 0.75 of Ref 1.
void tst_PointMethods::threePointByHand()
{
    PointRows rows = threeRows();
    rows[0].mutTarget = 1;
    rows[1].mutTarget = 5;
    rows[2].mutTarget = 2.5;
    COMPARE_EXACT(fraction(rows), 0.75);
}

void tst_PointMethods::targetLikeAReferenceIsItsState()
{
    const ReferenceValences valences{2, 3};
    Random random;
    for (int run = 0; run < 1000; ++run) {
        PointRows rows = threeRows();
        for (PointRow& changed : rows) {
            changed.mut1 = random.uniform(0, 3);
            changed.mut2 = random.uniform(0, 3);
            changed.mutBlank = random.uniform(0, 0.1);
        }
        setTargets(rows, [](const PointRow& r) { return r.mut1; });
        COMPARE_EXACT(fraction(rows), 1.0);
        COMPARE_EXACT(valences.mean(fraction(rows)), 2.0);
        setTargets(rows, [](const PointRow& r) { return r.mut2; });
        QVERIFY(fraction(rows) == 0.0);
        COMPARE_EXACT(valences.mean(fraction(rows)), 3.0);
    }
}

void tst_PointMethods::offsetAndScaleOfTheTargetDoNotMatter()
{
    PointRows rows = threeRows();
    const double target[] = {1, 5, 2.5};
    for (const double scale : {1.0, 0.125, 8.0}) {
        for (const double offset : {0.0, -2.0, 0.5}) {
            for (std::size_t i = 0; i < 3; ++i)
                rows[i].mutTarget = target[i] * scale + offset;
            COMPARE_EXACT(fraction(rows), 0.75);
        }
    }
}

void tst_PointMethods::victreenFlagKeepsTheTargetsBlankOnly()
{
    PointRows rows = threeRows();
    const double blank[] = {0.5, 0.25, 1};
    const double target[] = {1, 5, 2.5};
    for (std::size_t i = 0; i < 3; ++i) {
        rows[i].mut1 += blank[i];
        rows[i].mut2 += blank[i];
        rows[i].mutTarget = target[i] + blank[i];
        rows[i].mutBlank = blank[i];
    }
    COMPARE_EXACT(fraction(rows), 0.75);
    for (std::size_t i = 0; i < 3; ++i) {
        rows[i].useVicTarget = true;
        rows[i].mutTarget = target[i];
    }
    COMPARE_EXACT(fraction(rows), 0.75);
}

void tst_PointMethods::equalReferencesGiveNoFraction()
{
    PointRows rows = threeRows();
    setTargets(rows, [](const PointRow& r) { return r.mut2; });
    for (PointRow& changed : rows)
        changed.mut2 = changed.mut1;
    rows[2].mutTarget = 9;
    QVERIFY(!std::isfinite(fraction(rows)));
}

void tst_PointMethods::zeroDenominatorsAreNotFinite()
{
    PointRows rows = threeRows();
    setTargets(rows, [](const PointRow& r) { return r.energy; });
    rows[1].mutTarget = rows[0].mutTarget;
    QVERIFY(!std::isfinite(fraction(rows)));
    rows = threeRows();
    setTargets(rows, [](const PointRow& r) { return r.energy; });
    rows[1].mut2 = rows[0].mut2;
    QVERIFY(!std::isfinite(fraction(rows)));
}

// Mean of the steps 2.25 - 0.25 (Ref 1) and 2.25 - 0.5 (Ref 1 against Ref 2): 1.875.
void tst_PointMethods::mapThicknessMixesTheReferences()
{
    const PointRows rows = threeRows();
    const ThreePoint method(rows, choosePoints(rows));
    COMPARE_EXACT(method.thickness(1, 8.5), 4.0);
}

void tst_PointMethods::tooFewPointsGiveNotANumber()
{
    PointRows rows = threeRows();
    rows[0].vPoint = true;
    const ThreePoint twoVPoints(rows, choosePoints(rows));
    QVERIFY(std::isnan(twoVPoints.fraction(1, 2, 3)));
    QVERIFY(std::isnan(twoVPoints.thickness(1, 2)));
    const FourPointExact exact(rows, choosePoints(rows));
    QVERIFY(std::isnan(exact.scale(1, 2, 3).q));
    QVERIFY(std::isnan(exact.scale(1, 2, 3).mu0));
    for (PointRow& changed : rows)
        changed.vPoint = false;
    QVERIFY(std::isnan(ThreePoint(rows, choosePoints(rows)).fraction(1, 2, 3)));
    QVERIFY(std::isnan(vPointFraction(rows, choosePoints(rows), 1).at({1, 0, 0}, 1)));
    QCOMPARE(FourPointLeastSquares({}, {}).size(), std::size_t{0});
    QVERIFY(std::isnan(FourPointLeastSquares({}, {}).scale(nullptr).q));
}

void tst_PointMethods::threePointAgreesWithTheLiteralFormula()
{
    Random random;
    for (int run = 0; run < 100000; ++run) {
        const PointRows rows = randomRows(random, 8);
        const PointChoice choice = choosePoints(rows);
        if (!choice.hasVPoint() || choice.normalization.size() < 2)
            continue;
        const PointRow& p0 = rows[choice.normalization[0]];
        const PointRow& p1 = rows[choice.normalization[1]];
        const PointRow& v = rows[choice.vPoint];
        const ThreePoint method(rows, choice);
        const auto expected = formulas::threePoint(literal(p0), literal(p1), literal(v));
        COMPARE_EXACT(method.fraction(p0.target(), p1.target(), v.target()), expected.a);
        COMPARE_EXACT(method.thickness(p0.target(), p1.target()), expected.thickness);
    }
}

// Energies 0, 1, 3 and S = 2, 4, 4; T = S / 2 + 1 + 2 E = 2, 5, 9. D_S = 4 * 1 + 4 * -3 + 2 * 2 =
// -4 and D_T = 9 * 1 + 5 * -3 + 2 * 2 = -2.
void tst_PointMethods::exactScaleByHand()
{
    const PointRows rows{row(0, 1, 1, 2), row(1, 1, 3, 5), row(3, 2, 2, 9), vRow(2, 1, 2, 7)};
    const TargetScale scale = exactScale(rows);
    COMPARE_EXACT(scale.q, 2.0);
    COMPARE_EXACT(scale.mu0, 1.0);
    COMPARE_EXACT(scale.k, 2.0);
    COMPARE_EXACT(scale.thickness(), 1.0);
    // rho = 3, u = 2 / 4 = 0.5, R1V = 1, R2V = 2; mu0 + k EV - TV = 1 + 4 - 7 = -2:
    // (2 * 3 * 0.5 + 3 * 0.25 * -2) / (2 * 3 * 0.5 - 0.5) = 1.5 / 2.5.
    COMPARE_EXACT(fourPointFraction(rows, scale, 3), 1.5 / 2.5);
}

void tst_PointMethods::knownScaleComesBack_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<double>("c");
    QTest::addColumn<double>("mu0");
    QTest::addColumn<double>("k");
    for (const int points : {3, 4, 6}) {
        QTest::addRow("%d points", points) << points << 0.45 << 0.3 << -2e-5;
        QTest::addRow("%d points, steep", points) << points << 2.0 << -7.0 << 1e-3;
        QTest::addRow("%d points, no background", points) << points << 0.5 << 0.0 << 0.0;
    }
}

void tst_PointMethods::knownScaleComesBack()
{
    QFETCH(int, points);
    QFETCH(double, c);
    QFETCH(double, mu0);
    QFETCH(double, k);
    PointRows rows = Sample().rows(points);
    setTargets(rows, [&](const PointRow& r) {
        return c * (r.reference1() + r.reference2()) + mu0 + k * r.energy;
    });
    const auto right = [&](const TargetScale& scale, double relative) {
        return close(1 / scale.q, c, relative) && close(scale.thickness(), 2 * c, relative) &&
               std::abs(scale.mu0 - mu0) < relative * 10 && std::abs(scale.k - k) < relative * 1e-3;
    };
    QVERIFY(right(exactScale(rows), 1e-11));
    // The normal equations square the energies: about six digits go.
    QVERIFY(right(leastSquaresScale(rows), 1e-6));
}

void tst_PointMethods::knownMixtureComesBack_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<double>("thickness2");
    for (const double a : {0.0, 0.375, 1.0, 1.25})
        for (const double t2 : {0.25, 0.5, 0.625})
            QTest::addRow("a %g, t2 %g", a, t2) << a << t2;
}

void tst_PointMethods::knownMixtureComesBack()
{
    Sample sample;
    QFETCH(double, fraction);
    QFETCH(double, thickness2);
    sample.a = fraction;
    sample.t2 = thickness2;
    const PointRows three = sample.rows(3);
    const TargetScale exact = exactScale(three);
    QVERIFY(close(exact.thickness(), sample.ratio(), 1e-11));
    QVERIFY(std::abs(fourPointFraction(three, exact, sample.rho()) - fraction) < 1e-10);
    const PointRows six = sample.rows(6);
    const TargetScale fitted = leastSquaresScale(six);
    QVERIFY(close(fitted.thickness(), sample.ratio(), 1e-6));
    QVERIFY(std::abs(fourPointFraction(six, fitted, sample.rho()) - fraction) < 1e-5);
}

void tst_PointMethods::threePointsGiveTheExactFormByLeastSquares()
{
    Random random;
    for (int run = 0; run < 200; ++run) {
        PointRows rows = Sample().rows(3);
        for (PointRow& changed : rows)
            changed.mutTarget += random.uniform(-0.01, 0.01);
        const TargetScale exact = exactScale(rows);
        const TargetScale fitted = leastSquaresScale(rows);
        QVERIFY(close(fitted.q, exact.q, 1e-5));
        QVERIFY(close(fitted.mu0, exact.mu0, 1e-4));
        QVERIFY(close(fitted.k, exact.k, 1e-4));
        QVERIFY(std::abs(fourPointFraction(rows, fitted, 0.8) -
                         fourPointFraction(rows, exact, 0.8)) < 1e-4);
    }
}

void tst_PointMethods::exactFormTakesTheFirstThreePoints()
{
    PointRows rows = Sample().rows(5);
    const TargetScale before = exactScale(rows);
    rows[3].mutTarget += 1;
    rows[4].mut1 += 1;
    const TargetScale after = exactScale(rows);
    COMPARE_EXACT(after.q, before.q);
    COMPARE_EXACT(after.mu0, before.mu0);
    COMPARE_EXACT(after.k, before.k);
}

// Energies -1 and 1, twice each; T = -1, 1, 1, -1 and S = -1, 1, 2, -2 without a slope in energy.
// Regressing S on T gives 6/4 as q; regressing T on S would give 10/6.
void tst_PointMethods::sumIsRegressedNotTheTarget()
{
    const PointRows rows{row(-1, -0.5, -0.5, -1), row(-1, 0.5, 0.5, 1), row(1, 1, 1, 1),
                         row(1, -1, -1, -1)};
    const TargetScale scale = leastSquaresScale(rows);
    QVERIFY(close(scale.q, 1.5, 1e-14));
    QVERIFY(close(scale.thickness(), 2 / 1.5, 1e-14));
}

void tst_PointMethods::straightLineUnderTheTargetDoesNotMatter()
{
    const Sample sample;
    for (const int points : {3, 5}) {
        const PointRows rows = sample.rows(points);
        PointRows tilted = rows;
        for (PointRow& changed : tilted)
            changed.mutTarget += 0.75 - 0.0005 * (changed.energy - 8300);
        const auto compare = [&](const TargetScale& a, const TargetScale& b, double tolerance) {
            QVERIFY(close(b.thickness(), a.thickness(), tolerance));
            QVERIFY(std::abs(fourPointFraction(tilted, b, sample.rho()) -
                             fourPointFraction(rows, a, sample.rho())) < tolerance * 10);
        };
        compare(exactScale(rows), exactScale(tilted), 1e-11);
        compare(leastSquaresScale(rows), leastSquaresScale(tilted), 1e-6);
    }
}

void tst_PointMethods::ratioOfZeroGivesFractionOfZero()
{
    const PointRows rows = Sample().rows(3);
    QVERIFY(fourPointFraction(rows, exactScale(rows), 0) == 0.0);
    QVERIFY(fourPointFraction(rows, leastSquaresScale(rows), 0) == 0.0);
}

void tst_PointMethods::degenerateSumsAreNotFinite()
{
    // The sum of the references is a straight line in energy: D_S = 0.
    PointRows rows{row(0, 1, 1, 2), row(1, 2, 1, 5), row(3, 3, 2, 9), vRow(2, 1, 2, 7)};
    QVERIFY(!std::isfinite(exactScale(rows).mu0));
    QVERIFY(!std::isfinite(exactScale(rows).k));
    QVERIFY(!std::isfinite(exactScale(rows).thickness()));
    // So is the target: D_T = 0.
    rows = {row(0, 1, 1, 2), row(1, 1, 3, 3), row(3, 2, 2, 5), vRow(2, 1, 2, 7)};
    QVERIFY(!std::isfinite(exactScale(rows).q));
    QVERIFY(!std::isfinite(fourPointFraction(rows, exactScale(rows), 1)));
    // Equal references and rho = 1 leave nothing to tell the states by.
    rows = Sample().rows(3);
    rows.back().mut2 = rows.back().mut1;
    QVERIFY(!std::isfinite(fourPointFraction(rows, exactScale(rows), 1)));
}

void tst_PointMethods::fourPointAgreesWithTheLiteralFormula()
{
    Random random;
    for (int run = 0; run < 100000; ++run) {
        const PointRows rows = randomRows(random, 8);
        const PointChoice choice = choosePoints(rows);
        if (!choice.hasVPoint() || choice.normalization.size() < 3)
            continue;
        std::vector<formulas::Point> points;
        for (const std::size_t i : choice.normalization)
            points.push_back(literal(rows[i]));
        const PointRow& v = rows[choice.vPoint];
        const double rho = random.oneIn(10) ? random.anyNumber() : random.uniform(0.2, 2);
        const auto agrees = [&](const TargetScale& scale, const formulas::Scale& expected) {
            const auto result = formulas::fourPoint(expected, rho, literal(v));
            return same(scale.q, expected.q) && same(scale.mu0, expected.mu0) &&
                   same(scale.k, expected.k) && same(scale.thickness(), result.thickness) &&
                   same(fourPointFraction(rows, scale, rho), result.a);
        };
        QVERIFY(agrees(exactScale(rows), formulas::exactScale(points)));
        QVERIFY(agrees(leastSquaresScale(rows), formulas::leastSquaresScale(points)));
    }
}

QTEST_GUILESS_MAIN(tst_PointMethods)
#include "tst_PointMethods.moc"

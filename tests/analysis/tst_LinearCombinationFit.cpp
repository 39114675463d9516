#include "analysis/LinearCombinationFit.h"

#include "analysis/FittedSpectrum.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"
#include "tests/support/SpectrumFile.h"

#include <QtTest>

#include <algorithm>
#include <limits>

namespace
{

constexpr double tolerance = 1e-12;

/// A spectrum whose lines are 0 and 1, so that its normalized values are its mu-t.
FittedSpectrum unit(const SpectrumPoints& points)
{
    FittedSpectrum data;
    data.points = points;
    data.preVic = {0, 0, 0};
    data.postVic = {1, 0, 0};
    return data;
}

const SpectrumPoints points1{{1, 10, 0}, {2, 20, 1}, {3, 30, 2}, {4, 40, 1}};
const SpectrumPoints points2{{1, 10, 1}, {2, 20, 0}, {3, 30, 1}, {4, 40, 3}};

/// 2 of the first, 3 of the second and 0.5.
SpectrumPoints mixture()
{
    SpectrumPoints points;
    for (std::size_t i = 0; i < points1.size(); ++i)
        points.push_back({10.0 + static_cast<double>(i), points1[i].energy,
                          2 * points1[i].mut + 3 * points2[i].mut + 0.5});
    return points;
}

PointRow marked(double energy, bool tRatio = true)
{
    PointRow row;
    row.energy = energy;
    row.tRatio = tRatio;
    return row;
}

formulas::Victreen literal(const VictreenLine& line)
{
    return {line.c, line.a, line.b, 0, 0};
}

formulas::Spectrum<SpectrumPoints> literal(const FittedSpectrum& data)
{
    return {data.points, literal(data.preVic), literal(data.postVic)};
}

FittedSpectrum randomSpectrum(Random& random)
{
    FittedSpectrum data;
    data.points.resize(static_cast<std::size_t>(random.below(60)));
    for (SpectrumPoint& point : data.points)
        point = {random.uniform(5, 20), random.uniform(7000, 7300), random.uniform(-1, 3)};
    if (!random.oneIn(4))
        std::sort(
            data.points.begin(), data.points.end(),
            [](const SpectrumPoint& a, const SpectrumPoint& b) { return a.energy < b.energy; });
    data.preVic = {random.uniform(-1, 1), random.uniform(-0.1, 0.1), 0.01};
    data.postVic = {random.uniform(1, 2), random.uniform(-0.1, 0.1), 0.02};
    return data;
}

} // namespace

class tst_LinearCombinationFit : public QObject
{
    Q_OBJECT
private slots:
    void rangeOfTheMarkedRows();
    void rangeNeedsTwoMarkedRows();
    void rangeOfOneEnergy();
    void rangeOfNoNumber();
    void mixtureByHand();
    void curveFollowsTheTargetsPoints();
    void targetIsNormalizedAtItsOwnPoints();
    void endsOfTheRangeAreIncluded();
    void oneEnergyTakesPointsAtExactlyIt();
    void referencesAreInterpolated();
    void uncoveredEnergiesCountAsZero();
    void realisticMixtureComesBack();
    void missingDataGiveNotANumber();
    void equalReferencesAreDegenerate();
    void sharesAndValence();
    void sumOfZeroHasNoShares();
    void agreesWithTheLiteralFormulas();
};

void tst_LinearCombinationFit::rangeOfTheMarkedRows()
{
    PointRows rows{marked(8400), marked(7000, false), marked(8300), marked(8350),
                   marked(9000, false)};
    for (int run = 0; run < 5; ++run) {
        std::rotate(rows.begin(), rows.begin() + 1, rows.end());
        const std::optional<LcfRange> range = lcfRange(rows);
        QVERIFY(range.has_value());
        COMPARE_EXACT(range->min, 8300.0);
        COMPARE_EXACT(range->max, 8400.0);
    }
    // Neither "Use" nor the V point has a say.
    for (PointRow& row : rows)
        row.use = row.vPoint = true;
    COMPARE_EXACT(lcfRange(rows)->min, 8300.0);
}

void tst_LinearCombinationFit::rangeNeedsTwoMarkedRows()
{
    QVERIFY(!lcfRange({}));
    QVERIFY(!lcfRange(PointRows(8)));
    QVERIFY(!lcfRange({marked(8300), marked(8400, false)}));
    QVERIFY(lcfRange({marked(8300), marked(8400)}));
}

void tst_LinearCombinationFit::rangeOfOneEnergy()
{
    const std::optional<LcfRange> range = lcfRange({marked(8300), marked(8300)});
    QVERIFY(range.has_value());
    COMPARE_EXACT(range->min, 8300.0);
    COMPARE_EXACT(range->max, 8300.0);
}

void tst_LinearCombinationFit::rangeOfNoNumber()
{
    QVERIFY(!lcfRange({marked(notANumber), marked(notANumber)}));
    const std::optional<LcfRange> range = lcfRange({marked(notANumber), marked(8300)});
    QVERIFY(range.has_value());
    COMPARE_EXACT(range->min, 8300.0);
    COMPARE_EXACT(range->max, 8300.0);
}

void tst_LinearCombinationFit::mixtureByHand()
{
    const LinearCombination fit =
        fitLinearCombination(unit(points1), unit(points2), unit(mixture()), {10, 40});
    QVERIFY(within(tolerance, fit.p1, 2));
    QVERIFY(within(tolerance, fit.p2, 3));
    QVERIFY(within(tolerance, fit.p3, 0.5));
    QVERIFY(within(tolerance, fit.share1(), 0.4));
    QVERIFY(within(tolerance, fit.share2(), 0.6));
    QVERIFY(within(tolerance, fit.valence({2, 3}), 2.6));
}

void tst_LinearCombinationFit::curveFollowsTheTargetsPoints()
{
    SpectrumPoints target = mixture();
    target[1].mut += 0.25;
    std::swap(target[0], target[2]);
    const LinearCombination fit =
        fitLinearCombination(unit(points1), unit(points2), unit(target), {10, 30});
    QCOMPARE(fit.curve.size(), std::size_t{3});
    for (std::size_t i = 0; i < 3; ++i) {
        COMPARE_EXACT(fit.curve[i].angle, target[i].angle);
        COMPARE_EXACT(fit.curve[i].energy, target[i].energy);
        const auto at = static_cast<std::size_t>(target[i].energy / 10 - 1);
        COMPARE_EXACT(fit.curve[i].mut,
                      fit.p1 * points1[at].mut + fit.p2 * points2[at].mut + fit.p3);
    }
}

// Lines of 1 and 5: the normalized target is (mu-t - 1) / 4.
void tst_LinearCombinationFit::targetIsNormalizedAtItsOwnPoints()
{
    FittedSpectrum target = unit(mixture());
    target.preVic = {1, 0, 0};
    target.postVic = {5, 0, 0};
    const LinearCombination fit =
        fitLinearCombination(unit(points1), unit(points2), target, {10, 40});
    QVERIFY(within(tolerance, fit.p1, 0.5));
    QVERIFY(within(tolerance, fit.p2, 0.75));
    QVERIFY(within(tolerance, fit.p3, -0.125));
}

void tst_LinearCombinationFit::endsOfTheRangeAreIncluded()
{
    const auto fitted = [](double min, double max) {
        return fitLinearCombination(unit(points1), unit(points2), unit(mixture()), {min, max})
            .curve.size();
    };
    QCOMPARE(fitted(10, 40), std::size_t{4});
    QCOMPARE(fitted(20, 30), std::size_t{2});
    QCOMPARE(fitted(std::nextafter(20.0, 30.0), 30), std::size_t{1});
    QCOMPARE(fitted(20, std::nextafter(30.0, 20.0)), std::size_t{1});
    QCOMPARE(fitted(0, 100), std::size_t{4});
}

void tst_LinearCombinationFit::oneEnergyTakesPointsAtExactlyIt()
{
    SpectrumPoints target = mixture();
    target.push_back({99, 20, 7});
    const LinearCombination fit =
        fitLinearCombination(unit(points1), unit(points2), unit(target), {20, 20});
    QCOMPARE(fit.curve.size(), std::size_t{2});
    COMPARE_EXACT(fit.curve[1].angle, 99.0);
    QVERIFY(!std::isfinite(fit.p1));
}

void tst_LinearCombinationFit::referencesAreInterpolated()
{
    const SpectrumPoints coarse1{{0, 10, 0}, {0, 50, 8}};
    const SpectrumPoints coarse2{{0, 10, 4}, {0, 30, 0}, {0, 50, 4}};
    SpectrumPoints target;
    const double known[][3] = {{10, 0, 4}, {15, 1, 3}, {25, 3, 1}, {35, 5, 1}, {50, 8, 4}};
    for (const auto& [energy, ref1, ref2] : known)
        target.push_back({0, energy, 0.25 * ref1 + 0.5 * ref2});
    const LinearCombination fit =
        fitLinearCombination(unit(coarse1), unit(coarse2), unit(target), {0, 100});
    QVERIFY(within(tolerance, fit.p1, 0.25));
    QVERIFY(within(tolerance, fit.p2, 0.5));
    QVERIFY(within(tolerance, fit.p3, 0));
}

void tst_LinearCombinationFit::uncoveredEnergiesCountAsZero()
{
    SpectrumPoints target = mixture();
    target.push_back({0, 45, 0.5});
    target.insert(target.begin(), {0, 5, 0.5});
    const LinearCombination fit =
        fitLinearCombination(unit(points1), unit(points2), unit(target), {0, 100});
    QCOMPARE(fit.curve.size(), std::size_t{6});
    QVERIFY(within(tolerance, fit.p1, 2));
    QVERIFY(within(tolerance, fit.p2, 3));
    QVERIFY(within(tolerance, fit.p3, 0.5));
    QVERIFY(within(tolerance, fit.curve.front().mut, 0.5));
}

// Two states with other shapes between the fit ranges, on backgrounds and of thicknesses of their
// own; the target has a third of the first one.
void tst_LinearCombinationFit::realisticMixtureComesBack()
{
    const auto bump = [](double energy, double centre) {
        return std::exp(-(energy - centre) * (energy - centre) / 200);
    };
    const auto made = [&](double thickness, double share1, double offset) {
        FittedSpectrum data;
        const auto pre = spectra::victreen(offset, 0.02, 0.003);
        const auto post = spectra::victreen(offset + thickness, 0.02, 0.003);
        data.points = spectra::sampled(spectra::grid(6900, 7800, 2), [&](double e) {
            const double white = share1 * bump(e, 7130) + (1 - share1) * bump(e, 7140);
            return spectra::step(7120, pre, post)(e) + thickness * white;
        });
        data.preEdgeEnd = 7080;
        data.postEdgeStart = 7250;
        data.fitVictreens();
        return data;
    };
    const LinearCombination fit = fitLinearCombination(made(0.5, 1, 0.1), made(1.25, 0, -0.2),
                                                       made(0.75, 1.0 / 3, 0.3), {7090, 7200});
    QVERIFY(std::abs(fit.p1 - 1.0 / 3) < 1e-6);
    QVERIFY(std::abs(fit.p2 - 2.0 / 3) < 1e-6);
    QVERIFY(std::abs(fit.p3) < 1e-6);
    QVERIFY(std::abs(fit.valence({2, 3}) - (3 - 1.0 / 3)) < 1e-6);
}

void tst_LinearCombinationFit::missingDataGiveNotANumber()
{
    const FittedSpectrum none;
    const FittedSpectrum some = unit(points1);
    const FittedSpectrum target = unit(mixture());
    for (const LinearCombination& fit :
         {fitLinearCombination(none, none, none, {10, 40}),
          fitLinearCombination(some, some, none, {10, 40}),
          fitLinearCombination(some, unit(points2), target, {50, 60})}) {
        QVERIFY(std::isnan(fit.p1) && std::isnan(fit.p2) && std::isnan(fit.p3));
        QVERIFY(std::isnan(fit.share1()) && std::isnan(fit.valence({2, 3})));
        QVERIFY(fit.curve.empty());
    }
    // Without a reference the target's points still count.
    const LinearCombination fit = fitLinearCombination(none, some, target, {10, 40});
    QVERIFY(!std::isfinite(fit.p1));
    QCOMPARE(fit.curve.size(), std::size_t{4});
}

void tst_LinearCombinationFit::equalReferencesAreDegenerate()
{
    const LinearCombination fit =
        fitLinearCombination(unit(points1), unit(points1), unit(points2), {10, 40});
    QVERIFY(!std::isfinite(fit.p1));
    QVERIFY(!std::isfinite(fit.p2));
}

void tst_LinearCombinationFit::sharesAndValence()
{
    const LinearCombination fit{0.75, 0.25, 9, {}};
    COMPARE_EXACT(fit.share1(), 0.75);
    COMPARE_EXACT(fit.share2(), 0.25);
    COMPARE_EXACT(fit.valence({2, 4}), 2.5);
    const LinearCombination unscaled{1, 3, 0, {}};
    COMPARE_EXACT(unscaled.share1(), 0.25);
    COMPARE_EXACT(unscaled.valence({2, 4}), 3.5);
}

void tst_LinearCombinationFit::sumOfZeroHasNoShares()
{
    const LinearCombination opposite{1, -1, 0, {}};
    COMPARE_EXACT(opposite.share1(), std::numeric_limits<double>::infinity());
    COMPARE_EXACT(opposite.share2(), -std::numeric_limits<double>::infinity());
    QVERIFY(std::isnan(opposite.valence({2, 3})));
    const LinearCombination nothing{0, 0, 0, {}};
    QVERIFY(std::isnan(nothing.share1()));
    QVERIFY(std::isnan(nothing.valence({2, 3})));
}

void tst_LinearCombinationFit::agreesWithTheLiteralFormulas()
{
    Random random;
    for (int run = 0; run < 4000; ++run) {
        const FittedSpectrum ref1 = randomSpectrum(random);
        const FittedSpectrum ref2 = randomSpectrum(random);
        const FittedSpectrum target = randomSpectrum(random);
        const double min = random.uniform(6950, 7150);
        const double max = min + random.uniform(0, 250);
        const LinearCombination fit = fitLinearCombination(ref1, ref2, target, {min, max});
        const auto expected =
            formulas::combine(literal(ref1), literal(ref2), literal(target), min, max, 2, 3);
        COMPARE_EXACT(fit.p1, expected.p1);
        COMPARE_EXACT(fit.p2, expected.p2);
        COMPARE_EXACT(fit.p3, expected.p3);
        COMPARE_EXACT(fit.share1(), expected.a);
        COMPARE_EXACT(fit.share2(), expected.rest);
        COMPARE_EXACT(fit.valence({2, 3}), expected.valence);
        QCOMPARE(fit.curve.size(), expected.curve.size());
        for (std::size_t k = 0; k < fit.curve.size(); ++k) {
            COMPARE_EXACT(fit.curve[k].angle, expected.curve[k].angle);
            COMPARE_EXACT(fit.curve[k].energy, expected.curve[k].energy);
            COMPARE_EXACT(fit.curve[k].mut, expected.curve[k].mut);
        }
    }
}

QTEST_GUILESS_MAIN(tst_LinearCombinationFit)
#include "tst_LinearCombinationFit.moc"

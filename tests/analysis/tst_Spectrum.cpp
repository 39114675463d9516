#include "analysis/NormalizedSpectrum.h"
#include "analysis/Spectrum.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <algorithm>
#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Energies 10, 20, 40 eV.
const SpectrumPoints rising{{0, 10, 1}, {0, 20, 3}, {0, 40, -1}};

/// Lines that are 0 and 1 everywhere: normalized values are the mu-t.
const VictreenLine zero{0, 0, 0};
const VictreenLine one{1, 0, 0};

/// A spectrum of few distinct energies, in any order, now and then an odd one.
SpectrumPoints jumbled(Random& random)
{
    SpectrumPoints points(static_cast<std::size_t>(random.below(30)));
    const double odd[] = {notANumber, infinity, -infinity, 0.0, -0.0};
    for (SpectrumPoint& point : points) {
        point.energy = random.oneIn(12) ? odd[random.below(5)] : random.below(40);
        point.mut = random.uniform(-2, 2);
    }
    if (random.oneIn(2))
        std::sort(points.begin(), points.end(),
                  [](const SpectrumPoint& a, const SpectrumPoint& b) { return a.mut < b.mut; });
    return points;
}

double anyEnergy(Random& random)
{
    const double odd[] = {notANumber, infinity, -infinity, -0.0};
    return random.oneIn(20) ? odd[random.below(4)] : random.below(90) * 0.5 - 2.0;
}

} // namespace

class tst_Spectrum : public QObject
{
    Q_OBJECT
private slots:
    void interpolatesBetweenPoints_data();
    void interpolatesBetweenPoints();
    void belowTheFirstPointTheLineRunsThroughTheOrigin();
    void aboveTheLastPointThereIsNothing();
    void firstPointThatReachesTheEnergyCounts();
    void interpolationAgreesWithTheLiteralRule();
    void rangeWidens_data();
    void rangeWidens();
    void rangeKeepsWhatTheCallerHas();
    void normalizedByHand();
    void normalizedWhereNothingEncloses();
    void firstNeighboursThatEncloseCount();
    void normalizedAgreesWithTheLiteralRule();
};

void tst_Spectrum::interpolatesBetweenPoints_data()
{
    QTest::addColumn<double>("energy");
    QTest::addColumn<double>("mut");
    QTest::newRow("at the first point") << 10.0 << 1.0;
    QTest::newRow("between") << 15.0 << 2.0;
    QTest::newRow("at a point") << 20.0 << 3.0;
    QTest::newRow("between, falling") << 25.0 << 2.0;
    QTest::newRow("at the last point") << 40.0 << -1.0;
}

void tst_Spectrum::interpolatesBetweenPoints()
{
    QFETCH(double, energy);
    QFETCH(double, mut);
    COMPARE_EXACT(interpolateMut(rising, energy).value(), mut);
}

void tst_Spectrum::belowTheFirstPointTheLineRunsThroughTheOrigin()
{
    COMPARE_EXACT(interpolateMut(rising, 5.0).value(), 0.5);
    COMPARE_EXACT(interpolateMut(rising, 0.0).value(), 0.0);
    COMPARE_EXACT(interpolateMut(rising, -10.0).value(), -1.0);
    const SpectrumPoints single{{0, 8000, 2}};
    COMPARE_EXACT(interpolateMut(single, 4000).value(), 2.0 * 4000 / 8000);
}

void tst_Spectrum::aboveTheLastPointThereIsNothing()
{
    QVERIFY(!interpolateMut(rising, std::nextafter(40.0, 50.0)));
    QVERIFY(!interpolateMut(rising, infinity));
    QVERIFY(!interpolateMut(rising, notANumber));
    QVERIFY(!interpolateMut({}, 10.0));
}

void tst_Spectrum::firstPointThatReachesTheEnergyCounts()
{
    // 20 is reached at the second point already, though the third one lies below it again.
    const SpectrumPoints jumping{{0, 10, 1}, {0, 30, 5}, {0, 15, 2}, {0, 20, 7}};
    COMPARE_EXACT(interpolateMut(jumping, 20.0).value(), 3.0);
    // Of two points of one energy the first one counts.
    const SpectrumPoints twice{{0, 10, 1}, {0, 20, 3}, {0, 20, 4}, {0, 30, 8}};
    COMPARE_EXACT(interpolateMut(twice, 20.0).value(), 3.0);
    COMPARE_EXACT(interpolateMut(twice, 25.0).value(), 6.0);
}

void tst_Spectrum::interpolationAgreesWithTheLiteralRule()
{
    Random random;
    for (int run = 0; run < 100000; ++run) {
        const SpectrumPoints points = jumbled(random);
        const double energy = anyEnergy(random);
        const auto found = interpolateMut(points, energy);
        const auto expected = formulas::muTAt(points, energy);
        QCOMPARE(found.has_value(), expected.has_value());
        if (found)
            QVERIFY(same(*found, *expected));
    }
}

void tst_Spectrum::rangeWidens_data()
{
    QTest::addColumn<double>("energy1");
    QTest::addColumn<double>("energy2");
    QTest::addColumn<double>("expectedMin");
    QTest::addColumn<double>("expectedMax");
    QTest::newRow("all") << 0.0 << 100.0 << -1.0 << 3.0;
    QTest::newRow("other way round") << 100.0 << 0.0 << -1.0 << 3.0;
    QTest::newRow("bounds included") << 10.0 << 20.0 << 1.0 << 3.0;
    QTest::newRow("bounds included, other way round") << 20.0 << 10.0 << 1.0 << 3.0;
    QTest::newRow("one energy") << 20.0 << 20.0 << 3.0 << 3.0;
    QTest::newRow("between the points") << 11.0 << 19.0 << 1e300 << -1e300;
    QTest::newRow("no number") << notANumber << 20.0 << 1e300 << -1e300;
    QTest::newRow("no number, other way round") << 20.0 << notANumber << 1e300 << -1e300;
}

void tst_Spectrum::rangeWidens()
{
    QFETCH(double, energy1);
    QFETCH(double, energy2);
    QFETCH(double, expectedMin);
    QFETCH(double, expectedMax);
    double min = 1e300;
    double max = -1e300;
    widenMutRange(rising, energy1, energy2, min, max);
    COMPARE_EXACT(min, expectedMin);
    COMPARE_EXACT(max, expectedMax);
}

void tst_Spectrum::rangeKeepsWhatTheCallerHas()
{
    double min = -5;
    double max = 2;
    widenMutRange(rising, 0, 100, min, max);
    COMPARE_EXACT(min, -5.0);
    COMPARE_EXACT(max, 3.0);
    widenMutRange({{0, 10, notANumber}}, 0, 100, min, max);
    COMPARE_EXACT(min, -5.0);
    COMPARE_EXACT(max, 3.0);
}

// With lines of 0.5 and 2.5 the mu-t 1, 3, -1 are normalized to 0.25, 1.25, -0.75.
void tst_Spectrum::normalizedByHand()
{
    const VictreenLine low{0.5, 0, 0};
    const VictreenLine high{2.5, 0, 0};
    const NormalizedSpectrum spectrum(rising, low, high);
    const double known[][2] = {{10, 0.25}, {15, 0.75}, {20, 1.25}, {30, 0.25}, {40, -0.75}};
    for (const auto& [energy, value] : known) {
        COMPARE_EXACT(normalizedAt(rising, low, high, energy), value);
        COMPARE_EXACT(spectrum.at(energy), value);
    }
    COMPARE_EXACT(normalizedPoint(rising[1], low, high), 1.25);
}

void tst_Spectrum::normalizedWhereNothingEncloses()
{
    const auto both = [](const SpectrumPoints& points, double energy) {
        const double walked = normalizedAt(points, zero, one, energy);
        const double found = NormalizedSpectrum(points, zero, one).at(energy);
        return walked == 0.0 && found == 0.0;
    };
    QVERIFY(both({}, 10));
    QVERIFY(both({{0, 10, 1}}, 10));
    QVERIFY(both(rising, std::nextafter(10.0, 0.0)));
    QVERIFY(both(rising, std::nextafter(40.0, 50.0)));
    // Within the ends, but no pair of neighbours rises over it.
    QVERIFY(both({{0, 10, 1}, {0, 5, 2}, {0, 8, 3}, {0, 2, 3}, {0, 30, 1}}, 40));
    QVERIFY(both({{0, 10, 1}, {0, 12, 2}, {0, 11, 3}, {0, 5, 4}}, 8));
}

void tst_Spectrum::firstNeighboursThatEncloseCount()
{
    const SpectrumPoints jumping{{0, 10, 0}, {0, 20, 1}, {0, 12, 5}, {0, 30, 5}};
    const NormalizedSpectrum spectrum(jumping, zero, one);
    COMPARE_EXACT(spectrum.at(15), 0.5);
    COMPARE_EXACT(spectrum.at(20), 1.0);
    COMPARE_EXACT(spectrum.at(21), 5.0);
    // Two points of one energy: the neighbours before them reach it first.
    const SpectrumPoints twice{{0, 10, 1}, {0, 20, 3}, {0, 20, 4}, {0, 30, 8}};
    COMPARE_EXACT(NormalizedSpectrum(twice, zero, one).at(20), 3.0);
    // At the very start they are the first pair, of no width.
    const SpectrumPoints startsTwice{{0, 20, 3}, {0, 20, 4}, {0, 30, 8}};
    QVERIFY(std::isnan(NormalizedSpectrum(startsTwice, zero, one).at(20)));
    QVERIFY(std::isnan(normalizedAt(startsTwice, zero, one, 20)));
}

void tst_Spectrum::normalizedAgreesWithTheLiteralRule()
{
    Random random;
    for (int run = 0; run < 20000; ++run) {
        const SpectrumPoints points = jumbled(random);
        const VictreenLine pre{random.uniform(-1, 1), random.uniform(-1, 1), 0.25};
        const VictreenLine post{random.uniform(-1, 1), random.uniform(-1, 1), 0.5};
        const formulas::Victreen literalPre{pre.c, pre.a, pre.b, 0, 0};
        const formulas::Victreen literalPost{post.c, post.a, post.b, 0, 0};
        const NormalizedSpectrum spectrum(points, pre, post);
        for (int i = 0; i < 20; ++i) {
            const double energy = anyEnergy(random);
            const double expected = formulas::normalizedAt(points, literalPre, literalPost, energy);
            COMPARE_EXACT(normalizedAt(points, pre, post, energy), expected);
            COMPARE_EXACT(spectrum.at(energy), expected);
        }
    }
}

QTEST_GUILESS_MAIN(tst_Spectrum)
#include "tst_Spectrum.moc"

#include "input/AXafsData.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"
#include "tests/support/SpectrumFile.h"

#include <QtTest>

#include <algorithm>

namespace
{

/// A spectrum with known lines on both sides of 7120 eV.
AXafsData iron()
{
    AXafsData data;
    data.points = spectra::sampled(spectra::grid(6900, 7800, 2.5),
                                   spectra::step(7120, spectra::victreen(0.1, 0.02, 0.003),
                                                 spectra::victreen(-0.3, 0.5, -0.04)));
    data.preEdgeEnd = 7090;
    data.edge = 7120;
    data.postEdgeStart = 7150;
    return data;
}

bool closeTo(double found, double expected, double relative)
{
    return std::abs(found - expected) <= relative * std::abs(expected);
}

bool sameFit(const VictreenLine& full, const VictreenLineNoC& noC,
             const formulas::Victreen& expected)
{
    return same(full.c, expected.c) && same(full.a, expected.a) && same(full.b, expected.b) &&
           same(noC.a, expected.aNoC) && same(noC.b, expected.bNoC);
}

bool sameFits(const AXafsData& data)
{
    const auto pre =
        formulas::fitVictreen(data.points, [&](double e) { return e < data.preEdgeEnd; });
    const auto post =
        formulas::fitVictreen(data.points, [&](double e) { return e > data.postEdgeStart; });
    return sameFit(data.preVic, data.preVicNoC, pre) &&
           sameFit(data.postVic, data.postVicNoC, post);
}

SpectrumPoints randomPoints(Random& random)
{
    SpectrumPoints points(static_cast<std::size_t>(random.below(60)));
    for (SpectrumPoint& point : points) {
        point.energy = random.oneIn(20) ? random.anyNumber() : random.uniform(7000, 9000);
        point.mut = random.oneIn(20) ? random.anyNumber() : random.uniform(-1, 3);
    }
    return points;
}

} // namespace

class tst_Victreen : public QObject
{
    Q_OBJECT
private slots:
    void constantsAndWavelength();
    void lineValuesByHand();
    void twoTermFitByHand();
    void knownLinesComeBack();
    void twoTermLinesComeBack();
    void pointsAtTheBoundsBelongToNeitherFit();
    void rangesHaveNoOuterBounds();
    void noPointBelowGivesNotANumber();
    void noPointsChangesNothing();
    void fitTakesEffectOnlyWhenRun();
    void edgeJumpIsTheHeightBetweenTheLines();
    void newRecord();
    void agreesWithTheLiteralFormulas();
};

void tst_Victreen::constantsAndWavelength()
{
    COMPARE_EXACT(hcElectronVoltAngstrom, 12398.424360387684);
    COMPARE_EXACT(wavelength(12398.424360387684), 1.0);
    COMPARE_EXACT(wavelength(12398.424360387684 / 2), 2.0);
}

// At a wavelength of 2 angstrom lambda^3 is 8 and lambda^4 is 16.
void tst_Victreen::lineValuesByHand()
{
    AXafsData data;
    data.preVic = {1, 10, 100};
    data.postVic = {2, 20, 200};
    data.preVicNoC = {3, 5};
    data.postVicNoC = {7, 11};
    const double energy = 12398.424360387684 / 2;
    COMPARE_EXACT(data.preVicAt(energy), 1.0 + 80 + 1600);
    COMPARE_EXACT(data.postVicAt(energy), 2.0 + 160 + 3200);
    COMPARE_EXACT(data.preVicNoCAt(energy), 24.0 + 80);
    COMPARE_EXACT(data.postVicNoCAt(energy), 56.0 + 176);
    COMPARE_EXACT(data.vicDiffAt(energy), 3362.0 - 1681.0);
    COMPARE_EXACT(data.vicNoCDiffAt(energy), 232.0 - 104.0);
}

// Wavelengths 1 and 2 with mu-t 3 and 40: a + b = 3 and 8a + 16b = 40 give a = 1, b = 2.
void tst_Victreen::twoTermFitByHand()
{
    const double hc = 12398.424360387684;
    const SpectrumPoints points{{0, hc, 3}, {0, hc / 2, 40}};
    const VictreenFit fit = fitVictreenBelow(points, 2 * hc);
    QVERIFY(closeTo(fit.noC.a, 1, 1e-13));
    QVERIFY(closeTo(fit.noC.b, 2, 1e-13));
}

void tst_Victreen::knownLinesComeBack()
{
    AXafsData data = iron();
    data.fitVictreens();
    QVERIFY(closeTo(data.postVic.c, -0.3, 1e-5));
    QVERIFY(closeTo(data.postVic.a, 0.5, 1e-5));
    QVERIFY(closeTo(data.postVic.b, -0.04, 1e-4));
    for (const double energy : {6900.0, 7000.0, 7089.0, 7120.0})
        QVERIFY(closeTo(data.preVicAt(energy), spectra::victreen(0.1, 0.02, 0.003)(energy), 1e-7));
    for (const double energy : {7120.0, 7200.0, 7500.0, 7800.0})
        QVERIFY(closeTo(data.postVicAt(energy), spectra::victreen(-0.3, 0.5, -0.04)(energy), 1e-7));
}

void tst_Victreen::twoTermLinesComeBack()
{
    AXafsData data;
    data.points = spectra::sampled(
        spectra::grid(7000, 9000, 10),
        spectra::step(8300, spectra::victreen(0, 0.2, 0.03), spectra::victreen(0, 0.4, 0.05)));
    data.fitVictreens();
    QVERIFY(closeTo(data.preVicNoC.a, 0.2, 1e-9));
    QVERIFY(closeTo(data.preVicNoC.b, 0.03, 1e-9));
    QVERIFY(closeTo(data.postVicNoC.a, 0.4, 1e-8));
    QVERIFY(closeTo(data.postVicNoC.b, 0.05, 1e-8));
    const double jump = spectra::victreen(0, 0.2, 0.02)(8300);
    data.edge = 8300;
    QVERIFY(closeTo(data.edgeJumpNoC(), jump, 1e-8));
    QVERIFY(closeTo(data.edgeJump(), jump, 1e-6));
}

void tst_Victreen::pointsAtTheBoundsBelongToNeitherFit()
{
    AXafsData data = iron();
    data.fitVictreens();
    const AXafsData before = data;
    for (SpectrumPoint& point : data.points)
        if (point.energy == data.preEdgeEnd || point.energy == data.postEdgeStart)
            point.mut += 1e6;
    data.fitVictreens();
    COMPARE_EXACT(data.preVic.c, before.preVic.c);
    COMPARE_EXACT(data.preVicNoC.a, before.preVicNoC.a);
    COMPARE_EXACT(data.postVic.c, before.postVic.c);
    COMPARE_EXACT(data.postVicNoC.a, before.postVicNoC.a);
    data.preEdgeEnd = std::nextafter(7090.0, 8000.0);
    data.postEdgeStart = std::nextafter(7150.0, 7000.0);
    data.fitVictreens();
    QVERIFY(data.preVic.c != before.preVic.c);
    QVERIFY(data.postVic.c != before.postVic.c);
}

void tst_Victreen::rangesHaveNoOuterBounds()
{
    for (const double energy : {1.0, 1e6}) {
        AXafsData data = iron();
        data.fitVictreens();
        const AXafsData before = data;
        data.points.push_back({0, energy, 5});
        data.fitVictreens();
        QCOMPARE(data.preVic.c != before.preVic.c, energy == 1.0);
        QCOMPARE(data.postVic.c != before.postVic.c, energy == 1e6);
    }
}

void tst_Victreen::noPointBelowGivesNotANumber()
{
    AXafsData data = iron();
    data.preEdgeEnd = 6900;
    data.fitVictreens();
    QVERIFY(std::isnan(data.preVicNoC.a));
    QVERIFY(std::isnan(data.preVicNoC.b));
    QVERIFY(std::isnan(data.preVic.c));
    QVERIFY(std::isnan(data.edgeJump()));
    QVERIFY(std::isfinite(data.postVic.c));
    data.postEdgeStart = 7800;
    data.fitVictreens();
    QVERIFY(std::isnan(data.postVicNoC.a));
    QVERIFY(std::isnan(data.postVic.b));
}

void tst_Victreen::noPointsChangesNothing()
{
    AXafsData data;
    data.preVic = {1, 2, 3};
    data.postVicNoC = {4, 5};
    data.fitVictreens();
    COMPARE_EXACT(data.preVic.b, 3.0);
    COMPARE_EXACT(data.postVicNoC.a, 4.0);
}

void tst_Victreen::fitTakesEffectOnlyWhenRun()
{
    AXafsData data = iron();
    data.fitVictreens();
    const double c = data.preVic.c;
    data.preEdgeEnd = 7000;
    COMPARE_EXACT(data.preVic.c, c);
    data.fitVictreens();
    QVERIFY(data.preVic.c != c);
}

void tst_Victreen::edgeJumpIsTheHeightBetweenTheLines()
{
    AXafsData data = iron();
    data.fitVictreens();
    COMPARE_EXACT(data.edgeJump(), data.postVicAt(7120) - data.preVicAt(7120));
    COMPARE_EXACT(data.edgeJumpNoC(), data.postVicNoCAt(7120) - data.preVicNoCAt(7120));
    const double known =
        spectra::victreen(-0.3, 0.5, -0.04)(7120) - spectra::victreen(0.1, 0.02, 0.003)(7120);
    QVERIFY(closeTo(data.edgeJump(), known, 1e-7));
    data.edge = 7200;
    COMPARE_EXACT(data.edgeJump(), data.postVicAt(7200) - data.preVicAt(7200));
}

void tst_Victreen::newRecord()
{
    const AXafsData data;
    QVERIFY(!data.valid);
    QVERIFY(data.points.empty());
    COMPARE_EXACT(data.preEdgeEnd, 8000.0);
    COMPARE_EXACT(data.postEdgeStart, 8500.0);
    COMPARE_EXACT(data.preVicAt(8000), 0.0);
    COMPARE_EXACT(data.postVicNoCAt(8000), 0.0);
}

void tst_Victreen::agreesWithTheLiteralFormulas()
{
    Random random;
    AXafsData ironData = iron();
    ironData.fitVictreens();
    QVERIFY(sameFits(ironData));
    for (int run = 0; run < 20000; ++run) {
        AXafsData data;
        data.points = randomPoints(random);
        data.preEdgeEnd = random.uniform(6900, 8500);
        data.postEdgeStart = random.uniform(7500, 9100);
        data.fitVictreens();
        if (data.points.empty())
            continue;
        QVERIFY2(sameFits(data), qPrintable(QString::number(run)));
        const double e = random.uniform(6000, 9000);
        const VictreenLine& line = data.preVic;
        const VictreenLineNoC& noC = data.postVicNoC;
        QVERIFY(same(data.preVicAt(e), formulas::victreenAt(line.c, line.a, line.b, e)));
        QVERIFY(same(data.postVicNoCAt(e), formulas::noCAt(noC.a, noC.b, e)));
    }
}

QTEST_GUILESS_MAIN(tst_Victreen)
#include "tst_Victreen.moc"

#include "analysis/CubicSpline.h"
#include "analysis/EnergyAlignment.h"
#include "examples/AbsorptionModel.h"
#include "tests/accuracy/CoverageTable.h"
#include "tests/support/NormalNoise.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

/// A foil whose energies are told too low by the shift.
/// @param noise  of mu-t over the edge jump
FittedSpectrum foil(double shift, double noise, double step, double thickness, NormalNoise& random)
{
    FittedSpectrum spectrum;
    spectrum.setBounds({8300.0, 8350.0, 8450.0});
    SpectrumPoints points;
    const auto add = [&](double from, double to, double by) {
        for (int i = 0; from + by * i < to; ++i) {
            const double energy = from + by * i;
            const double mut =
                thickness * absorption::ofState(absorption::State::Two, energy + shift);
            points.push_back({0.0, energy, mut + noise * thickness * random.next()});
        }
    };
    add(8150.0, 8310.0, 5.0);
    add(8310.0, 8420.0, step);
    add(8420.0, 8600.0, 5.0);
    spectrum.setPoints(points);
    return spectrum;
}

} // namespace

/// The shift between two scans, found from foils.
class tst_EnergyAlignment : public QObject
{
    Q_OBJECT

private slots:
    void splineRunsThroughItsPoints();
    void smoothFoilsTellTheShift();
    void noisyFoilsTellItToTwoHundredths();
    void foilsThatDoNotMatchTellNothing();
};

/// A natural spline of a straight line is the line; one of a parabola bends as this does, away from
/// its ends.
void tst_EnergyAlignment::splineRunsThroughItsPoints()
{
    SpectrumPoints line;
    SpectrumPoints parabola;
    for (int i = 0; i < 40; ++i) {
        const double x = 8000.0 + i + 0.3 * (i % 3);
        line.push_back({0.0, x, 2.0 * x});
        parabola.push_back({0.0, x, (x - 8000.0) * (x - 8000.0)});
    }
    const CubicSpline straight(line);
    QVERIFY(std::abs(straight.at(8010.77) - 2.0 * 8010.77) < 1e-9);
    const CubicSpline bent(parabola);
    QVERIFY(std::abs(bent.at(8020.4) - 20.4 * 20.4) < 1e-4);
    for (const SpectrumPoint& point : parabola)
        QVERIFY(std::abs(bent.at(point.energy) - point.mut) < 1e-9);
    QCOMPARE(bent.from(), 8000.0);
    QVERIFY(CubicSpline(SpectrumPoints()).isEmpty());
    QCOMPARE(CubicSpline({{0.0, 1.0, 5.0}, {0.0, 1.0, 6.0}, {0.0, 3.0, 7.0}}).at(2.0), 6.0);
}

void tst_EnergyAlignment::smoothFoilsTellTheShift()
{
    NormalNoise random(1);
    const FittedSpectrum reference = foil(0.0, 0.0, 0.5, 1.0, random);
    for (const double shift : {-2.0, -0.3, 0.0, 0.1, 0.3, 4.0}) {
        const auto found = foundShift(foil(shift, 0.0, 0.5, 0.7, random), reference);
        QVERIFY(found.has_value());
        QVERIFY2(std::abs(found->shift - shift) < 2e-3, qPrintable(QString::number(found->shift)));
    }
}

void tst_EnergyAlignment::noisyFoilsTellItToTwoHundredths()
{
    NormalNoise random(77);
    int draws = 0;
    int near = 0;
    int covered = 0;
    double largest = 0.0;
    for (const double shift : {-0.3, 0.3})
        for (const double step : {0.25, 0.5})
            for (int i = drawsOr(400) / 4; i > 0; --i) {
                constexpr double noise = 0.003;
                const FittedSpectrum reference = foil(0.0, noise, step, 1.0, random);
                const auto found = foundShift(foil(shift, noise, step, 0.8, random), reference);
                QVERIFY(found.has_value());
                const double error = std::abs(found->shift - shift);
                ++draws;
                near += error <= 0.02 ? 1 : 0;
                covered += error <= 2.0 * found->sigma ? 1 : 0;
                largest = std::max(largest, error);
            }
    std::printf(
        "| shift found from foils | %d | within 0.02 eV: %.1f %% | within 2 sigma: %.1f %% | "
        "largest error %.3f eV |\n",
        draws, 100.0 * near / draws, 100.0 * covered / draws, largest);
    QVERIFY(near >= 0.99 * draws);
    QVERIFY(std::abs(100.0 * covered / draws - 95.4) < (isFull() ? 1.5 : 3.0));
}

void tst_EnergyAlignment::foilsThatDoNotMatchTellNothing()
{
    NormalNoise random(5);
    const FittedSpectrum reference = foil(0.0, 0.001, 0.5, 1.0, random);
    FittedSpectrum away = reference;
    for (SpectrumPoint& point : away.points)
        point.energy += 1000.0;
    QVERIFY(!foundShift(away, reference));
    QVERIFY(!foundShift(reference, away));
    QVERIFY(!foundShift(FittedSpectrum(), reference));
    QVERIFY(!foundShift(reference, FittedSpectrum()));
    FittedSpectrum turned = reference; // no foil absorbs less behind its edge
    for (SpectrumPoint& point : turned.points)
        point.mut = -point.mut;
    QVERIFY(!foundShift(turned, reference));
}

QTEST_APPLESS_MAIN(tst_EnergyAlignment)
#include "tst_EnergyAlignment.moc"

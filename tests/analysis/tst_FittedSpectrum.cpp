#include "analysis/FittedSpectrum.h"
#include "tests/support/Exact.h"

#include <QtTest>

#include <cmath>

namespace
{

constexpr double hc = 12398.424360387684; ///< eV; the wavelength there is 1 angstrom

/// mu-t 1 at `hc` and above, in two points.
FittedSpectrum plateau()
{
    FittedSpectrum spectrum;
    spectrum.setPoints({{12.0, 12000.0, 1.0}, {11.0, 13000.0, 1.0}});
    return spectrum;
}

} // namespace

class tst_FittedSpectrum : public QObject
{
    Q_OBJECT

private slots:
    void pointsSetTheRanges();
    void mutLessEachLine();
    void mutLessOutsideThePoints();
    void jumpsAreTakenAtTheEdge();
    void fitsTakePointsStrictlyOutsideTheBounds();
    void withoutPointsTheLinesStay();
};

void tst_FittedSpectrum::pointsSetTheRanges()
{
    FittedSpectrum spectrum;
    spectrum.setBounds({8300.0, 8350.0, 8450.0});
    spectrum.setPoints({{14.0, 8200.0, 0.5}, {13.0, 8400.0, -0.25}, {15.0, 8100.0, 2.0}});
    COMPARE_EXACT(spectrum.angleMin, 13.0);
    COMPARE_EXACT(spectrum.angleMax, 15.0);
    COMPARE_EXACT(spectrum.energyMin, 8100.0);
    COMPARE_EXACT(spectrum.energyMax, 8400.0);
    COMPARE_EXACT(spectrum.mutMin, -0.25);
    COMPARE_EXACT(spectrum.mutMax, 2.0);
    COMPARE_EXACT(spectrum.preEdgeEnd, 8300.0);
    COMPARE_EXACT(spectrum.edge, 8350.0);
    COMPARE_EXACT(spectrum.postEdgeStart, 8450.0);

    spectrum.setPoints({{1.0, 9000.0, 0.75}});
    COMPARE_EXACT(spectrum.energyMin, 9000.0);
    COMPARE_EXACT(spectrum.energyMax, 9000.0);
    spectrum.setPoints({});
    QVERIFY(spectrum.energyMin > spectrum.energyMax);
}

/// At a wavelength of 1 angstrom a line has the value c + a + b.
void tst_FittedSpectrum::mutLessEachLine()
{
    FittedSpectrum spectrum = plateau();
    spectrum.preVic = {0.125, 0.25, 0.0625};
    spectrum.postVic = {0.5, -0.25, 1.5};
    spectrum.preVicNoC = {100.0, 100.0};
    spectrum.postVicNoC = {100.0, 100.0};
    COMPARE_EXACT(mutLess(spectrum, SubtractedLine::None, hc).value(), 1.0);
    COMPARE_EXACT(mutLess(spectrum, SubtractedLine::Pre, hc).value(), 0.5625);
    COMPARE_EXACT(mutLess(spectrum, SubtractedLine::Post, hc).value(), -0.75);
}

void tst_FittedSpectrum::mutLessOutsideThePoints()
{
    FittedSpectrum spectrum = plateau();
    spectrum.preVic = {0.125, 0.0, 0.0};
    spectrum.postVic = {0.25, 0.0, 0.0};
    for (const SubtractedLine line :
         {SubtractedLine::None, SubtractedLine::Pre, SubtractedLine::Post}) {
        QVERIFY(!mutLess(spectrum, line, 13000.5));
        QVERIFY(!mutLess(FittedSpectrum(), line, 8350.0));
    }
    // Below the first point the line runs through the origin.
    COMPARE_EXACT(mutLess(spectrum, SubtractedLine::None, 3000.0).value(), 0.25);
    COMPARE_EXACT(mutLess(spectrum, SubtractedLine::Pre, 3000.0).value(), 0.125);
    COMPARE_EXACT(mutLess(spectrum, SubtractedLine::Post, 3000.0).value(), 0.0);
}

void tst_FittedSpectrum::jumpsAreTakenAtTheEdge()
{
    FittedSpectrum spectrum;
    spectrum.setBounds({8000.0, hc, 8500.0});
    spectrum.preVic = {0.125, 0.25, 0.0625};
    spectrum.postVic = {0.5, 0.25, 1.5};
    spectrum.preVicNoC = {0.5, 0.25};
    spectrum.postVicNoC = {2.0, 1.0};
    COMPARE_EXACT(spectrum.edgeJump(), 1.8125);
    COMPARE_EXACT(spectrum.edgeJumpNoC(), 2.25);
    spectrum.edge = hc / 2; // 2 angstrom: 8 (a + 2 b) + c
    COMPARE_EXACT(spectrum.edgeJump(), 26.5 - 3.125);
    COMPARE_EXACT(spectrum.edgeJumpNoC(), 32.0 - 8.0);
}

void tst_FittedSpectrum::fitsTakePointsStrictlyOutsideTheBounds()
{
    SpectrumPoints points;
    for (const double energy : {8200.0, 8220.0, 8240.0, 8260.0, 8280.0})
        points.push_back({0.0, energy, 0.25});
    points.push_back({0.0, 8300.0, 1000.0}); // where the pre-edge range ends
    points.push_back({0.0, 8450.0, 1000.0}); // where the post-edge range starts
    for (const double energy : {8460.0, 8480.0, 8500.0, 8520.0, 8540.0})
        points.push_back({0.0, energy, 1.0});
    FittedSpectrum spectrum;
    spectrum.setBounds({8300.0, 8350.0, 8450.0});
    spectrum.setPoints(points);
    spectrum.fitVictreens();
    QVERIFY2(std::abs(spectrum.preVicAt(8240.0) - 0.25) < 1e-6,
             qPrintable(QString::number(spectrum.preVicAt(8240.0))));
    QVERIFY2(std::abs(spectrum.postVicAt(8500.0) - 1.0) < 1e-6,
             qPrintable(QString::number(spectrum.postVicAt(8500.0))));
    spectrum.setBounds({8300.5, 8350.0, 8450.0});
    spectrum.fitVictreens();
    QVERIFY(std::abs(spectrum.preVicAt(8240.0) - 0.25) > 1.0);
}

void tst_FittedSpectrum::withoutPointsTheLinesStay()
{
    FittedSpectrum spectrum = plateau();
    spectrum.preVic = {0.125, 0.25, 0.0625};
    spectrum.postVic = {0.5, 0.25, 1.5};
    spectrum.setPoints({});
    spectrum.fitVictreens();
    COMPARE_EXACT(spectrum.preVic.c, 0.125);
    COMPARE_EXACT(spectrum.postVic.b, 1.5);
}

QTEST_APPLESS_MAIN(tst_FittedSpectrum)
#include "tst_FittedSpectrum.moc"

#include "analysis/MapRun.h"
#include "tests/support/Exact.h"
#include "tests/support/TableRow.h"

#include <QtTest>

#include <cmath>

namespace
{

using Values = std::vector<double>;

/// Points 0 and 4 eV make a map's edge jump of 1.
FittedSpectrum valid()
{
    FittedSpectrum spectrum;
    spectrum.setPoints({{14.0, 0.0, 0.0}, {12.0, 4.0, 1.0}});
    spectrum.postVic = {1.0, 0.0, 0.0};
    spectrum.edge = 2.0;
    return spectrum;
}

/// A map of two pixels side by side, with the values of each row.
class Map
{
public:
    Map(PointRows table, std::vector<Values> values) : m_values(std::move(values))
    {
        input.table = std::move(table);
        input.spectra.all = {&ref1, &ref2, nullptr, nullptr}; // a map needs no target
        input.conditions.thickness = ThicknessType::SumBySum;
        input.valences = {2.0, 3.0};
        for (const Values& row : m_values) {
            MapSource source;
            source.valid = !row.empty();
            source.image = {row.data(), row.size(), 2};
            source.columns = source.valid ? 2 : 0;
            source.rows = source.valid ? 1 : 0;
            auto positions = std::make_shared<MapPositions>();
            for (std::size_t i = 0; i < row.size(); ++i) {
                const MapPosition position{static_cast<double>(i), 7.0};
                positions->append(&position, 1);
            }
            source.positions = positions;
            sources.push_back(source);
        }
    }

    MapRun run(double boxes = 3.0)
    {
        return mapResult(
            input, sources, results,
            {valence, thickness, {2.0, 3.0, boxes, false}, {0.0, 1.0, 3.0, false}, input.valences},
            workers);
    }
    bool isRefused(Refusal reason, int rows, double boxes = 3.0)
    {
        const MapRun made = run(boxes);
        return made.refusal && made.refusal->reason == reason && made.refusal->rowsInUse == rows &&
               !made.ratios && results.a.empty() && valence.counts.empty();
    }

    FittedSpectrum ref1 = valid();
    FittedSpectrum ref2 = valid();
    AnalysisInput input;
    std::vector<MapSource> sources;
    MapResults results;
    HistogramCounts valence;
    HistogramCounts thickness;
    Workers workers{2};

private:
    std::vector<Values> m_values;
};

/// As in the tests of the target: k = 0.75 and a contrast of -0.5. The thickness is the target's
/// step against ((2.25 - 0.25) + (2.25 - 0.5)) / 2 = 1.875.
PointRows threeRows()
{
    return {row(1.0, 0.25, 0.5), row(2.0, 2.25, 1.5), vRow(3.0, 0.75, 1.25)};
}

/// Half of each state, with a step of one and of 1.875.
std::vector<Values> threeImages()
{
    return {{0.0, 0.0}, {1.0, 1.875}, {0.5, 0.9375}};
}

/// References of 0.5 times 1, 2, 1 and, at the V point, of 1 and 2.
PointRows fourRows()
{
    return {row(1.0, 0.5, 0.5), row(2.0, 1.0, 1.0), vRow(3.0, 0.5, 1.0), row(4.0, 0.5, 0.5)};
}

/// A quarter of Ref 1 on 0.25 + 0.5 E, and half as thick without background.
std::vector<Values> fourImages()
{
    return {{1.25, 0.25}, {2.25, 0.5}, {2.625, 0.4375}, {2.75, 0.25}};
}

void compareAll(const PixelArray<double>& found, const Values& expected)
{
    QCOMPARE(found.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        COMPARE_EXACT(found[i], expected[i]);
}

} // namespace

class tst_MapResult : public QObject
{
    Q_OBJECT

private slots:
    void threePoints();
    void fourPointsHaveRatios();
    void gridIsTheVPointsOwn();
    void rowsWithoutDataDoNotCountButAreTaken();
    void refusalsInTheirOrder();
    void refusalsOfTheCalculation();
    void refusalKeepsEarlierResults();
};

void tst_MapResult::threePoints()
{
    Map map(threeRows(), threeImages());
    const MapRun run = map.run();
    QVERIFY(!run.refusal);
    QVERIFY(!run.ratios);
    QCOMPARE(run.gridRow, std::size_t{2});
    QCOMPARE(map.results.columns, 2);
    QCOMPARE(map.results.rows, 1);
    compareAll(map.results.a, {0.5, 0.5});
    compareAll(map.results.t, {1.0 / 1.875, 1.0});
    // Valences of 2.5 in the middle bin of 2, 2.5, 3; thicknesses of 0.53 and 1 in 0, 0.5, 1.
    QCOMPARE(map.valence.counts, (std::vector<int>{0, 2, 0}));
    QCOMPARE(map.thickness.counts, (std::vector<int>{0, 1, 1}));
}

void tst_MapResult::fourPointsHaveRatios()
{
    Map map(fourRows(), fourImages());
    map.input.conditions.exact = true;
    map.input.conditions.leastSquares = false;
    const MapRun run = map.run();
    QVERIFY(!run.refusal);
    QVERIFY(run.ratios);
    COMPARE_EXACT(run.ratios->trSbyS, 1.0);
    COMPARE_EXACT(run.ratios->trVic2, 1.0);
    QCOMPARE(run.gridRow, std::size_t{2});
    compareAll(map.results.a, {0.25, 0.25});
    compareAll(map.results.t, {1.0, 0.5});
    QCOMPARE(map.valence.counts, (std::vector<int>{0, 0, 2})); // 2.75 is where the last bin begins

    // The chosen one counts: see the test of the target for rho = 3.
    map.ref1.postVic.c = 3.0;
    map.input.conditions.thickness = ThicknessType::EdgeJumps;
    QVERIFY(!map.run().refusal);
    QVERIFY2(std::abs(map.results.a[0] - 0.675) < 1e-12,
             qPrintable(QString::number(map.results.a[0], 'g', 17)));
}

/// The V point's 2D data have two rows of one pixel; of the others the first pixel is at the same
/// place, and there is none below.
void tst_MapResult::gridIsTheVPointsOwn()
{
    PointRows rows = threeRows();
    std::swap(rows[0], rows[2]); // energies and all: V, then 2, then 1
    std::vector<Values> images = threeImages();
    std::swap(images[0], images[2]);
    Map map(rows, images);
    // Normalization points are now those of 2 eV and 1 eV.
    map.sources[0].columns = 1;
    map.sources[0].rows = 2;
    map.sources[0].image.columns = 1;
    const MapRun run = map.run();
    QVERIFY(!run.refusal);
    QCOMPARE(run.gridRow, std::size_t{0});
    QCOMPARE(map.results.columns, 1);
    QCOMPARE(map.results.rows, 2);
    QCOMPARE(map.results.positions, map.sources[0].positions);
    COMPARE_EXACT(map.results.a[0], 0.5);
    // Both normalization points are missing, -1 minus -1; the step of the references is negative.
    QVERIFY(!std::isfinite(map.results.a[1]));
    COMPARE_EXACT(map.results.t[1], -0.0);
}

/// Three rows with data are three points; the fourth, first in the table, is the first
/// normalization point all the same, and its values are -1.
void tst_MapResult::rowsWithoutDataDoNotCountButAreTaken()
{
    PointRows rows = threeRows();
    rows.insert(rows.begin(), row(0.5, 0.25, 0.5));
    // Scaled by the first two: the references as before between 0.5 eV and 1 eV.
    rows[1].mut1 = 2.25;
    rows[1].mut2 = 1.5;
    std::vector<Values> images = threeImages();
    images.insert(images.begin(), Values());
    images[1] = {1.0, 0.0};
    images[3] = {0.0, -0.5};
    Map map(rows, images);
    const MapRun run = map.run();
    QVERIFY(!run.refusal);
    QVERIFY(!run.ratios);
    QCOMPARE(run.gridRow, std::size_t{3});
    compareAll(map.results.a, {0.5, 0.5}); // half way from -1 to 1, and from -1 to 0
    compareAll(map.results.t, {2.0 / 1.875, 1.0 / 1.875});
}

/// All is wrong at first, and mended one after the other.
void tst_MapResult::refusalsInTheirOrder()
{
    Map map(threeRows(), threeImages());
    const FittedSpectrum empty;
    map.input.spectra.all = {&empty, nullptr, nullptr, nullptr};
    map.input.table[1].use = false;
    map.sources[2].valid = false; // of the V point
    QVERIFY(map.isRefused(Refusal::NoVPoint, 1));
    map.sources[2].valid = true;
    map.input.table[2].use = false;
    QVERIFY(map.isRefused(Refusal::NoVPoint, 1));
    map.input.table[2].use = true;
    QVERIFY(map.isRefused(Refusal::Ref1NotValid, 2));
    map.input.spectra.all[SpectrumSet::Ref1] = &map.ref1;
    QVERIFY(map.isRefused(Refusal::Ref2NotValid, 2));
    map.input.spectra.all[SpectrumSet::Ref2] = &map.ref2;
    QVERIFY(map.isRefused(Refusal::RowCount, 2));
    map.input.table[1].use = true;
    QVERIFY(!map.run().refusal);
}

/// Ratios are not reported where nothing is calculated.
void tst_MapResult::refusalsOfTheCalculation()
{
    Map map(fourRows(), fourImages());
    map.sources[2].columns = 2000000000;
    map.sources[2].rows = 2000000000;
    QVERIFY(map.isRefused(Refusal::TooManyBoxes, 4, 1e9));
    QVERIFY(map.isRefused(Refusal::MapTooLarge, 4));
    map.sources[2].columns = 2;
    map.sources[2].rows = 1;
    QVERIFY(map.isRefused(Refusal::TooManyBoxes, 4, 1e9));
    QVERIFY(map.run().ratios);
}

void tst_MapResult::refusalKeepsEarlierResults()
{
    Map map(threeRows(), threeImages());
    QVERIFY(!map.run().refusal);
    map.input.table[1].use = false;
    QVERIFY(map.run().refusal);
    QVERIFY(map.run(1e9).refusal);
    compareAll(map.results.a, {0.5, 0.5});
    QCOMPARE(map.valence.counts, (std::vector<int>{0, 2, 0}));
    QCOMPARE(map.results.positions, map.sources[2].positions);
}

QTEST_APPLESS_MAIN(tst_MapResult)
#include "tst_MapResult.moc"

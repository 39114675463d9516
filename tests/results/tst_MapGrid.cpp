#include "results/MapGrid.h"
#include "tests/support/SmallMap.h"

#include <QtTest>

#include <cmath>

namespace
{

using Edges = std::vector<double>;

} // namespace

class TestMapGrid : public QObject
{
    Q_OBJECT

private slots:
    void cellsReachHalfWayToTheNeighbours();
    void fallingPositionsAreTurnedRound();
    void unevenStepsKeepTheirWidths();
    void jitterBelowHalfAStepKeepsTheGrid();
    void onePixelHasACell();
    void aLineTakesItsStepForBothAxes();
    void theRestOfABrokenScanFollowsItsSteps();
    void positionsThatSayNothingAreCounted_data();
    void positionsThatSayNothingAreCounted();
    void aTurnedGridIsLaidByTheNearestPixel();
    void coveredPixelsAreCounted();
    void aPixelFarOffDoesNotTakeMemory();
    void noPixelsGiveNoCells();
};

void TestMapGrid::cellsReachHalfWayToTheNeighbours()
{
    const SmallMap map(3, 2, [](int x, int y) { return QPointF(10.0 + 2.0 * x, 5.0 + y); });
    const MapGrid grid(map.pixels());
    QCOMPARE(grid.xEdges, Edges({9.0, 11.0, 13.0, 15.0}));
    QCOMPARE(grid.yEdges, Edges({4.5, 5.5, 6.5}));
    QVERIFY(grid.isRegular());
    QVERIFY(grid.inPositionUnits);
    QCOMPARE(grid.pixel(2, 1), std::ptrdiff_t{5});
    QCOMPARE(grid.pixelAt(11.5, 6.4), std::ptrdiff_t{4});
    QCOMPARE(grid.pixelAt(8.9, 6.4), std::ptrdiff_t{MapGrid::none});
    QCOMPARE(grid.pixelAt(11.5, 6.5), std::ptrdiff_t{MapGrid::none});
    QCOMPARE(grid.pixelAt(std::nan(""), 6.0), std::ptrdiff_t{MapGrid::none});
}

void TestMapGrid::fallingPositionsAreTurnedRound()
{
    const SmallMap map(3, 2, [](int x, int y) { return QPointF(-x, -2.0 * y); });
    const MapGrid grid(map.pixels());
    QCOMPARE(grid.xEdges, Edges({-2.5, -1.5, -0.5, 0.5}));
    QCOMPARE(grid.yEdges, Edges({-3.0, -1.0, 1.0}));
    QCOMPARE(grid.pixel(0, 0), std::ptrdiff_t{5}); // the lowest position: last column, last row
    QCOMPARE(grid.pixel(2, 1), std::ptrdiff_t{0});
}

void TestMapGrid::unevenStepsKeepTheirWidths()
{
    const SmallMap map(3, 1, [](int x, int) { return QPointF(x * x, 0.0); });
    const MapGrid grid(map.pixels());
    QCOMPARE(grid.xEdges, Edges({-0.5, 0.5, 2.5, 5.5}));
}

void TestMapGrid::jitterBelowHalfAStepKeepsTheGrid()
{
    const auto jitter = [](int x, int y) { return (x + y) % 2 == 0 ? 0.2 : -0.2; };
    const SmallMap map(4, 4, [&](int x, int y) { return QPointF(x + jitter(x, y), y); });
    const MapGrid grid(map.pixels());
    QVERIFY(grid.isRegular());
    QCOMPARE(grid.xEdges, Edges({-0.5, 0.5, 1.5, 2.5, 3.5}));
}

void TestMapGrid::onePixelHasACell()
{
    const SmallMap map(1, 1, [](int, int) { return QPointF(7.0, -3.0); });
    const MapGrid grid(map.pixels());
    QCOMPARE(grid.xEdges, Edges({6.5, 7.5}));
    QCOMPARE(grid.yEdges, Edges({-3.5, -2.5}));
    QCOMPARE(grid.pixel(0, 0), std::ptrdiff_t{0});
}

void TestMapGrid::aLineTakesItsStepForBothAxes()
{
    const SmallMap map(1, 3, [](int, int y) { return QPointF(1.0, 0.5 * y); });
    const MapGrid grid(map.pixels());
    QCOMPARE(grid.xEdges, Edges({0.75, 1.25}));
    QCOMPARE(grid.yEdges, Edges({-0.25, 0.25, 0.75, 1.25}));
}

void TestMapGrid::theRestOfABrokenScanFollowsItsSteps()
{
    SmallMap map(2, 4);
    map.stopAfter(3); // one row and a pixel
    const MapGrid grid(map.pixels());
    QCOMPARE(grid.yEdges, Edges({-0.5, 0.5, 1.5, 2.5, 3.5}));
    QCOMPARE(grid.pixel(1, 3), std::ptrdiff_t{7});
}

void TestMapGrid::positionsThatSayNothingAreCounted_data()
{
    QTest::addColumn<double>("x");
    QTest::newRow("all the same") << 0.0;
    QTest::newRow("not a number") << std::nan("");
    QTest::newRow("infinite") << HUGE_VAL;
    QTest::newRow("beyond all") << 1e300;
}

void TestMapGrid::positionsThatSayNothingAreCounted()
{
    QFETCH(double, x);
    const SmallMap map(2, 3, [x](int, int) { return QPointF(x, 0.0); });
    const MapGrid grid(map.pixels());
    QVERIFY(!grid.inPositionUnits);
    QCOMPARE(grid.xEdges, Edges({0.5, 1.5, 2.5}));
    QCOMPARE(grid.yEdges, Edges({0.5, 1.5, 2.5, 3.5}));
    QCOMPARE(grid.pixelAt(2.0, 3.0), std::ptrdiff_t{5});
}

// Each place within a third of a step of a pixel belongs to it, and none outside the turned square.
void TestMapGrid::aTurnedGridIsLaidByTheNearestPixel()
{
    const double c = std::cos(0.5);
    const double s = std::sin(0.5);
    const auto place = [=](double x, double y) { return QPointF(c * x - s * y, s * x + c * y); };
    const SmallMap map(9, 7, place);
    const MapGrid grid(map.pixels());
    QVERIFY(!grid.isRegular());
    QCOMPARE(grid.hidden, std::size_t{0});
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 9; ++x)
            for (int k = 0; k < 4; ++k) {
                const QPointF at = place(x + (k % 2 == 0 ? 0.2 : -0.2), y + (k < 2 ? 0.2 : -0.2));
                QCOMPARE(grid.pixelAt(at.x(), at.y()), std::ptrdiff_t{y * 9 + x});
            }
    const QPointF outside = place(-2.0, 3.0);
    QCOMPARE(grid.pixelAt(outside.x(), outside.y()), std::ptrdiff_t{MapGrid::none});
}

// A stage that stood still: all but the first pixel of a place lie under it.
void TestMapGrid::coveredPixelsAreCounted()
{
    const SmallMap map(4, 2, [](int x, int y) { return x < 2 ? QPointF(0, y) : QPointF(x, y); });
    const MapGrid grid(map.pixels());
    QVERIFY(!grid.isRegular());
    QCOMPARE(grid.hidden, std::size_t{2});
}

void TestMapGrid::aPixelFarOffDoesNotTakeMemory()
{
    const SmallMap map(
        3, 3, [](int x, int y) { return x == 2 && y == 2 ? QPointF(1e9, 1e9) : QPointF(x, y); });
    const MapGrid grid(map.pixels());
    QVERIFY(!grid.isRegular());
    QVERIFY2(grid.columns() <= 257 && grid.rows() <= 257,
             qPrintable(QString::number(grid.columns())));
}

void TestMapGrid::noPixelsGiveNoCells()
{
    const MapGrid grid{MapPixels()};
    QCOMPARE(grid.columns(), 0);
    QCOMPARE(grid.rows(), 0);
}

QTEST_APPLESS_MAIN(TestMapGrid)
#include "tst_MapGrid.moc"

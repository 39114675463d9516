#include "display/ChCoord.h"
#include "display/Pixel.h"
#include "tests/support/Exact.h"

#include <limits>

namespace
{

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// A canvas of 400 x 300 with the margins applied.
void setCanvas(ChCoord& coord)
{
    coord.setWindow(0, 300, 400, 0);
    coord.applyMargins();
}

} // namespace

class TestChCoord : public QObject
{
    Q_OBJECT

private slots:
    void startsWithUnitRanges();
    void settersTakeLeftBottomRightTop();
    void windowResetsThePlotArea();
    void marginsLieOnWholePixels_data();
    void marginsLieOnWholePixels();
    void slotOfALabel();
    void convertsThereAndBack();
    void lengthsHaveNoOffset();
    void clampsIntoTheRange_data();
    void clampsIntoTheRange();
    void emptyRangeIsNotFinite();
    void nearPlotEdges_data();
    void nearPlotEdges();
    void nearWindowEdges();
    void nearEdgesOfReversedAxes();
    void truncatesTowardZero_data();
    void truncatesTowardZero();
    void roundsHalvesUp_data();
    void roundsHalvesUp();
};

void TestChCoord::startsWithUnitRanges()
{
    const ChCoord coord;
    for (const double zero : {coord.wx0, coord.wy0, coord.px0, coord.py0, coord.rx0, coord.ry0})
        COMPARE_EXACT(zero, 0.0);
    for (const double one : {coord.wx1, coord.wy1, coord.px1, coord.py1, coord.rx1, coord.ry1})
        COMPARE_EXACT(one, 1.0);
    COMPARE_EXACT(coord.windowEdgeRatio, 0.1);
    COMPARE_EXACT(coord.plotEdgeRatio, 0.1);
    COMPARE_EXACT(coord.leftMargin, 0.1);
    COMPARE_EXACT(coord.rightMargin, 0.05);
    COMPARE_EXACT(coord.topMargin, 0.05);
    COMPARE_EXACT(coord.bottomMargin, 0.1);
    QCOMPARE(coord.labelDivisions, 10);
    QCOMPARE(coord.spare, 20);
    COMPARE_EXACT(coord.labelHeightRatio, 0.85);
    QCOMPARE(coord.valid, 1);
}

void TestChCoord::settersTakeLeftBottomRightTop()
{
    ChCoord coord;
    coord.setRange(1, 2, 3, 4);
    COMPARE_EXACT(coord.rx0, 1.0);
    COMPARE_EXACT(coord.ry0, 2.0);
    COMPARE_EXACT(coord.rx1, 3.0);
    COMPARE_EXACT(coord.ry1, 4.0);
    coord.setXRange(5, 6);
    coord.setYRange(7, 8);
    COMPARE_EXACT(coord.rx0, 5.0);
    COMPARE_EXACT(coord.rx1, 6.0);
    COMPARE_EXACT(coord.ry0, 7.0);
    COMPARE_EXACT(coord.ry1, 8.0);
    coord.setPlotArea(9, 10, 11, 12);
    COMPARE_EXACT(coord.px0, 9.0);
    COMPARE_EXACT(coord.py0, 10.0);
    COMPARE_EXACT(coord.px1, 11.0);
    COMPARE_EXACT(coord.py1, 12.0);
}

void TestChCoord::windowResetsThePlotArea()
{
    ChCoord coord;
    setCanvas(coord);
    coord.setWindow(0, 30, 40, 0);
    COMPARE_EXACT(coord.wy0, 30.0);
    COMPARE_EXACT(coord.wx1, 40.0);
    COMPARE_EXACT(coord.px0, 0.0);
    COMPARE_EXACT(coord.px1, 40.0);
    COMPARE_EXACT(coord.py0, 30.0);
    COMPARE_EXACT(coord.py1, 0.0);
}

void TestChCoord::marginsLieOnWholePixels_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QVector<double>>("plot"); // px0, px1, py0, py1
    QTest::newRow("400 x 300") << 400 << 300 << QVector<double>{40, 380, 270, 15};
    // 0.1 * 333 = 33.3, 0.05 * 333 = 16.65, 0.1 * -217 = -21.7, 0.05 * -217 = -10.85
    QTest::newRow("fractions") << 333 << 217 << QVector<double>{33, 317, 196, 10};
    QTest::newRow("tiny") << 9 << 9 << QVector<double>{0, 9, 9, 0};
    QTest::newRow("nothing") << 0 << 0 << QVector<double>{0, 0, 0, 0};
}

void TestChCoord::marginsLieOnWholePixels()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(QVector<double>, plot);
    ChCoord coord;
    coord.setWindow(0, height, width, 0);
    coord.applyMargins();
    COMPARE_EXACT(coord.px0, plot[0]);
    COMPARE_EXACT(coord.px1, plot[1]);
    COMPARE_EXACT(coord.py0, plot[2]);
    COMPARE_EXACT(coord.py1, plot[3]);
}

void TestChCoord::slotOfALabel()
{
    ChCoord coord;
    setCanvas(coord); // the plot area from (40, 270) up to (380, 15)
    QCOMPARE(coord.canvasSize(), QSize(400, 300));
    const LabelSlot slot = coord.labelSlot();
    QCOMPARE(slot.pitch, -25);  // -255 / 10
    QCOMPARE(slot.height, -21); // -25 * 0.85
    QCOMPARE(slot.margin, 40);
    coord.setWindow(400, 0, 0, 300); // both axes the other way
    QCOMPARE(coord.canvasSize(), QSize(400, 300));
}

void TestChCoord::convertsThereAndBack()
{
    ChCoord coord;
    setCanvas(coord);
    coord.setRange(8000, -1, 8340, 4);
    COMPARE_EXACT(coord.xToScreen(8000), 40.0);
    COMPARE_EXACT(coord.xToScreen(8340), 380.0);
    COMPARE_EXACT(coord.xToScreen(8100), 140.0);
    COMPARE_EXACT(coord.yToScreen(-1), 270.0);
    COMPARE_EXACT(coord.yToScreen(4), 15.0);
    COMPARE_EXACT(coord.yToScreen(1), 168.0); // two of five units above the bottom, 51 pixels each
    COMPARE_EXACT(coord.screenToX(140), 8100.0);
    COMPARE_EXACT(coord.screenToY(270), -1.0);
    QCOMPARE(coord.screenToY(168), 1.0);
}

void TestChCoord::lengthsHaveNoOffset()
{
    ChCoord coord;
    setCanvas(coord);
    coord.setRange(8000, -1, 8340, 4);
    COMPARE_EXACT(coord.dxToScreen(10), 10.0);
    COMPARE_EXACT(coord.dyToScreen(1), -51.0);
    COMPARE_EXACT(coord.screenToDx(10), 10.0);
    QCOMPARE(coord.screenToDy(-51), 1.0);
    COMPARE_EXACT(coord.screenToXOffset(50), 10.0);
    QCOMPARE(coord.screenToYOffset(219), 1.0);
}

void TestChCoord::clampsIntoTheRange_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<double>("pixel");
    QTest::addColumn<double>("expected");
    QTest::newRow("inside") << 0.0 << 340.0 << 140.0 << 100.0;
    QTest::newRow("left of it") << 0.0 << 340.0 << 30.0 << 0.0;
    QTest::newRow("right of it") << 0.0 << 340.0 << 390.0 << 340.0;
    QTest::newRow("reversed, inside") << 340.0 << 0.0 << 140.0 << 240.0;
    QTest::newRow("reversed, left of it") << 340.0 << 0.0 << 30.0 << 340.0;
    QTest::newRow("reversed, right of it") << 340.0 << 0.0 << 390.0 << 0.0;
}

void TestChCoord::clampsIntoTheRange()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(double, pixel);
    QFETCH(double, expected);
    ChCoord coord;
    coord.setWindow(40, 40, 380, 380);
    coord.setRange(from, from, to, to);
    QCOMPARE(coord.screenToXClamped(pixel), expected);
    QCOMPARE(coord.screenToYClamped(pixel), expected);
}

void TestChCoord::emptyRangeIsNotFinite()
{
    ChCoord coord;
    setCanvas(coord);
    coord.setRange(5, 5, 5, 5);
    QVERIFY(std::isnan(coord.xToScreen(5)));
    COMPARE_EXACT(coord.xToScreen(6), infinite);
    COMPARE_EXACT(coord.yToScreen(6), -infinite);
}

void TestChCoord::nearPlotEdges_data()
{
    QTest::addColumn<double>("pixel");
    QTest::addColumn<bool>("nearX");
    QTest::addColumn<bool>("nearY");
    // Plot area 40..380 (a tenth is 34) and 15..270 (a tenth is 25.5).
    QTest::newRow("outside, low") << -1000.0 << true << true;
    QTest::newRow("40") << 40.0 << true << true;
    QTest::newRow("40.4") << 40.4 << true << true;
    QTest::newRow("40.5") << 40.5 << true << false;
    QTest::newRow("73") << 73.0 << true << false;
    QTest::newRow("74, exactly a tenth") << 74.0 << false << false;
    QTest::newRow("244.5, exactly a tenth") << 244.5 << false << false;
    QTest::newRow("245") << 245.0 << false << true;
    QTest::newRow("346, exactly a tenth") << 346.0 << false << true;
    QTest::newRow("347") << 347.0 << true << true;
    QTest::newRow("outside, high") << 1000.0 << true << true;
    QTest::newRow("not a number") << notANumber << false << false;
}

void TestChCoord::nearPlotEdges()
{
    QFETCH(double, pixel);
    QFETCH(bool, nearX);
    QFETCH(bool, nearY);
    ChCoord coord;
    setCanvas(coord);
    QCOMPARE(coord.nearPlotXEdge(pixel), nearX);
    QCOMPARE(coord.nearPlotYEdge(pixel), nearY);
}

void TestChCoord::nearWindowEdges()
{
    ChCoord coord;
    setCanvas(coord);
    QVERIFY(coord.nearWindowXEdge(39.9));
    QVERIFY(!coord.nearWindowXEdge(40));
    QVERIFY(!coord.nearWindowXEdge(360));
    QVERIFY(coord.nearWindowXEdge(360.1));
    QVERIFY(coord.nearWindowYEdge(29.9));
    QVERIFY(!coord.nearWindowYEdge(30));
    QVERIFY(!coord.nearWindowYEdge(270));
    QVERIFY(coord.nearWindowYEdge(270.1));
    coord.windowEdgeRatio = 0.25;
    QVERIFY(coord.nearWindowXEdge(99.9));
    QVERIFY(!coord.nearWindowXEdge(100));
    QVERIFY(coord.nearWindowYEdge(74.9));
    QVERIFY(!coord.nearWindowYEdge(75));
}

void TestChCoord::nearEdgesOfReversedAxes()
{
    ChCoord coord;
    coord.setPlotArea(380, 15, 40, 270);
    QVERIFY(coord.nearPlotXEdge(73));
    QVERIFY(!coord.nearPlotXEdge(74));
    QVERIFY(coord.nearPlotXEdge(347));
    QVERIFY(coord.nearPlotYEdge(40));
    QVERIFY(!coord.nearPlotYEdge(41));
}

void TestChCoord::truncatesTowardZero_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("up to the next") << 1.999999 << 1;
    QTest::newRow("just below zero") << -0.999999 << 0;
    QTest::newRow("below zero") << -1.999999 << -1;
    QTest::newRow("largest") << 1073741823.9 << 1073741823;
    QTest::newRow("beyond") << 1e300 << pixelLimit;
    QTest::newRow("beyond, negative") << -1e300 << -pixelLimit;
    QTest::newRow("32-bit end") << 2147483648.0 << pixelLimit;
    QTest::newRow("infinite") << infinite << pixelLimit;
    QTest::newRow("minus infinite") << -infinite << -pixelLimit;
    QTest::newRow("not a number") << notANumber << -pixelLimit;
}

void TestChCoord::truncatesTowardZero()
{
    QFETCH(double, value);
    QFETCH(int, expected);
    QCOMPARE(truncToInt(value), expected);
}

void TestChCoord::roundsHalvesUp_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("2.4") << 2.4 << 2;
    QTest::newRow("2.5") << 2.5 << 3;
    QTest::newRow("-2.5") << -2.5 << -2;
    QTest::newRow("-2.6") << -2.6 << -3;
    QTest::newRow("far off") << 1e20 << pixelLimit;
    QTest::newRow("not a number") << notANumber << -pixelLimit;
}

void TestChCoord::roundsHalvesUp()
{
    QFETCH(double, value);
    QFETCH(int, expected);
    QCOMPARE(roundToInt(value), expected);
    if (std::fabs(value) < 1e6)
        QCOMPARE(qRound(value), expected); // the toolkit rounds pointer positions the same way
}

QTEST_GUILESS_MAIN(TestChCoord)
#include "tst_ChCoord.moc"

#include "display/ChCoord.h"
#include "display/Navigation.h"
#include "tests/support/Exact.h"

#include <limits>

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// 400 x 300 pixels, 340 units wide and 255 high: one unit is one pixel.
void setCanvas(ChCoord& coord)
{
    coord.setWindow(0, 300, 400, 0);
    coord.applyMargins();
    coord.setRange(0, 0, 340, 255);
}

} // namespace

class TestNavigation : public QObject
{
    Q_OBJECT

private slots:
    void wheelFactors_data();
    void wheelFactors();
    void zoomsByPlaceOfThePointer_data();
    void zoomsByPlaceOfThePointer();
    void zoomKeepsThePointUnderThePointer();
    void zoomedInAndOutComesBack();
    void pansWithThePointer();
    void picksTheNearestLine_data();
    void picksTheNearestLine();
};

void TestNavigation::wheelFactors_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<double>("factor");
    QTest::newRow("a notch toward the user") << -120 << 1.1;
    QTest::newRow("less than a notch") << -1 << 1.1;
    QTest::newRow("a notch away") << 120 << 0.9090909090909091;
    QTest::newRow("no angle at all") << 0 << 0.9090909090909091;
}

void TestNavigation::wheelFactors()
{
    QFETCH(int, delta);
    QFETCH(double, factor);
    COMPARE_EXACT(wheelFactor(delta), factor);
}

void TestNavigation::zoomsByPlaceOfThePointer_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<bool>("changesX");
    QTest::addColumn<bool>("changesY");
    QTest::newRow("middle") << 210 << 140 << true << true;
    QTest::newRow("left margin") << 10 << 140 << false << true;
    QTest::newRow("left strip of the plot") << 73 << 140 << false << true;
    QTest::newRow("right strip") << 350 << 140 << false << true;
    QTest::newRow("bottom margin") << 210 << 290 << true << false;
    QTest::newRow("top strip") << 210 << 30 << true << false;
    QTest::newRow("corner") << 10 << 290 << true << true;
    QTest::newRow("other corner") << 390 << 5 << true << true;
}

void TestNavigation::zoomsByPlaceOfThePointer()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(bool, changesX);
    QFETCH(bool, changesY);
    ChCoord coord;
    setCanvas(coord);
    const double cx = coord.screenToX(x);
    const double cy = coord.screenToY(y);
    zoomAt(coord, x, y, 1.1);
    COMPARE_EXACT(coord.rx0, changesX ? (0.0 - cx) * 1.1 + cx : 0.0);
    COMPARE_EXACT(coord.rx1, changesX ? cx + (340.0 - cx) * 1.1 : 340.0);
    COMPARE_EXACT(coord.ry0, changesY ? (0.0 - cy) * 1.1 + cy : 0.0);
    COMPARE_EXACT(coord.ry1, changesY ? cy + 1.1 * (255.0 - cy) : 255.0);
}

void TestNavigation::zoomKeepsThePointUnderThePointer()
{
    ChCoord coord;
    setCanvas(coord);
    const double x = coord.screenToX(210);
    const double y = coord.screenToY(140);
    zoomAt(coord, 210, 140, wheelFactor(120));
    QVERIFY(coord.rx1 - coord.rx0 < 340.0);
    QCOMPARE(coord.screenToX(210), x);
    QCOMPARE(coord.screenToY(140), y);
}

void TestNavigation::zoomedInAndOutComesBack()
{
    ChCoord coord;
    setCanvas(coord);
    zoomAt(coord, 210, 140, wheelFactor(120));
    zoomAt(coord, 210, 140, wheelFactor(-120));
    QVERIFY(std::fabs(coord.rx0) < 1e-10);
    QCOMPARE(coord.rx1, 340.0);
    QVERIFY(std::fabs(coord.ry0) < 1e-10);
    QCOMPARE(coord.ry1, 255.0);
}

void TestNavigation::pansWithThePointer()
{
    ChCoord coord;
    setCanvas(coord);
    panBetween(coord, 100, 100, 110, 120);
    COMPARE_EXACT(coord.rx0, -10.0);
    COMPARE_EXACT(coord.rx1, 330.0);
    // Downward on the canvas: larger values come into view at the top.
    COMPARE_EXACT(coord.ry0, 20.0);
    COMPARE_EXACT(coord.ry1, 275.0);
}

void TestNavigation::picksTheNearestLine_data()
{
    QTest::addColumn<QVector<double>>("xLines");
    QTest::addColumn<QVector<double>>("yLines"); // after the others in the set
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<int>("picked");
    using Values = QVector<double>;
    const QPoint press(140, 170); // x 100, y 100
    QTest::newRow("no line") << Values{} << Values{} << press << -1;
    QTest::newRow("under the pointer") << Values{100} << Values{} << press << 0;
    QTest::newRow("9.99 pixels off") << Values{109.99} << Values{} << press << 0;
    QTest::newRow("10 pixels off") << Values{110} << Values{} << press << -1;
    QTest::newRow("nearest of three") << Values{108, 97, 104} << Values{} << press << 1;
    QTest::newRow("equally near: the first") << Values{105, 95} << Values{} << press << 0;
    QTest::newRow("horizontal line") << Values{} << Values{95} << press << 0;
    QTest::newRow("horizontal is nearer") << Values{105} << Values{98} << press << 1;
    QTest::newRow("not a number") << Values{notANumber, 103} << Values{} << press << 1;
    QTest::newRow("only not a number") << Values{notANumber} << Values{notANumber} << press << -1;
}

void TestNavigation::picksTheNearestLine()
{
    QFETCH(QVector<double>, xLines);
    QFETCH(QVector<double>, yLines);
    QFETCH(QPoint, press);
    QFETCH(int, picked);
    ChCoord coord;
    setCanvas(coord);
    std::vector<MarkPosition> marks;
    for (const double x : xLines)
        marks.push_back({true, x});
    for (const double y : yLines)
        marks.push_back({false, y});
    QCOMPARE(pickMark(coord, marks, press.x(), press.y()), picked);
}

QTEST_GUILESS_MAIN(TestNavigation)
#include "tst_Navigation.moc"

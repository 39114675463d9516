#include "results/GridLines.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <limits>
#include <set>

namespace
{

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

void setCanvas(ChCoord& coord, double x0, double y0, double x1, double y1)
{
    coord.setWindow(0, 300, 400, 0);
    coord.applyMargins();
    coord.setRange(x0, y0, x1, y1);
}

// The loops as they are said.
std::vector<int> valenceColumns(const ChCoord& coord, double v1, double v2)
{
    std::set<int> columns;
    for (double v = v1; v2 + 0.05 > v; v += 0.1) {
        const double x = coord.xToScreen(v);
        if (x > -1 && x < 401)
            columns.insert(static_cast<int>(x));
    }
    return {columns.begin(), columns.end()};
}

std::vector<int> countRows(const ChCoord& coord, int maxCount)
{
    std::set<int> rows;
    for (double n = 0; n <= maxCount; n += 10) {
        const double y = coord.yToScreen(n);
        if (y > -1 && y < 301)
            rows.insert(static_cast<int>(y));
    }
    return {rows.begin(), rows.end()};
}

} // namespace

class TestGridLines : public QObject
{
    Q_OBJECT

private slots:
    void valencesByTenths();
    void noLinesForExchangedValences();
    void valencesLikeTheLoop();
    void countsLikeTheLoop_data();
    void countsLikeTheLoop();
    void tenthsAreSummed();
    void moreLinesThanPixels();
    void zoomedIntoManyLines();
    void absurdNumbers();
};

void TestGridLines::valencesByTenths()
{
    ChCoord coord;
    setCanvas(coord, 1.95, 0, 3.05, 1); // 340 pixels for 1.1: a tenth is 30.9 pixels
    const std::vector<int> columns = gridColumns(coord, valenceSteps(2, 3));
    QCOMPARE(columns.size(), std::size_t(11)); // 2.0 to 3.0; the rounding of ten steps has room
    QCOMPARE(columns.front(), 55);             // 40 + 0.05 / 1.1 * 340 = 55.45
    QCOMPARE(columns.back(), 364);             // 40 + 1.05 / 1.1 * 340 = 364.5
}

void TestGridLines::noLinesForExchangedValences()
{
    ChCoord coord;
    setCanvas(coord, 0, 0, 4, 1);
    QVERIFY(gridColumns(coord, valenceSteps(3, 2)).empty());
    QVERIFY(gridColumns(coord, valenceSteps(3.05, 3)).empty());
    QCOMPARE(gridColumns(coord, valenceSteps(3.04, 3)).size(), std::size_t(1));
    QCOMPARE(gridColumns(coord, valenceSteps(3, 3)).size(), std::size_t(1));
}

void TestGridLines::valencesLikeTheLoop()
{
    Random random;
    for (int i = 0; i < 500; ++i) {
        const double v1 = random.below(80) * 0.1 - 4.0;
        const double v2 = v1 + random.below(300) * 0.1;
        const double from = v1 + random.uniform(-3, 3);
        ChCoord coord;
        setCanvas(coord, from, 0, from + random.uniform(-30, 30), 1);
        QCOMPARE(gridColumns(coord, valenceSteps(v1, v2)), valenceColumns(coord, v1, v2));
        // With ranges as the graphs set them lines fall on whole pixels, where rounding decides.
        setCanvas(coord, v1 - 0.2, v1 - 0.2, v2 + 0.2, v2 + 0.2);
        QCOMPARE(gridColumns(coord, valenceSteps(v1, v2)), valenceColumns(coord, v1, v2));
    }
}

void TestGridLines::countsLikeTheLoop_data()
{
    QTest::addColumn<int>("maxCount");
    for (const int maxCount : {0, 1, 9, 10, 11, 100, 995, 2500, 60000, 3000000})
        QTest::addRow("%d", maxCount) << maxCount;
}

void TestGridLines::countsLikeTheLoop()
{
    QFETCH(int, maxCount);
    ChCoord coord;
    for (const double zoom : {1.0, 0.3, 0.01}) {
        const double top = std::max(1.1 * maxCount * zoom, 1.0);
        setCanvas(coord, 0, -0.1 * top, 1, top);
        QCOMPARE(gridRows(coord, countSteps(maxCount)), countRows(coord, maxCount));
    }
}

void TestGridLines::tenthsAreSummed()
{
    const std::vector<double> values = tenths();
    QCOMPARE(values.size(), std::size_t(11));
    COMPARE_EXACT(values[0], 0.0);
    COMPARE_EXACT(values[2], 0.1 + 0.1);
    COMPARE_EXACT(values[3], 0.1 + 0.1 + 0.1); // not 0.3
    QVERIFY(values[3] != 0.3);
    QCOMPARE(values[10], 1.0);
}

void TestGridLines::moreLinesThanPixels()
{
    ChCoord coord;
    setCanvas(coord, -1e8, 0, 1.1e9, 1);
    const std::vector<int> columns = gridColumns(coord, valenceSteps(0, 1e9));
    // Zero lies at 40 + 340 / 12 = 68.3, a milliard at 40 + 340 * 11 / 12 = 351.7: all between.
    QCOMPARE(columns.size(), std::size_t(351 - 68 + 1));
    QCOMPARE(columns.front(), 68);
    QCOMPARE(columns.back(), 351);
    setCanvas(coord, 0, -1e8, 1, 1.1e9);
    const std::vector<int> rows = gridRows(coord, countSteps(1000000000));
    QCOMPARE(rows.front(), 36); // 270 - 255 * 11 / 12 = 36.25
    QCOMPARE(rows.back(), 248); // 270 - 255 / 12 = 248.75
    QCOMPARE(rows.size(), std::size_t(248 - 36 + 1));
}

void TestGridLines::zoomedIntoManyLines()
{
    ChCoord coord;
    setCanvas(coord, 5e8, 0, 5e8 + 1.0, 1);
    const std::vector<int> columns = gridColumns(coord, valenceSteps(0, 1e9));
    // A line each 34 pixels, also in the margins: 12 of them in 400 pixels.
    QVERIFY2(columns.size() == 11 || columns.size() == 12,
             qPrintable(QString::number(columns.size())));
    for (std::size_t i = 1; i < columns.size(); ++i)
        QVERIFY(qAbs(columns[i] - columns[i - 1] - 34) <= 1);
}

void TestGridLines::absurdNumbers()
{
    for (const double v1 : {0.0, 1e17, -1e300, -infinite, notANumber}) {
        for (const double v2 : {0.0, 1e17, 1e300, infinite, notANumber}) {
            for (const double range : {1.0, 0.0, 1e300, infinite, notANumber}) {
                ChCoord coord;
                setCanvas(coord, -range, -range, range, range);
                const std::size_t columns = gridColumns(coord, valenceSteps(v1, v2)).size();
                QVERIFY(columns <= 401);
            }
        }
    }
    ChCoord coord;
    setCanvas(coord, 0, 0, 0, 0);
    QVERIFY(gridRows(coord, countSteps(2147483647)).empty());
    coord.setWindow(0, 0, 0, 0);
    QVERIFY(gridRows(coord, countSteps(10)).size() <= 1);
}

QTEST_GUILESS_MAIN(TestGridLines)
#include "tst_GridLines.moc"

#include "display/ChCoord.h"
#include "display/PlotLines.h"
#include "tests/support/Random.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QtTest>

#include <limits>

namespace
{

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int width = 80;
constexpr int height = 60;

// One data unit is one pixel, y growing downward.
void setCanvas(ChCoord& coord)
{
    coord.setWindow(0, height, width, 0);
    coord.setRange(0, height, width, 0);
}

QImage blank()
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

QImage drawnOneByOne(const QVector<QLine>& lines, const QPen& pen)
{
    QImage image = blank();
    QPainter painter(&image);
    painter.setPen(pen);
    for (const QLine& line : lines)
        painter.drawLine(line);
    return image;
}

QImage drawnTogether(const QVector<QLine>& lines, const QPen& pen)
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord, pen.width());
    for (const QLine& line : lines)
        plot.addPixels(line);
    QImage image = blank();
    QPainter painter(&image);
    plot.draw(painter, pen);
    return image;
}

} // namespace

class TestPlotLines : public QObject
{
    Q_OBJECT

private slots:
    void truncatesCoordinates();
    void leavesOutWhatIsNoNumber();
    void leavesOutWhatPassesBy();
    void joinsVerticalPieces();
    void longCurveCostsItsColumns();
    void wholeCanvasLines();
    void looksLikeLinesDrawnOneByOne_data();
    void looksLikeLinesDrawnOneByOne();
    void shortensFarLines_data();
    void shortensFarLines();
    void farLineKeepsItsDirection();
};

void TestPlotLines::truncatesCoordinates()
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord);
    plot.add(1.9, 2.9, -0.9, 5.1);
    QCOMPARE(plot.lines(), QVector<QLine>{QLine(1, 2, 0, 5)});
}

void TestPlotLines::leavesOutWhatIsNoNumber()
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord);
    plot.add(notANumber, 1, 2, 3);
    plot.add(1, notANumber, 2, 3);
    plot.add(1, 2, notANumber, 3);
    plot.add(1, 2, 3, notANumber);
    plot.addVertical(notANumber);
    plot.addHorizontal(notANumber);
    QVERIFY(plot.lines().isEmpty());
    plot.add(10, 10, infinite, 10); // an end without end is far off, not lost
    QCOMPARE(plot.lines().size(), 1);
}

void TestPlotLines::leavesOutWhatPassesBy()
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord);
    plot.add(-50, 10, -5, 20);
    plot.add(width + 5, 10, width + 50, 20);
    plot.add(10, -50, 20, -5);
    plot.add(10, height + 5, 20, height + 50);
    plot.addVertical(-100);
    plot.addHorizontal(1e300);
    QVERIFY(plot.lines().isEmpty());
}

void TestPlotLines::joinsVerticalPieces()
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord);
    plot.addPixels(QLine(5, 10, 5, 20));
    plot.addPixels(QLine(5, 20, 5, 15)); // inside
    plot.addPixels(QLine(5, 15, 5, 8));  // beyond one end
    plot.addPixels(QLine(5, 30, 5, 31)); // apart
    plot.addPixels(QLine(6, 30, 6, 31)); // another column
    QCOMPARE(plot.lines(),
             (QVector<QLine>{QLine(5, 8, 5, 20), QLine(5, 30, 5, 31), QLine(6, 30, 6, 31)}));
}

void TestPlotLines::longCurveCostsItsColumns()
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord);
    constexpr int count = 100000;
    const auto x = [](int i) { return static_cast<double>(i) * width / count; };
    const auto y = [](int i) { return i % 2 == 0 ? 5.0 : 50.0; };
    for (int i = 1; i < count; ++i)
        plot.add(x(i), y(i), x(i - 1), y(i - 1));
    QVERIFY2(plot.lines().size() <= 2 * width + 2,
             qPrintable(QString::number(plot.lines().size())));
}

void TestPlotLines::wholeCanvasLines()
{
    ChCoord coord;
    setCanvas(coord);
    PlotLines plot(coord);
    plot.addVertical(12.7);
    plot.addHorizontal(33.2);
    QCOMPARE(plot.lines(), (QVector<QLine>{QLine(12, 0, 12, height), QLine(0, 33, width, 33)}));
}

void TestPlotLines::looksLikeLinesDrawnOneByOne_data()
{
    QTest::addColumn<int>("penWidth");
    QTest::newRow("one pixel") << 1;
    QTest::newRow("two pixels") << 2;
    QTest::newRow("three pixels") << 3;
}

void TestPlotLines::looksLikeLinesDrawnOneByOne()
{
    QFETCH(int, penWidth);
    Random random;
    const QPen pen(Qt::blue, penWidth);
    for (int round = 0; round < 300; ++round) {
        const int reach = round % 3 == 0 ? 400 : 20; // now and then far beside the canvas
        QVector<QLine> lines;
        QPoint last(random.below(width), random.below(height));
        for (int i = 0; i < 30; ++i) {
            // Steps of a column or none, as a densely measured spectrum makes them.
            const int step = random.oneIn(3) ? random.below(2 * reach) - reach : random.below(2);
            const QPoint next = last + QPoint(step, random.below(2 * reach) - reach);
            lines.append(QLine(last, next));
            last = random.oneIn(8) ? QPoint(random.below(width), random.below(height)) : next;
        }
        // Wide vertical lines of the toolkit change by a pixel with their length within a pen's
        // width of the image's left end, where a graph has its margin.
        const QRect compared = QRect(0, 0, width, height).adjusted(penWidth == 1 ? 0 : 5, 0, 0, 0);
        QCOMPARE(drawnTogether(lines, pen).copy(compared),
                 drawnOneByOne(lines, pen).copy(compared));
    }
}

void TestPlotLines::shortensFarLines_data()
{
    QTest::addColumn<QLine>("line");
    QTest::addColumn<QLine>("expected");
    constexpr int far = 1 << 30;
    QTest::newRow("ordinary") << QLine(-50, 3, 90, 7) << QLine(-50, 3, 90, 7);
    QTest::newRow("across") << QLine(-far, 30, far, 30) << QLine(0, 30, 100, 30);
    QTest::newRow("upward") << QLine(30, far, 30, -far) << QLine(30, 100, 30, 0);
    QTest::newRow("diagonal") << QLine(-far, -far, far, far) << QLine(0, 0, 100, 100);
    QTest::newRow("one end inside") << QLine(50, 50, far, 50) << QLine(50, 50, 100, 50);
}

void TestPlotLines::shortensFarLines()
{
    QFETCH(QLine, line);
    QFETCH(QLine, expected);
    QCOMPARE(reachingLine(line, QRect(QPoint(0, 0), QPoint(100, 100))).value(), expected);
}

void TestPlotLines::farLineKeepsItsDirection()
{
    const QRect rect(QPoint(0, 0), QPoint(100, 100));
    // Passes the corner at some distance, though both ends lie beyond on either side.
    QVERIFY(!reachingLine(QLine(-100000, 99000, 99000, -100000), rect).has_value());
    QVERIFY(!reachingLine(QLine(-100000, 20, -90000, 20), rect).has_value());
}

QTEST_MAIN(TestPlotLines)
#include "tst_PlotLines.moc"

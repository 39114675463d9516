#include "results/LcfGraph.h"
#include "tests/support/GraphPanel.h"

#include <QPainter>
#include <QtTest>

#include <cmath>

namespace
{

const QColor gridColor(200, 200, 255);
const QColor diagonalColor(0, 200, 0);

LCFvs4PSPoint point(double lcfValence, double psValence)
{
    return {0.0, psValence, 0.0, lcfValence};
}

GraphPanel::Paint painter(const std::vector<LCFvs4PSPoint>& points, ReferenceValences valences)
{
    return [&points, valences](QPainter& painter, GraphFrame& frame) {
        drawLcfGraph(painter, frame, points, valences);
    };
}

// The data of the graph, painted as they are said, on the grid and diagonal of an empty one.
QImage withDots(QImage image, const ChCoord& coord, const std::vector<LCFvs4PSPoint>& points)
{
    QPainter p(&image);
    QRect last;
    for (const LCFvs4PSPoint& dot : points) {
        const int px = static_cast<int>(coord.xToScreen(dot.lcfValence));
        const int py = static_cast<int>(coord.yToScreen(dot.psValence));
        p.setPen(Qt::black);
        p.drawEllipse(QRect(QPoint(px - 1, py - 1), QPoint(px, py)));
        last = QRect(QPoint(px - 2, py - 2), QPoint(px + 1, py + 1));
    }
    p.setPen(QColor(255, 0, 0));
    p.drawEllipse(last);
    return image;
}

} // namespace

class TestLcfGraph : public QObject
{
    Q_OBJECT

private slots:
    void noPointsLeaveItWhite();
    void rangeGridAndDiagonal();
    void dotsAndTheNewest();
    void exchangedValencesHaveNoGrid();
    void hugeValences();
    void pointsThatAreNoNumbers();
};

void TestLcfGraph::noPointsLeaveItWhite()
{
    const std::vector<LCFvs4PSPoint> none;
    GraphPanel panel(painter(none, {2, 3}));
    QVERIFY(panel.isWhite());
    QCOMPARE(panel.coord().valid, 0);
    QVERIFY(!panel.DispA->rangeSet);
}

void TestLcfGraph::rangeGridAndDiagonal()
{
    const std::vector<LCFvs4PSPoint> points{point(2.0, 3.0)};
    GraphPanel panel(painter(points, {2, 3}));
    const QImage image = panel.picture();
    QCOMPARE(panel.coord().rx0, 1.8);
    QCOMPARE(panel.coord().ry0, 1.8);
    QCOMPARE(panel.coord().rx1, 3.2);
    QCOMPARE(panel.coord().ry1, 3.2);
    // 2.0 to 3.0 by tenths: 340 / 1.4 = 242.9 pixels a valence across, 182.1 upward.
    const QVector<int> columns = canvas::columnsOf(image, gridColor, 20, 41, 379);
    const QVector<int> rows = canvas::rowsOf(image, gridColor, 45, 16, 269);
    QCOMPARE(columns.size(), 11);
    QCOMPARE(rows.size(), 11);
    QCOMPARE(columns.first(), 88);
    QCOMPARE(columns.last(), 331);
    QCOMPARE(rows.first(), 51);
    QCOMPARE(rows.last(), 233);
    // The diagonal from (2, 2) to (3, 3); 2.5 is (210, 142.5), where grid lines cross.
    QCOMPARE(QColor(image.pixel(88, 233)), diagonalColor);
    QCOMPARE(QColor(image.pixel(331, 51)), diagonalColor);
    QCOMPARE(QColor(image.pixel(209, 142)), diagonalColor);
    QVERIFY(QColor(image.pixel(60, 255)) != diagonalColor);
}

void TestLcfGraph::dotsAndTheNewest()
{
    // Overlapping dots: the order shows.
    const std::vector<LCFvs4PSPoint> points{point(2.3, 2.4), point(2.7, 2.2), point(2.703, 2.205),
                                            point(2.305, 2.4)};
    const std::vector<LCFvs4PSPoint> aside{point(-100, -100)};
    GraphPanel panel(painter(points, {2, 3}));
    GraphPanel empty(painter(aside, {2, 3}));
    const QImage image = panel.picture();
    const QImage bare = empty.picture();
    QCOMPARE(canvas::count(bare, Qt::red), 0);
    QCOMPARE(image, withDots(bare, panel.coord(), points));
    QVERIFY(canvas::count(image, Qt::red) >= 8);
}

void TestLcfGraph::exchangedValencesHaveNoGrid()
{
    const std::vector<LCFvs4PSPoint> points{point(2.5, 2.5)};
    GraphPanel panel(painter(points, {3, 2}));
    const QImage image = panel.picture();
    QCOMPARE(canvas::count(image, gridColor), 0);
    QVERIFY(canvas::count(image, Qt::red) > 0);
    QCOMPARE(panel.coord().rx0, 2.8);
    QCOMPARE(panel.coord().rx1, 2.2);
}

void TestLcfGraph::hugeValences()
{
    const std::vector<LCFvs4PSPoint> points{point(5, 5)};
    GraphPanel panel(painter(points, {0, 1e9}));
    const QImage image = panel.picture();
    // More than a line for each pixel: the plot is all of the grid's color where no other line is.
    QCOMPARE(QColor(image.pixel(100, 50)), gridColor);
    QCOMPARE(QColor(image.pixel(300, 250)), gridColor);
    QCOMPARE(canvas::count(panel.plot(), Qt::white), 0);
}

void TestLcfGraph::pointsThatAreNoNumbers()
{
    const double nan = std::nan("");
    const std::vector<LCFvs4PSPoint> points{point(2.5, 2.5), point(nan, 2.5), point(2.5, HUGE_VAL),
                                            point(-1e300, nan)};
    const std::vector<LCFvs4PSPoint> single{point(2.5, 2.5), point(-100, -100)};
    GraphPanel panel(painter(points, {2, 3}));
    GraphPanel other(painter(single, {2, 3}));
    QCOMPARE(panel.picture(), other.picture());
    for (const double v : {nan, HUGE_VAL, 1e300, 0.0}) {
        GraphPanel absurd(painter(points, {v, v}));
        QCOMPARE(absurd.picture().size(), QSize(400, 300));
    }
}

QTEST_MAIN(TestLcfGraph)
#include "tst_LcfGraph.moc"

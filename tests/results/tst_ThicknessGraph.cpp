#include "results/Dot.h"
#include "results/ThicknessGraph.h"
#include "tests/support/GraphPanel.h"
#include "tests/support/Random.h"

#include <QPainter>
#include <QtTest>

#include <cmath>

namespace
{

constexpr double v1 = 2.0;
constexpr double v2 = 3.0;
const QColor gridColor(200, 200, 255);

struct Cloud {
    std::vector<double> a;
    std::vector<double> t;

    void add(double fraction, double thickness)
    {
        a.push_back(fraction);
        t.push_back(thickness);
    }
    MapPoints points(std::uint64_t revision = 1) const
    {
        return {a.data(), t.data(), a.size(), revision};
    }
};

// Mostly inside the range of the graph, many on one another, some beside it or no numbers.
Cloud randomCloud(Random& random, int count)
{
    Cloud cloud;
    for (int i = 0; i < count; ++i) {
        const double spread = random.oneIn(10) ? 20.0 : 0.4;
        double a = 0.5 + spread * random.uniform(-1, 1);
        double t = 0.5 + spread * random.uniform(-1, 1);
        if (random.oneIn(200))
            a = random.anyNumber();
        if (random.oneIn(200))
            t = random.oneIn(2) ? std::nan("") : HUGE_VAL;
        cloud.add(a, t);
    }
    return cloud;
}

// One ellipse for each record.
void drawEachRecord(QPainter& painter, const ChCoord& coord, const Cloud& cloud)
{
    painter.setPen(Qt::black);
    painter.setBrush(Qt::NoBrush);
    for (std::size_t i = 0; i < cloud.a.size(); ++i) {
        const double x = coord.xToScreen(v1 * cloud.a[i] + v2 * (1 - cloud.a[i]));
        const double y = coord.yToScreen(cloud.t[i]);
        if (!(std::fabs(x) < 1e6 && std::fabs(y) < 1e6))
            continue; // nothing of it is to be seen
        const int px = static_cast<int>(x);
        const int py = static_cast<int>(y);
        painter.drawEllipse(QRect(QPoint(px - 1, py - 1), QPoint(px, py)));
    }
}

void setCanvas(ChCoord& coord, int width, int height)
{
    coord.setWindow(0, height, width, 0);
    coord.applyMargins();
    coord.setRange(1.5, -0.2, 3.5, 1.2);
}

QImage blank(int width, int height, double scale)
{
    QImage image(static_cast<int>(width * scale), static_cast<int>(height * scale),
                 QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setDevicePixelRatio(scale);
    return image;
}

} // namespace

class TestThicknessGraph : public QObject
{
    Q_OBJECT

private slots:
    void pixelsOnceEach();
    void looksLikeOneDotForEachRecord_data();
    void looksLikeOneDotForEachRecord();
    void cloudInACornerOfTheWindow();
    void pictureIsKept();
    void pictureFollowsChanges();
    void emptyCanvas();
    void noPointsLeaveItWhite();
    void rangeGridAndDots();
    void pointsBesideTheRange();
};

void TestThicknessGraph::pixelsOnceEach()
{
    ChCoord coord;
    setCanvas(coord, 400, 300);
    Cloud cloud;
    for (int i = 0; i < 1000; ++i)
        cloud.add(0.5, 0.5);
    cloud.add(1.0, 0.0);
    cloud.add(std::nan(""), 0.0);
    cloud.add(0.5, 1e300);
    DotPixels dots(QSize(400, 300));
    dots.mark(coord, cloud.points(), v1, v2);
    // 2.5 is the middle, 210; 0.5 is 270 - 127.5 = 142.5. 2.0 is 125; 0 is 270 - 36.4 = 233.6.
    QCOMPARE(dots.pixels(), (std::vector<QPoint>{QPoint(210, 142), QPoint(125, 233)}));
}

void TestThicknessGraph::looksLikeOneDotForEachRecord_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("scale"); // device pixels for one of the canvas
    QTest::addColumn<int>("count");
    QTest::newRow("400 x 300") << QSize(400, 300) << 1.0 << 20000;
    QTest::newRow("a few points") << QSize(400, 300) << 1.0 << 7;
    QTest::newRow("small canvas") << QSize(9, 5) << 1.0 << 20000;
    QTest::newRow("two device pixels") << QSize(200, 150) << 2.0 << 5000;
    QTest::newRow("three device pixels") << QSize(100, 80) << 3.0 << 5000;
    QTest::newRow("one and a half") << QSize(200, 150) << 1.5 << 5000;
}

void TestThicknessGraph::looksLikeOneDotForEachRecord()
{
    QFETCH(QSize, size);
    QFETCH(double, scale);
    QFETCH(int, count);
    Random random;
    for (int round = 0; round < 5; ++round) {
        const Cloud cloud = randomCloud(random, count);
        ChCoord coord;
        setCanvas(coord, size.width(), size.height());
        if (round > 0) // zoomed and moved
            coord.setRange(random.uniform(1, 2.5), random.uniform(-1, 0.5), random.uniform(2, 4),
                           random.uniform(0.4, 2));
        QImage expected = blank(size.width(), size.height(), scale);
        {
            QPainter painter(&expected);
            drawEachRecord(painter, coord, cloud);
        }
        DotCloud dots;
        for (int repaint = 0; repaint < 2; ++repaint) {
            QImage painted = blank(size.width(), size.height(), scale);
            QPainter painter(&painted);
            dots.draw(painter, coord, cloud.points(), v1, v2);
            painter.end();
            QCOMPARE(painted, expected);
        }
    }
}

// A canvas does not start at its window's first pixel.
void TestThicknessGraph::cloudInACornerOfTheWindow()
{
    Random random;
    const Cloud cloud = randomCloud(random, 3000);
    ChCoord coord;
    setCanvas(coord, 200, 150);
    for (const QPointF offset : {QPointF(37, 21), QPointF(37.5, 21.25)}) {
        QImage expected = blank(300, 200, 1);
        QImage painted = blank(300, 200, 1);
        DotCloud dots;
        {
            QPainter painter(&expected);
            painter.translate(offset);
            painter.setClipRect(0, 0, 200, 150);
            drawEachRecord(painter, coord, cloud);
            QPainter other(&painted);
            other.translate(offset);
            other.setClipRect(0, 0, 200, 150);
            dots.draw(other, coord, cloud.points(), v1, v2);
        }
        QCOMPARE(painted, expected);
    }
}

void TestThicknessGraph::pictureIsKept()
{
    ChCoord coord;
    setCanvas(coord, 400, 300);
    Cloud cloud;
    cloud.add(0.5, 0.5);
    DotCloud dots;
    const auto picture = [&](std::uint64_t revision) {
        QImage image = blank(400, 300, 1);
        QPainter painter(&image);
        dots.draw(painter, coord, cloud.points(revision), v1, v2);
        painter.end();
        return image;
    };
    const QImage first = picture(1);
    cloud.a[0] = 0.1; // without a new revision nothing looks at the points
    QCOMPARE(picture(1), first);
    QVERIFY(picture(2) != first);
    cloud.a[0] = 0.5;
    QCOMPARE(picture(3), first);
}

void TestThicknessGraph::pictureFollowsChanges()
{
    Random random;
    const Cloud cloud = randomCloud(random, 500);
    ChCoord coord;
    DotCloud dots;
    const auto compare = [&](double valence1, double valence2) {
        QImage kept = blank(400, 300, 1);
        QImage fresh = blank(400, 300, 1);
        QPainter onKept(&kept);
        dots.draw(onKept, coord, cloud.points(), valence1, valence2);
        QPainter onFresh(&fresh);
        DotCloud().draw(onFresh, coord, cloud.points(), valence1, valence2);
        onKept.end();
        onFresh.end();
        QCOMPARE(kept, fresh);
        QVERIFY(canvas::count(kept, Qt::black) > 0);
    };
    setCanvas(coord, 400, 300);
    compare(2, 3);
    compare(2, 3.25);
    compare(2.25, 3.25);
    coord.setXRange(1.6, 3.5);
    compare(2.25, 3.25);
    coord.setXRange(1.6, 3.6);
    compare(2.25, 3.25);
    coord.setYRange(-0.3, 1.2);
    compare(2.25, 3.25);
    coord.setYRange(-0.3, 1.3);
    compare(2.25, 3.25);
    coord.setWindow(0, 250, 400, 0);
    coord.applyMargins();
    compare(2.25, 3.25);
    coord.setWindow(0, 250, 380, 0);
    coord.applyMargins();
    compare(2.25, 3.25);
    coord.setPlotArea(50, 240, 300, 20);
    compare(2.25, 3.25);
    dots.clear();
    compare(2.25, 3.25);
}

void TestThicknessGraph::emptyCanvas()
{
    Cloud cloud;
    cloud.add(0.5, 0.5);
    ChCoord coord;
    setCanvas(coord, 0, 0);
    QImage image = blank(10, 10, 1);
    QPainter painter(&image);
    painter.setClipRect(0, 0, 0, 0);
    DotCloud().draw(painter, coord, cloud.points(), v1, v2);
    painter.end();
    QCOMPARE(image, blank(10, 10, 1));
}

void TestThicknessGraph::noPointsLeaveItWhite()
{
    ThicknessGraph graph;
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        graph.draw(painter, frame, {}, {v1, v2}, {1.5, 3.5}, {-0.2, 1.2});
    });
    QVERIFY(panel.isWhite());
    QCOMPARE(panel.coord().valid, 0);
    QVERIFY(!panel.DispA->rangeSet);
}

void TestThicknessGraph::rangeGridAndDots()
{
    Cloud cloud;
    cloud.add(0.73, 0.45);
    ThicknessGraph graph;
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        graph.draw(painter, frame, cloud.points(), {v1, v2}, {1.5, 3.5}, {-0.2, 1.2});
    });
    const QImage image = panel.picture();
    QCOMPARE(panel.coord().rx0, 1.5);
    QCOMPARE(panel.coord().ry0, -0.2);
    QCOMPARE(panel.coord().rx1, 3.5);
    QCOMPARE(panel.coord().ry1, 1.2);
    QCOMPARE(canvas::columnsOf(image, gridColor, 20, 41, 379).size(), 11);
    // Tenths of the thickness, 255 pixels for 1.4: 0 at 233.6, 1 at 51.4.
    QCOMPARE(canvas::rowsOf(image, gridColor, 50, 16, 269),
             (QVector<int>{51, 69, 87, 106, 124, 142, 160, 178, 197, 215, 233}));
    // 2.27 is 170.9, 0.45 is 151.6.
    QImage expected(3, 3, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.drawEllipse(QRect(QPoint(0, 0), QPoint(1, 1)));
    painter.end();
    QCOMPARE(image.copy(169, 150, 3, 3), expected);
    QVERIFY(canvas::count(expected, Qt::black) > 0);
}

void TestThicknessGraph::pointsBesideTheRange()
{
    // Right of the histogram's range: drawn, but under the margin. A move brings it into view.
    Cloud cloud;
    cloud.add(-1.0, 0.5); // valence 4
    ThicknessGraph graph;
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        graph.draw(painter, frame, cloud.points(), {v1, v2}, {1.5, 3.5}, {-0.2, 1.2});
    });
    QCOMPARE(canvas::count(panel.plot(), Qt::black), 0);
    canvas::drag(panel.DispA, {QPointF(300, 200), QPointF(200, 200)}, Qt::ShiftModifier);
    QVERIFY(canvas::count(panel.plot(), Qt::black) > 0);
}

QTEST_MAIN(TestThicknessGraph)
#include "tst_ThicknessGraph.moc"

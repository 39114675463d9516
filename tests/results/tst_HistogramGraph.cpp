#include "results/HistogramBars.h"
#include "results/HistogramGraph.h"
#include "tests/support/GraphPanel.h"
#include "tests/support/Random.h"

#include <QPainter>
#include <QtTest>

#include <limits>

namespace
{

const QColor gridColor(200, 200, 255);
const QColor valenceBar(255, 200, 200);
const QColor thicknessBar(200, 255, 200);

HistogramCounts histogram(double first, double last, int boxes, const std::vector<int>& counts,
                          int under, int over)
{
    HistogramCounts h;
    h.reset({first, last, static_cast<double>(boxes), false});
    for (std::size_t i = 0; i < counts.size(); ++i) {
        h.counts[i] = counts[i];
        h.maxCount = qMax(h.maxCount, counts[i]);
    }
    h.under = under;
    h.over = over;
    return h;
}

// Four bins of width 1 from 0 to 4.
HistogramCounts fourBins()
{
    return histogram(0.5, 3.5, 4, {10, 0, 40, 20}, 5, 15);
}

void setCanvas(ChCoord& coord, double x0, double y0, double x1, double y1)
{
    coord.setWindow(0, 300, 400, 0);
    coord.applyMargins();
    coord.setRange(x0, y0, x1, y1);
}

// The bars as they are said, painted one after another.
QImage literalBars(const ChCoord& coord, const HistogramCounts& h)
{
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    const int n = static_cast<int>(h.counts.size());
    for (int i = -1; i <= n; ++i) {
        const int c = i < 0 ? h.under : i < n ? h.counts[static_cast<std::size_t>(i)] : h.over;
        const double xl = coord.xToScreen(i * h.width + h.from);
        const double xr = coord.xToScreen((i + 1) * h.width + h.from);
        const double y0 = coord.yToScreen(0);
        const double yc = coord.yToScreen(c);
        painter.fillRect(int(xl + 1), int(y0), int(xr - xl - 1), int(yc - y0), valenceBar);
    }
    return image;
}

QImage paintedBars(const ChCoord& coord, const HistogramCounts& h)
{
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (const QRect& bar : barRects(coord, h))
        painter.fillRect(bar, valenceBar);
    return image;
}

} // namespace

class TestHistogramGraph : public QObject
{
    Q_OBJECT

private slots:
    void barsRiseFromZero();
    void barsLikeTheDescription();
    void barsWithoutAPixel();
    void manyBinsOnMirroredAxis();
    void barWiderThanTheIntegers();
    void absurdNumbers();
    void valenceGraph();
    void thicknessGraph();
    void gridOfCounts();
    void noBinsLeaveItWhite();
    void nothingCounted();
    void zoomSurvives();
};

void TestHistogramGraph::barsRiseFromZero()
{
    ChCoord coord;
    setCanvas(coord, -1.8, -4, 5, 47); // a bin is 50 pixels wide, a count 5 pixels high
    // Zero stands at y 250, the first bin's left edge at x 130. The columns left free are the
    // bars' own first ones.
    const std::vector<QRect> expected{QRect(81, 225, 49, 25), QRect(131, 200, 49, 50),
                                      QRect(231, 50, 49, 200), QRect(281, 150, 49, 100),
                                      QRect(331, 175, 49, 75)};
    QCOMPARE(barRects(coord, fourBins()), expected);
}

void TestHistogramGraph::barsLikeTheDescription()
{
    Random random;
    for (int round = 0; round < 400; ++round) {
        const int boxes = 2 + random.below(60); // one alone has no width
        std::vector<int> counts;
        for (int i = 0; i < boxes; ++i)
            counts.push_back(random.below(50));
        const double first = random.uniform(-3, 3);
        const HistogramCounts h = histogram(first, first + random.uniform(-4, 4), boxes, counts,
                                            random.below(90), random.below(90));
        ChCoord coord;
        const double from = first + random.uniform(-2, 2);
        setCanvas(coord, from, random.uniform(-60, 10), from + random.uniform(-5, 5),
                  random.uniform(10, 60));
        QCOMPARE(paintedBars(coord, h), literalBars(coord, h));
    }
}

void TestHistogramGraph::barsWithoutAPixel()
{
    ChCoord coord;
    setCanvas(coord, 0, -4, 340, 47); // a bin is one pixel wide and has none left
    QVERIFY(barRects(coord, fourBins()).empty());
    setCanvas(coord, 0, -4, 170, 47); // two pixels: one each
    QCOMPARE(barRects(coord, fourBins()).front().width(), 1);
}

void TestHistogramGraph::manyBinsOnMirroredAxis()
{
    // Mirrored, bars reach to the left and none is too narrow.
    std::vector<int> counts(200000);
    for (std::size_t i = 0; i < counts.size(); ++i)
        counts[i] = static_cast<int>(i % 97);
    const HistogramCounts h = histogram(0, 4, 200000, counts, 0, 0);
    ChCoord coord;
    setCanvas(coord, 4, -9, 0, 105);
    const std::vector<QRect> bars = barRects(coord, h);
    QVERIFY2(bars.size() <= 2 * 400, qPrintable(QString::number(bars.size())));
    QCOMPARE(paintedBars(coord, h), literalBars(coord, h));
}

void TestHistogramGraph::barWiderThanTheIntegers()
{
    const HistogramCounts h = histogram(0.5, 3.5, 4, {10, 10, 10, 10}, 0, 0);
    ChCoord coord;
    setCanvas(coord, 1.5, -1, 1.5 + 1e-9,
              20); // a bin of 340,000,000,000 pixels
    QCOMPARE(barRects(coord, h), (std::vector<QRect>{{0, 136, 400, 121}}));
    setCanvas(coord, 1.5 + 1e-9, -1, 1.5, 20);
    QCOMPARE(barRects(coord, h), (std::vector<QRect>{{0, 136, 400, 121}}));
}

void TestHistogramGraph::absurdNumbers()
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const int most = std::numeric_limits<int>::max();
    for (const double v : {0.0, 1e300, -1e300, infinite, notANumber}) {
        HistogramCounts h = histogram(v, -v, 3, {most, 0, 1}, most, most);
        h.maxCount = most;
        for (const double range : {0.0, 1e-300, 1e300, infinite, notANumber}) {
            ChCoord coord;
            setCanvas(coord, -range, -range, range, range);
            QVERIFY(barRects(coord, h).size() <= 5);
        }
    }
    for (const double v : {1e300, -1e300}) { // starts far off and is as wide
        HistogramCounts h;
        h.counts = {1};
        h.from = v;
        h.width = v;
        ChCoord coord;
        setCanvas(coord, 0, -1, 1, 2);
        QVERIFY(barRects(coord, h).empty());
    }
    HistogramCounts single = histogram(1, 1, 1, {3}, 0, 0); // a bin of infinite or no width
    ChCoord coord;
    setCanvas(coord, 0, -1, 2, 4);
    QVERIFY(barRects(coord, single).size() <= 3);
}

void TestHistogramGraph::valenceGraph()
{
    const HistogramCounts h = histogram(1.5, 3.5, 41, std::vector<int>(41, 7), 3, 4);
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        drawValenceHistogram(painter, frame, h, {1.5, 3.5}, {2, 3});
    });
    const QImage image = panel.picture();
    QCOMPARE(panel.coord().valid, 1);
    QCOMPARE(panel.coord().rx0, 1.5);
    QCOMPARE(panel.coord().rx1, 3.5);
    QCOMPARE(panel.coord().ry0, -0.7);
    QCOMPARE(panel.coord().ry1, 7.7);
    // A tenth of a valence is 17 pixels: lines from 125 to 295. Row 20 lies above all bars.
    QVector<int> lines;
    for (int i = 0; i <= 10; ++i)
        lines << 125 + 17 * i;
    const QVector<int> found = canvas::columnsOf(image, gridColor, 20, 41, 379);
    QCOMPARE(found.size(), 11);
    for (int i = 0; i < 11; ++i)
        QVERIFY(qAbs(found[i] - lines[i]) <= 1); // rounding of the sums
    // Inside a bar, below the zero line, margins.
    QCOMPARE(QColor(image.pixel(209, 200)), valenceBar);
    QCOMPARE(QColor(image.pixel(209, 260)), QColor(Qt::white));
    QCOMPARE(QColor(image.pixel(20, 140)), QColor(Qt::white));
    QCOMPARE(QColor(image.pixel(40, 140)), QColor(150, 150, 150));
    QCOMPARE(canvas::count(image, thicknessBar), 0);
}

void TestHistogramGraph::thicknessGraph()
{
    const HistogramCounts h = histogram(0.25, 0.75, 3, {8, 4, 2}, 0, 0);
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        drawThicknessHistogram(painter, frame, h, {-0.2, 1.2});
    });
    const QImage image = panel.picture();
    // 340 pixels for 1.4 units: zero at 88.6, a tenth is 24.3 pixels.
    const QVector<int> found = canvas::columnsOf(image, gridColor, 20, 41, 379);
    QCOMPARE(found, (QVector<int>{88, 112, 137, 161, 185, 210, 234, 258, 282, 307, 331}));
    // Bins from 0.125, a quarter wide: the first from 118.9 to 179.6.
    QCOMPARE(QColor(image.pixel(118, 200)), QColor(Qt::white));
    QCOMPARE(QColor(image.pixel(119, 200)), thicknessBar);
    QCOMPARE(QColor(image.pixel(177, 200)), thicknessBar);
    QCOMPARE(canvas::count(image, valenceBar), 0);
}

void TestHistogramGraph::gridOfCounts()
{
    const HistogramCounts h = histogram(0.5, 3.5, 4, {10, 0, 25, 20}, 0, 0);
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        drawThicknessHistogram(painter, frame, h, {-10, 10});
    });
    // From -2.5 to 27.5, 8.5 pixels a count: 0, 10 and 20 but not 30. Column 50 has no bar.
    QCOMPARE(canvas::rowsOf(panel.picture(), gridColor, 50, 16, 269), (QVector<int>{78, 163, 248}));
}

void TestHistogramGraph::noBinsLeaveItWhite()
{
    for (const int boxes : {0, -3}) {
        const HistogramCounts h = histogram(1.5, 3.5, boxes, {}, 4, 5);
        GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
            drawValenceHistogram(painter, frame, h, {1.5, 3.5}, {2, 3});
        });
        QVERIFY(panel.isWhite());
        QCOMPARE(panel.coord().valid, 0);
        QVERIFY(!panel.DispA->rangeSet);
    }
}

void TestHistogramGraph::nothingCounted()
{
    const HistogramCounts h = histogram(1.5, 3.5, 41, {}, 0, 0);
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        drawValenceHistogram(painter, frame, h, {1.5, 3.5}, {2, 3});
    });
    const QImage image = panel.picture();
    QCOMPARE(canvas::count(image, valenceBar), 0);
    QCOMPARE(QColor(image.pixel(40, 140)), QColor(150, 150, 150)); // framed all the same
    QCOMPARE(canvas::columnsOf(image, gridColor, 140, 41, 379).size(), 11);
}

void TestHistogramGraph::zoomSurvives()
{
    HistogramCounts h = fourBins();
    GraphPanel panel([&](QPainter& painter, GraphFrame& frame) {
        drawThicknessHistogram(painter, frame, h, {0, 4});
    });
    panel.picture();
    canvas::wheel(panel.DispA, QPointF(200, 150), QPoint(0, 120));
    const double zoomed = panel.coord().rx1 - panel.coord().rx0;
    QVERIFY(zoomed < 4);
    panel.picture();
    QCOMPARE(panel.coord().rx1 - panel.coord().rx0, zoomed);
    canvas::doubleClick(panel.DispA, QPointF(200, 150));
    panel.picture();
    QCOMPARE(panel.coord().rx1, 4.0);
    QCOMPARE(panel.coord().ry1, 44.0);
}

QTEST_MAIN(TestHistogramGraph)
#include "tst_HistogramGraph.moc"

#include "results/HistogramBars.h"
#include "tests/support/PlainBars.h"
#include "tests/support/Random.h"

#include <QImage>
#include <QtTest>

#include <array>
#include <limits>

namespace
{

constexpr int width = 400;
constexpr int height = 300;
const QColor color(255, 200, 200);

void setCanvas(ChCoord& coord, double x0, double y0, double x1, double y1)
{
    coord.setWindow(0, height, width, 0);
    coord.applyMargins();
    coord.setRange(x0, y0, x1, y1);
}

QImage plainPicture(const ChCoord& coord, const HistogramCounts& h)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    plain::drawBars(coord, h, painter, color);
    return image;
}

QImage picture(const ChCoord& coord, const HistogramCounts& h)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (const QRect& bar : barRects(coord, h))
        painter.fillRect(bar, color);
    return image;
}

int colored(const QImage& image)
{
    int found = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            found += image.pixel(x, y) == color.rgb();
    return found;
}

HistogramCounts histogram(double first, double last, int boxes)
{
    HistogramCounts h;
    h.reset({first, last, static_cast<double>(boxes), false});
    return h;
}

/// Counts of all kinds: none, some, few high ones between many low ones.
void fillAnyhow(HistogramCounts& h, Random& random)
{
    const int kind = random.below(3);
    for (int& count : h.counts) {
        count = kind == 0 ? 0 : kind == 1 ? random.below(50) : random.below(2000) / 1990 * 45;
        h.maxCount = std::max(h.maxCount, count);
    }
    h.under = random.below(60);
    h.over = random.below(60);
}

} // namespace

class tst_HistogramBars : public QObject
{
    Q_OBJECT

private slots:
    void manyBinsAsDrawnOneByOne_data();
    void manyBinsAsDrawnOneByOne();
    void binsThatRoundingLetsFallTogether();
    void highestOfTheBinsInAColumn();
    void endsThatAreNoNumbers();

private:
    Random m_random;
};

void tst_HistogramBars::manyBinsAsDrawnOneByOne_data()
{
    QTest::addColumn<int>("boxes");
    QTest::addColumn<double>("zoom"); // of the range that is seen, against that of the bins
    for (const int boxes : {2, 41, 399, 5000, 100000})
        for (const double zoom : {1e-7, 1e-3, 0.1, 1.0, 3.0, 200.0, 1e9})
            QTest::addRow("%d bins, range %g", boxes, zoom) << boxes << zoom;
}

void tst_HistogramBars::manyBinsAsDrawnOneByOne()
{
    QFETCH(int, boxes);
    QFETCH(double, zoom);
    for (int round = 0; round < 12; ++round) {
        const double first = m_random.uniform(-3, 3);
        const double extent = m_random.uniform(0.1, 4) * (m_random.below(2) == 0 ? 1 : -1);
        HistogramCounts h = histogram(first, first + extent, boxes);
        fillAnyhow(h, m_random);
        ChCoord coord;
        const double seen = zoom * std::fabs(extent);
        const double from = first + m_random.uniform(-0.2, 1.0) * extent;
        const bool mirrored = m_random.below(2) == 0;
        setCanvas(coord, mirrored ? from + seen : from, m_random.uniform(-60, 10),
                  mirrored ? from : from + seen, m_random.uniform(12, 60));
        QCOMPARE(picture(coord, h), plainPicture(coord, h));
    }
}

void tst_HistogramBars::binsThatRoundingLetsFallTogether()
{
    // So far from zero that neighbouring bins begin at the same number, or every second one does.
    for (const double extent : {0.0, 1e-12, 1e-11, 3e-10, 1e-9, -1e-11, -1e-9}) {
        for (const double around : {1.0, 1e5, -1e5}) {
            HistogramCounts h = histogram(around, around + extent, 20000);
            for (std::size_t i = 0; i < h.counts.size(); ++i)
                h.counts[i] = static_cast<int>(i % 37);
            h.maxCount = 36;
            for (const double seen : {1e-13, 1e-11, 1e-9, 1.0, 1e6, -1e-9, -1.0}) {
                ChCoord coord;
                setCanvas(coord, around - seen / 3, -4, around + seen, 40);
                QCOMPARE(picture(coord, h), plainPicture(coord, h));
            }
        }
    }
}

void tst_HistogramBars::highestOfTheBinsInAColumn()
{
    // Mirrored, each bin has the pixel at the left of its right end. 340 columns of 1000 bins.
    HistogramCounts h = histogram(0.0, 340.0, 340001);
    h.counts[170400] = 20; // from 209.6 back to 209.599 on the canvas
    h.counts[170410] = 40;
    h.counts[170420] = 10;
    h.maxCount = 40;
    ChCoord coord;
    setCanvas(coord, 340, 0, 0, 51); // a count is 5 pixels high
    const std::vector<QRect> bars = barRects(coord, h);
    QCOMPARE(bars.size(), std::size_t{1});
    QCOMPARE(bars.front().height(), 200);
    QCOMPARE(bars.front().width(), 1);
    QCOMPARE(bars.front().left(), 209);
    QCOMPARE(picture(coord, h), plainPicture(coord, h));
    QCOMPARE(colored(picture(coord, h)), 200);
}

void tst_HistogramBars::endsThatAreNoNumbers()
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double from : {0.0, 1e300, infinite, -infinite, notANumber}) {
        for (const double step : {0.0, 1e-320, 1e300, -1e300, infinite, notANumber}) {
            HistogramCounts h;
            h.counts.assign(1000, 3);
            h.maxCount = 3;
            h.from = from;
            h.width = step;
            for (const double range : {1.0, 1e-320, 1e300, infinite, notANumber, 0.0}) {
                ChCoord coord;
                setCanvas(coord, -range, -1, range, 4);
                QCOMPARE(picture(coord, h), plainPicture(coord, h));
                setCanvas(coord, 0, -range, 1, range);
                QCOMPARE(picture(coord, h), plainPicture(coord, h));
            }
        }
    }
}

QTEST_MAIN(tst_HistogramBars)
#include "tst_HistogramBars.moc"

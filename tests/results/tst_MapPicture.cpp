#include "display/FramePainter.h"
#include "results/MapPicture.h"
#include "results/RoundSteps.h"
#include "tests/support/SmallMap.h"

#include <QPainter>
#include <QtTest>

#include <cmath>

namespace
{

const MapRanges ranges{{2.0, 3.0}, {0.0, 1.0}};

MapCaptions captions()
{
    MapCaptions words;
    words.title = QStringLiteral("Area 1");
    words.valence = QStringLiteral("Valence");
    words.thickness = QStringLiteral("t/ts");
    words.missing = QStringLiteral("no result: %1");
    words.below = QStringLiteral("below %1: %2");
    words.above = QStringLiteral("above %1: %2");
    words.thinner = QStringLiteral("t/ts below %1, palest: %2");
    words.thicker = QStringLiteral("t/ts above %1, fullest: %2");
    words.hidden = QStringLiteral("covered: %1");
    words.reduced = QStringLiteral("one of %1 x %2 pixels");
    words.stretched = QStringLiteral("axes of different scales");
    words.first = QStringLiteral("First axis");
    words.second = QStringLiteral("Second axis");
    words.column = QStringLiteral("Column");
    words.row = QStringLiteral("Row");
    return words;
}

struct Painted {
    QImage image;
    GraphFrame frame;
};

void paint(MapPicture& picture, Painted& to, QSize size)
{
    to.image = QImage(size, QImage::Format_RGB32);
    QPainter painter(&to.image);
    to.frame.begin(size.width(), size.height());
    picture.draw(painter, to.frame, captions());
}

MapPicture pictureOf(const SmallMap& map, MapQuantity quantity = MapQuantity::Valence)
{
    MapPicture picture;
    picture.setMap(map.pixels(), std::make_shared<const MapGrid>(map.pixels()), quantity, ranges);
    return picture;
}

QRgb at(const Painted& painted, double x, double y)
{
    return painted.image.pixel(static_cast<int>(painted.frame.coord.xToScreen(x)),
                               static_cast<int>(painted.frame.coord.yToScreen(y)));
}

constexpr QRgb missing = 0xffc8c8c8;
constexpr QRgb middle = 0xff21918c;
constexpr QRgb darkest = 0xff440154;
constexpr QRgb brightest = 0xfffde725;
constexpr QRgb white = 0xffffffff;

int count(const QImage& image, QRgb colour)
{
    int found = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            found += image.pixel(x, y) == colour ? 1 : 0;
    return found;
}

} // namespace

class TestMapPicture : public QObject
{
    Q_OBJECT

private slots:
    void pixelsLieAtTheirPositions();
    void pixelsAreSquaresOfWholePixels_data();
    void pixelsAreSquaresOfWholePixels();
    void bothAxesHaveOneScale();
    void aLineOfPixelsIsWideEnoughToSee();
    void zoomedViewKeepsItsScaleWhenTheCanvasChanges();
    void aMissingPixelIsSeenInALargeMap();
    void dotsOfALargeMapAreAFairSample();
    void countsStandInTheLegend();
    void nothingToPaintLeavesTheCanvasWhite();
    void tinyCanvasIsPainted();
    void roundNumbers_data();
    void roundNumbers();
    void marksAreRoundAndFew_data();
    void marksAreRoundAndFew();
};

void TestMapPicture::pixelsLieAtTheirPositions()
{
    SmallMap map(3, 2, [](int x, int y) { return QPointF(100.0 + 0.1 * x, -0.1 * y); });
    map.set(0, 0, 2.0);
    map.set(1, 0, 2.5);
    map.set(2, 0, 3.0);
    map.set(0, 1, std::nan(""));
    map.set(1, 1, 3.5);
    map.set(2, 1, 1.5);
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, picture.goodSize(QFont(), captions()));
    QCOMPARE(at(painted, 100.0, 0.0), darkest);
    QCOMPARE(at(painted, 100.1, 0.0), middle);
    QCOMPARE(at(painted, 100.2, 0.0), brightest);
    QCOMPARE(at(painted, 100.0, -0.1), missing);
    QCOMPARE(at(painted, 100.1, -0.1), qRgb(255, 59, 31));
    QCOMPARE(at(painted, 100.2, -0.1), qRgb(90, 200, 255));
}

void TestMapPicture::pixelsAreSquaresOfWholePixels_data()
{
    QTest::addColumn<QSize>("cells");
    QTest::addColumn<int>("side");
    QTest::newRow("1 x 1") << QSize(1, 1) << 256;
    QTest::newRow("24 x 16") << QSize(24, 16) << 21;
    QTest::newRow("16 x 24") << QSize(16, 24) << 21;
    QTest::newRow("7 x 1") << QSize(7, 1) << 73;
    QTest::newRow("256 x 256") << QSize(256, 256) << 2;
    QTest::newRow("600 x 600") << QSize(600, 600) << 1;
}

// One pixel of another colour in the middle of the map.
void TestMapPicture::pixelsAreSquaresOfWholePixels()
{
    QFETCH(QSize, cells);
    QFETCH(int, side);
    SmallMap map(cells.width(), cells.height());
    for (int y = 0; y < cells.height(); ++y)
        for (int x = 0; x < cells.width(); ++x)
            map.set(x, y, 2.0);
    map.set(cells.width() / 2, cells.height() / 2, std::nan(""));
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, picture.goodSize(QFont(), captions()));
    const ChCoord& coord = painted.frame.coord;
    const QRect plot(QPoint(static_cast<int>(coord.px0), static_cast<int>(coord.py1)),
                     QPoint(static_cast<int>(coord.px1) - 1, static_cast<int>(coord.py0) - 1));
    QCOMPARE(count(painted.image.copy(plot), missing), side * side);
}

void TestMapPicture::bothAxesHaveOneScale()
{
    const SmallMap map(30, 10, [](int x, int y) { return QPointF(2.0 * x, 3.0 * y); });
    MapPicture picture = pictureOf(map);
    for (const QSize size : {QSize(700, 300), QSize(300, 700), QSize(500, 500)}) {
        Painted painted;
        paint(picture, painted, size);
        const ChCoord& coord = painted.frame.coord;
        QVERIFY(std::fabs(coord.dxToScreen(1.0) + coord.dyToScreen(1.0)) < 1e-9);
        QVERIFY(coord.rx0 <= -1.0 + 1e-9 && coord.rx1 >= 59.0 - 1e-9);
        QVERIFY(coord.ry0 <= -1.5 + 1e-9 && coord.ry1 >= 28.5 - 1e-9);
    }
}

void TestMapPicture::aLineOfPixelsIsWideEnoughToSee()
{
    SmallMap map(1000, 1);
    for (int x = 0; x < 1000; ++x)
        map.set(x, 0, 2.5);
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, picture.goodSize(QFont(), captions()));
    QVERIFY(std::fabs(painted.frame.coord.dyToScreen(1.0) + 24.0) < 1e-9);
    QVERIFY(std::fabs(painted.frame.coord.dxToScreen(1.0) - 1.0) < 1e-9);
}

void TestMapPicture::zoomedViewKeepsItsScaleWhenTheCanvasChanges()
{
    const SmallMap map(20, 20);
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, {600, 500});
    painted.frame.coord.setRange(3.0, 4.0, 9.0, 8.0);
    paint(picture, painted, {600, 500});
    const double from = painted.frame.coord.rx0;
    const double to = painted.frame.coord.rx1;
    QCOMPARE(painted.frame.coord.ry0, 4.0);
    QCOMPARE(painted.frame.coord.ry1, 8.0);
    QCOMPARE((from + to) / 2.0, 6.0);
    paint(picture, painted, {900, 500});
    QVERIFY(painted.frame.coord.rx1 > to);
    paint(picture, painted, {600, 500});
    QVERIFY(std::fabs(painted.frame.coord.rx0 - from) < 1e-9);
    QVERIFY(std::fabs(painted.frame.coord.rx1 - to) < 1e-9);
}

void TestMapPicture::aMissingPixelIsSeenInALargeMap()
{
    SmallMap map(2048, 2048);
    for (int y = 0; y < 2048; ++y)
        for (int x = 0; x < 2048; ++x)
            map.set(x, y, 2.5);
    for (int i = 0; i < 16; ++i) // at every place of a block of 4 x 4
        map.set(400 + i % 4 + 8 * i, 400 + i / 4, std::nan(""));
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, picture.goodSize(QFont(), captions()));
    for (int i = 0; i < 16; ++i)
        QCOMPARE(at(painted, 400 + i % 4 + 8 * i, 400 + i / 4), missing);
    const ChCoord& coord = painted.frame.coord;
    const QRect plot(QPoint(static_cast<int>(coord.px0), static_cast<int>(coord.py1)),
                     QSize(1024, 1024));
    QCOMPARE(count(painted.image.copy(plot), missing), 16);
    QCOMPARE(count(painted.image.copy(plot), middle), 1024 * 1024 - 16);
}

// Every fourth column is above the range: so are a quarter of the dots, not all and not none.
void TestMapPicture::dotsOfALargeMapAreAFairSample()
{
    SmallMap map(3000, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3000; ++x)
            map.set(x, y, x % 4 == 0 ? 3.5 : 2.5);
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, picture.goodSize(QFont(), captions()));
    int above = 0;
    const int row = static_cast<int>(painted.frame.coord.yToScreen(1.0));
    for (int i = 0; i < 1000; ++i)
        above += painted.image.pixel(static_cast<int>(painted.frame.coord.px0) + i, row) ==
                         qRgb(255, 59, 31)
                     ? 1
                     : 0;
    QCOMPARE(above, 250);
}

void TestMapPicture::countsStandInTheLegend()
{
    SmallMap map(3, 2);
    map.set(0, 0, 1.0, 2.0);
    map.set(1, 0, 2.5, 2.0);
    map.set(2, 0, 2.5, 1.5);
    map.set(0, 1, 9.0, 1.0);
    map.set(1, 1, 9.0, 1.0);
    map.set(2, 1, std::nan(""));
    const MapPicture picture = pictureOf(map, MapQuantity::ValenceByThickness);
    QStringList texts;
    for (const LegendEntry& entry : countEntries(
             captions(), picture.counts(), MapQuantity::ValenceByThickness, {{2.25, 3}, {0, 1}}))
        texts.append(entry.text);
    QCOMPARE(texts.join(QLatin1Char('|')),
             QStringLiteral("no result: 1|below 2.25: 1|above 3: 2|t/ts below 0, palest: 0|"
                            "t/ts above 1, fullest: 2"));
}

void TestMapPicture::nothingToPaintLeavesTheCanvasWhite()
{
    MapPicture picture;
    Painted painted;
    paint(picture, painted, {300, 200});
    QCOMPARE(count(painted.image, white), 300 * 200);
    QCOMPARE(painted.frame.coord.valid, 0);
    picture.setMap({}, std::make_shared<const MapGrid>(MapPixels()), MapQuantity::Valence, ranges);
    paint(picture, painted, {300, 200});
    QCOMPARE(count(painted.image, white), 300 * 200);
}

void TestMapPicture::tinyCanvasIsPainted()
{
    const SmallMap map(5, 5);
    MapPicture picture = pictureOf(map);
    Painted painted;
    paint(picture, painted, {3, 2});
    QCOMPARE(painted.image.size(), QSize(3, 2));
    paint(picture, painted, {600, 500});
    QCOMPARE(at(painted, 2.0, 2.0), brightest); // a fraction of 0 is valence 3
}

void TestMapPicture::roundNumbers_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("upTo");
    QTest::newRow("one") << 1.0 << 1.0 << 1.0;
    QTest::newRow("between") << 1.1 << 2.0 << 1.0;
    QTest::newRow("small") << 0.03 << 0.05 << 0.02;
    QTest::newRow("large") << 7e5 << 1e6 << 5e5;
    QTest::newRow("none") << 0.0 << 1.0 << 1.0;
    QTest::newRow("not a number") << std::nan("") << 1.0 << 1.0;
}

void TestMapPicture::roundNumbers()
{
    QFETCH(double, value);
    QFETCH(double, from);
    QFETCH(double, upTo);
    QVERIFY(qFuzzyCompare(roundNumberFrom(value), from));
    QVERIFY(qFuzzyCompare(roundNumberUpTo(value), upTo));
}

void TestMapPicture::marksAreRoundAndFew_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("texts");
    QTest::newRow("units") << 0.0 << 4.0 << 5 << "0 1 2 3 4";
    QTest::newRow("halves") << 1.4 << 3.1 << 4 << "1.5 2.0 2.5 3.0";
    QTest::newRow("around 0") << -0.25 << 0.25 << 6 << "-0.2 -0.1 0.0 0.1 0.2";
    QTest::newRow("turned") << 4.0 << 0.0 << 2 << "0 2 4";
    QTest::newRow("large") << 0.0 << 3e7 << 3 << "0 1e+07 2e+07 3e+07";
    QTest::newRow("nothing") << 1.0 << 1.0 << 3 << "";
    QTest::newRow("far off") << 12345678.0 << 12345678.4 << 2 << "12345678.0 12345678.2 12345678.4";
    QTest::newRow("too fine") << 1e300 << std::nextafter(1e300, HUGE_VAL) << 3 << "";
    QTest::newRow("infinite") << -1e308 << 1e308 << 3 << "";
}

void TestMapPicture::marksAreRoundAndFew()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(int, most);
    QFETCH(QString, texts);
    QStringList found;
    for (const QString& text : axisMarks(from, to, most).texts)
        found.append(text);
    QCOMPARE(found.join(QLatin1Char(' ')), texts);
}

QTEST_MAIN(TestMapPicture)
#include "tst_MapPicture.moc"

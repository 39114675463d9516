#include "results/MapCells.h"
#include "system/Workers.h"
#include "tests/support/SmallMap.h"

#include <QColor>
#include <QtTest>

#include <cmath>

namespace
{

const MapRanges ranges{{2.0, 3.0}, {0.0, 1.0}};

/// Colours of the cells of a map.
std::vector<QRgb> colours(const SmallMap& map, MapQuantity quantity,
                          const MapRanges& within = ranges)
{
    const MapCells cells = mapCells(map.pixels(), MapGrid(map.pixels()), quantity, within);
    std::vector<QRgb> found;
    for (const MapColours::Code code : cells.codes)
        found.push_back(MapColours::table(quantity)[code]);
    return found;
}

MapCounts counts(const SmallMap& map, MapQuantity quantity, const MapRanges& within = ranges)
{
    return mapCells(map.pixels(), MapGrid(map.pixels()), quantity, within).counts;
}

// As printed in the authors' table: 255 times the parts, rounded.
const QRgb darkest = qRgb(68, 1, 84);      // 0.267004, 0.004874, 0.329415
const QRgb middle = qRgb(33, 145, 140);    // 0.127568, 0.566949, 0.550556, entry 128
const QRgb brightest = qRgb(253, 231, 37); // 0.993248, 0.906157, 0.143936

} // namespace

class TestMapCells : public QObject
{
    Q_OBJECT

private slots:
    void coloursAreThoseOfTheTable();
    void endsOfTheRangeHaveAColour();
    void whatIsOutsideHasColoursOfItsOwn();
    void strengthFadesToWhite();
    void thicknessHasTheSameColours();
    void pixelsThatWereNotMeasuredAreMissing();
    void rangeWithoutWidthShowsItsValue();
    void rangeMayBeTurnedRound();
    void ownColoursAreFarFromAllOthers();
    void brightnessRisesWithTheValue();
    void threadsChangeNothing_data();
    void threadsChangeNothing();
};

void TestMapCells::coloursAreThoseOfTheTable()
{
    SmallMap map(3, 1);
    map.set(0, 0, 2.0);
    map.set(1, 0, 2.5);
    map.set(2, 0, 3.0);
    QCOMPARE(colours(map, MapQuantity::Valence), std::vector<QRgb>({darkest, middle, brightest}));
}

void TestMapCells::endsOfTheRangeHaveAColour()
{
    QCOMPARE(stepOf(2.0, {2.0, 3.0}, 256), 0);
    QCOMPARE(stepOf(2.0 + 1.0 / 256.0, {2.0, 3.0}, 256), 1);
    QCOMPARE(stepOf(std::nextafter(3.0, 0.0), {2.0, 3.0}, 256), 255);
    QCOMPARE(stepOf(3.0, {2.0, 3.0}, 256), 255);
    QCOMPARE(stepOf(1e300, {2.0, 3.0}, 64), 63);
    QCOMPARE(stepOf(-HUGE_VAL, {2.0, 3.0}, 64), 0);
}

void TestMapCells::whatIsOutsideHasColoursOfItsOwn()
{
    SmallMap map(5, 1);
    map.set(0, 0, 1.75);
    map.set(1, 0, 3.25);
    map.set(2, 0, std::nan(""));
    map.set(3, 0, HUGE_VAL);
    map.set(4, 0, 3.5);
    QCOMPARE(colours(map, MapQuantity::Valence),
             std::vector<QRgb>({qRgb(90, 200, 255), qRgb(255, 59, 31), qRgb(200, 200, 200),
                                qRgb(200, 200, 200), qRgb(255, 59, 31)}));
    const MapCounts found = counts(map, MapQuantity::Valence);
    QCOMPARE(found.below, std::size_t{1});
    QCOMPARE(found.above, std::size_t{2});
    QCOMPARE(found.missing, std::size_t{2});
}

void TestMapCells::strengthFadesToWhite()
{
    SmallMap map(6, 1);
    map.set(0, 0, 3.0, 0.0);
    map.set(1, 0, 3.0, 1.0);
    map.set(2, 0, 3.0, -1.0);
    map.set(3, 0, 3.0, 7.0);
    map.set(4, 0, 3.0, std::nan(""));
    map.set(5, 0, 3.0, 21.5 / 64.0); // strength 21, a third
    // A third of the way from white to (253, 231, 37): 255 - 2/3, 255 - 24/3, 255 - 218/3.
    QCOMPARE(colours(map, MapQuantity::ValenceByThickness),
             std::vector<QRgb>({qRgb(255, 255, 255), brightest, qRgb(255, 255, 255), brightest,
                                qRgb(127, 127, 127), qRgb(254, 247, 182)}));
    const MapCounts found = counts(map, MapQuantity::ValenceByThickness);
    QCOMPARE(found.thinner, std::size_t{1});
    QCOMPARE(found.thicker, std::size_t{1});
    QCOMPARE(found.missing, std::size_t{1});
}

void TestMapCells::thicknessHasTheSameColours()
{
    SmallMap map(4, 1);
    map.set(0, 0, std::nan(""), 0.0);
    map.set(1, 0, 9.0, 1.0);
    map.set(2, 0, 2.5, std::nan(""));
    map.set(3, 0, 2.5, -0.5);
    QCOMPARE(colours(map, MapQuantity::Thickness),
             std::vector<QRgb>({darkest, brightest, qRgb(200, 200, 200), qRgb(90, 200, 255)}));
}

void TestMapCells::pixelsThatWereNotMeasuredAreMissing()
{
    SmallMap map(2, 2);
    for (int i = 0; i < 4; ++i)
        map.set(i % 2, i / 2, 2.5);
    map.stopAfter(3);
    QCOMPARE(counts(map, MapQuantity::Valence).missing, std::size_t{1});
    QCOMPARE(colours(map, MapQuantity::Valence).back(), qRgb(200, 200, 200));
}

void TestMapCells::rangeWithoutWidthShowsItsValue()
{
    SmallMap map(3, 1);
    map.set(0, 0, 2.25);
    map.set(1, 0, 2.5);
    map.set(2, 0, 2.75);
    QCOMPARE(colours(map, MapQuantity::Valence, {{2.5, 2.5}, {0.0, 1.0}}),
             std::vector<QRgb>({qRgb(90, 200, 255), middle, qRgb(255, 59, 31)}));
}

void TestMapCells::rangeMayBeTurnedRound()
{
    SmallMap map(2, 1);
    map.set(0, 0, 2.0);
    map.set(1, 0, 3.0);
    QCOMPARE(colours(map, MapQuantity::Valence, {{3.0, 2.0}, {0.0, 1.0}}),
             std::vector<QRgb>({darkest, brightest}));
}

// Colours within so much of one another could be taken for each other; they are told apart in
// each picture from all values and all strengths.
void TestMapCells::ownColoursAreFarFromAllOthers()
{
    constexpr int farApart = 30 * 30;
    const auto distance = [](QRgb a, QRgb b) {
        const int red = qRed(a) - qRed(b);
        const int green = qGreen(a) - qGreen(b);
        const int blue = qBlue(a) - qBlue(b);
        return red * red + green * green + blue * blue;
    };
    for (const MapQuantity quantity : {MapQuantity::Valence, MapQuantity::ValenceByThickness}) {
        const std::vector<QRgb>& table = MapColours::table(quantity);
        const bool fades = quantity == MapQuantity::ValenceByThickness;
        for (const MapColours::Code own :
             {MapColours::missing, MapColours::below, MapColours::above})
            for (int strength = fades ? 0 : 63; strength < 64; ++strength)
                for (int colour = 0; colour < 256; ++colour) {
                    const QRgb other = table[MapColours::code(colour, strength)];
                    QVERIFY2(distance(table[own], other) > farApart,
                             qPrintable(QColor(other).name() + QColor(table[own]).name()));
                }
    }
}

// Of light, not of the numbers of the colours; a single step may be less than rounding.
void TestMapCells::brightnessRisesWithTheValue()
{
    const auto light = [](int number) {
        const double part = number / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    double before = -1.0;
    for (std::size_t i = 0; i < viridis().size(); i += 8) {
        const QRgb colour = viridis()[i];
        const double brightness = 0.2126 * light(qRed(colour)) + 0.7152 * light(qGreen(colour)) +
                                  0.0722 * light(qBlue(colour));
        QVERIFY(brightness > before * 1.03);
        before = brightness;
    }
}

void TestMapCells::threadsChangeNothing_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    QTest::newRow("one pixel") << 1 << 1;
    QTest::newRow("a block") << 128 << 128;
    QTest::newRow("a row more") << 128 << 129;
    QTest::newRow("many blocks") << 301 << 207;
    QTest::newRow("one long row") << 40000 << 1;
    QTest::newRow("one column") << 1 << 40000;
}

/// Of pixels of every kind: the same cells and counts as of one thread.
void TestMapCells::threadsChangeNothing()
{
    QFETCH(int, columns);
    QFETCH(int, rows);
    SmallMap map(columns, rows);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            const int i = row * columns + column;
            map.set(column, row, i % 97 == 0 ? std::nan("") : 1.8 + 0.014 * (i % 101));
        }
    Workers workers(3);
    const MapGrid grid(map.pixels());
    const auto quantity = MapQuantity::ValenceByThickness;
    const MapCells alone = mapCells(map.pixels(), grid, quantity, ranges);
    const MapCells shared = mapCells(map.pixels(), grid, quantity, ranges, &workers);
    QVERIFY(shared.codes == alone.codes);
    const auto listed = [](const MapCounts& c) {
        return std::vector<std::size_t>{c.missing, c.below, c.above, c.thinner, c.thicker};
    };
    QCOMPARE(listed(shared.counts), listed(alone.counts));
    QCOMPARE(alone.counts.missing, static_cast<std::size_t>((columns * rows + 96) / 97));
    QCOMPARE(alone.codes.size(), static_cast<std::size_t>(columns * rows));
}

QTEST_APPLESS_MAIN(TestMapCells)
#include "tst_MapCells.moc"

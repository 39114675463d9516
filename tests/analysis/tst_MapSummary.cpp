#include "analysis/MapSummary.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr ReferenceValences twoAndThree{2.0, 3.0};

MapResults grid(int columns, const std::vector<double>& a, const std::vector<double>& t)
{
    MapResults results;
    results.columns = columns;
    results.rows = static_cast<int>(a.size()) / columns;
    results.a.append(a.data(), a.size());
    results.t.append(t.data(), t.size());
    return results;
}

/// A table of rows in use, each with an image of so many pixels and columns.
struct Images {
    PointRows rows;
    std::vector<MapSource> sources;

    void add(std::size_t pixels, int columns, bool use = true)
    {
        PointRow row;
        row.use = use;
        rows.push_back(row);
        MapSource source;
        source.valid = true;
        source.image.size = pixels;
        source.image.columns = columns;
        sources.push_back(source);
    }
};

HistogramCounts boxes(double first, double last, double count)
{
    HistogramCounts histogram;
    histogram.reset({first, last, count, false});
    return histogram;
}

MapSummary summary(const MapResults& results, const Images& images,
                   const HistogramCounts& histogram = boxes(1.5, 3.5, 41))
{
    const MissingPixels missing(images.rows, images.sources, results);
    return summaryOf(results, missing, twoAndThree, histogram).value();
}

bool areEqual(double value, double expected)
{
    return std::abs(value - expected) <= 4e-16 * std::abs(expected);
}

} // namespace

/// What a map comes to in a line.
class tst_MapSummary : public QObject
{
    Q_OBJECT

private slots:
    void fourPixelsByHand();
    void fewPixels();
    void missingPixels_data();
    void missingPixels();
    void whatIsNoNumberIsMissing();
    void rangeOfTheHistogram();
    void manyPixels_data();
    void manyPixels();
    void largeOffsetsKeepTheirSpread();
};

void tst_MapSummary::fourPixelsByHand()
{
    Images images;
    images.add(4, 2);
    // Valences 3, 2.5, 2.75, 2.25.
    const MapSummary found = summary(grid(2, {0.0, 0.5, 0.25, 0.75}, {1.0, 2.0, 4.0, 9.0}), images);
    QCOMPARE(found.pixels, std::size_t(4));
    QCOMPARE(found.missing, std::size_t(0));
    QCOMPARE(found.valence.mean, std::optional(2.625));
    QCOMPARE(found.valence.median, std::optional(2.625));
    // Squares 0.140625 + 0.015625 + 0.015625 + 0.140625, over 3.
    QVERIFY(areEqual(found.valence.deviation.value(), std::sqrt(0.3125 / 3.0)));
    QCOMPARE(found.thickness.mean, std::optional(4.0));
    QCOMPARE(found.thickness.median, std::optional(3.0));
    QVERIFY(areEqual(found.thickness.deviation.value(), std::sqrt(38.0 / 3.0)));
}

void tst_MapSummary::fewPixels()
{
    Images images;
    images.add(3, 3);
    const MapSummary three = summary(grid(3, {0.0, 1.0, 0.5}, {7.0, 1.0, 4.0}), images);
    QCOMPARE(three.valence.median, std::optional(2.5));
    QCOMPARE(three.thickness.median, std::optional(4.0));
    const MapSummary one = summary(grid(1, {0.25}, {7.0}), images);
    QCOMPARE(one.valence.mean, std::optional(2.75));
    QCOMPARE(one.valence.median, std::optional(2.75));
    QCOMPARE(one.valence.deviation, std::optional<double>());
    const MapSummary none = summary(MapResults(), images);
    QCOMPARE(none.pixels, std::size_t(0));
    QCOMPARE(none.valence.mean, std::optional<double>());
    QCOMPARE(none.valence.median, std::optional<double>());
    QCOMPARE(none.valence.deviation, std::optional<double>());
}

void tst_MapSummary::missingPixels_data()
{
    QTest::addColumn<int>("pixels");
    QTest::addColumn<int>("columns");
    QTest::addColumn<bool>("use");
    QTest::addColumn<int>("missing");
    QTest::newRow("all there") << 6 << 3 << true << 0;
    QTest::newRow("more than the grid has") << 9 << 3 << true << 0;
    QTest::newRow("stopped early") << 4 << 3 << true << 2;
    QTest::newRow("nothing") << 0 << 0 << true << 6;
    QTest::newRow("nothing, not in use") << 0 << 0 << false << 0;
    // Of three columns it has two.
    QTest::newRow("narrow") << 6 << 2 << true << 2;
    QTest::newRow("narrow, stopped early") << 3 << 2 << true << 3;
    // Of its own four columns in each row.
    QTest::newRow("wide") << 8 << 4 << true << 0;
    QTest::newRow("wide, stopped early") << 6 << 4 << true << 1;
}

void tst_MapSummary::missingPixels()
{
    QFETCH(int, pixels);
    QFETCH(int, columns);
    QFETCH(bool, use);
    QFETCH(int, missing);
    Images images;
    images.add(6, 3);
    images.add(static_cast<std::size_t>(pixels), columns, use);
    const std::vector<double> ones(6, 1.0);
    const MapSummary found = summary(grid(3, ones, ones), images);
    QCOMPARE(found.pixels, std::size_t(6));
    QCOMPARE(found.missing, static_cast<std::size_t>(missing));
    QCOMPARE(found.valence.mean, missing < 6 ? std::optional(2.0) : std::nullopt);
    QCOMPARE(found.below + found.above, std::size_t(0));
}

void tst_MapSummary::whatIsNoNumberIsMissing()
{
    Images images;
    images.add(5, 5);
    const MapSummary found = summary(
        grid(5, {0.5, infinity, notANumber, 0.0, 1.0}, {1.0, 1.0, 1.0, 3.0, -infinity}), images);
    QCOMPARE(found.missing, std::size_t(3));
    QCOMPARE(found.valence.mean, std::optional(2.75));
    QCOMPARE(found.thickness.mean, std::optional(2.0));
    QCOMPARE(found.below + found.above, std::size_t(0));
}

/// Three boxes around 2.25, 2.5 and 2.75: from 2.125 up to, but not including, 2.875.
void tst_MapSummary::rangeOfTheHistogram()
{
    Images images;
    images.add(6, 6);
    const MapSummary found =
        summary(grid(6, {0.125, 0.1250001, 0.875, 0.8750001, 2.0, -7.0}, std::vector<double>(6)),
                images, boxes(2.25, 2.75, 3));
    QCOMPARE(found.above, std::size_t(2)); // 2.875 and 10
    QCOMPARE(found.below, std::size_t(2)); // 2.1249999 and 1
    QCOMPARE(found.missing, std::size_t(0));
}

void tst_MapSummary::manyPixels_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {65535, 65536, 65537, 200000, 200001})
        QTest::newRow(qPrintable(QString::number(count))) << count;
}

/// Against sums in more digits and a sorted list, with any number of threads.
void tst_MapSummary::manyPixels()
{
    QFETCH(int, count);
    std::mt19937_64 random(static_cast<std::uint64_t>(count));
    std::uniform_real_distribution<double> any(-1e3, 1e3);
    std::vector<double> a;
    std::vector<double> t;
    std::vector<double> present;
    for (int i = 0; i < count; ++i) {
        t.push_back(any(random));
        a.push_back(i % 7 == 3 ? notANumber : any(random));
        if (i % 7 != 3)
            present.push_back(t.back());
    }
    long double sum = 0.0L;
    for (const double value : present)
        sum += value;
    const auto n = static_cast<long double>(present.size());
    long double squares = 0.0L;
    for (const double value : present)
        squares += (value - sum / n) * (value - sum / n);
    std::sort(present.begin(), present.end());
    const std::size_t middle = present.size() / 2;
    const double median =
        present.size() % 2 == 1 ? present[middle] : (present[middle - 1] + present[middle]) / 2.0;

    Images images;
    images.add(a.size(), 1);
    const MapResults results = grid(1, a, t);
    const MissingPixels missing(images.rows, images.sources, results);
    std::vector<MapSummary> all;
    for (const unsigned threads : {1U, 2U, 5U}) {
        Workers workers(threads);
        all.push_back(
            summaryOf(results, missing, twoAndThree, boxes(1.5, 3.5, 41), workers).value());
    }
    for (const MapSummary& found : all) {
        QCOMPARE(found.missing, a.size() - present.size());
        QCOMPARE(found.thickness.median, std::optional(median));
        QVERIFY(std::abs(*found.thickness.mean - static_cast<double>(sum / n)) < 1e-13);
        QVERIFY(areEqual(*found.thickness.deviation,
                         static_cast<double>(std::sqrt(squares / (n - 1.0L)))));
        QCOMPARE(found.valence.mean, all[0].valence.mean);
        QCOMPARE(found.valence.deviation, all[0].valence.deviation);
        QCOMPARE(found.thickness.mean, all[0].thickness.mean);
        QCOMPARE(found.thickness.deviation, all[0].thickness.deviation);
    }
}

/// Ones and threes, a thousand million above nothing: a standard deviation of 1.
void tst_MapSummary::largeOffsetsKeepTheirSpread()
{
    constexpr int count = 100000;
    std::vector<double> t;
    for (int i = 0; i < count; ++i)
        t.push_back(1e9 + (i % 2 == 0 ? 1.0 : 3.0));
    Images images;
    images.add(t.size(), count);
    const MapSummary found = summary(grid(count, std::vector<double>(count), t), images);
    QCOMPARE(found.thickness.mean, std::optional(1e9 + 2.0));
    QVERIFY(areEqual(found.thickness.deviation.value(), std::sqrt(count / (count - 1.0))));
    QCOMPARE(found.thickness.median, std::optional(1e9 + 2.0));
}

QTEST_GUILESS_MAIN(tst_MapSummary)
#include "tst_MapSummary.moc"

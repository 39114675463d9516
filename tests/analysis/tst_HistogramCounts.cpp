#include "analysis/HistogramCounts.h"
#include "tests/support/Random.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

HistogramCounts histogram(double first, double last, double boxes)
{
    HistogramCounts counts;
    counts.reset({first, last, boxes, false});
    return counts;
}

/// The rule of counting once more, in integers of 64 bits.
struct PlainCounts {
    std::vector<int> counts;
    int maxCount = 0;
    int under = 0;
    int over = 0;

    void add(double value, double from, double width)
    {
        const double quotient = (value - from) / width;
        std::int64_t i = std::numeric_limits<int>::min();
        if (std::isfinite(quotient) && std::abs(quotient) < 1e15) {
            const auto exact = static_cast<std::int64_t>(quotient);
            if (exact >= std::numeric_limits<int>::min() &&
                exact <= std::numeric_limits<int>::max())
                i = exact;
        }
        if (i < 0) {
            under += 1;
        } else if (i >= static_cast<std::int64_t>(counts.size())) {
            over += 1;
        } else {
            const auto bin = static_cast<std::size_t>(i);
            counts[bin] += 1;
            if (counts[bin] > maxCount)
                maxCount = counts[bin];
        }
    }
};

void compare(const HistogramCounts& left, const HistogramCounts& right)
{
    QCOMPARE(left.counts, right.counts);
    QCOMPARE(left.maxCount, right.maxCount);
    QCOMPARE(left.under, right.under);
    QCOMPARE(left.over, right.over);
}

} // namespace

class tst_HistogramCounts : public QObject
{
    Q_OBJECT

private slots:
    void settingsAreCentres();
    void values_data();
    void values();
    void maximumFollowsTheBins();
    void numberOfBoxes_data();
    void numberOfBoxes();
    void tooManyBoxesAreRefused();
    void quotientsBeyondIntegers_data();
    void quotientsBeyondIntegers();
    void oneBox();
    void resetStartsFromZero();
    void mergeAddsUp();
    void manyAtOnceEqualOneByOne();
};

void tst_HistogramCounts::settingsAreCentres()
{
    const HistogramCounts counts = histogram(1.5, 3.5, 41);
    QCOMPARE(counts.boxes, 41);
    QCOMPARE(counts.counts.size(), std::size_t{41});
    QCOMPARE(counts.width, 0.05);
    QCOMPARE(counts.from, 1.475);
    QCOMPARE(counts.to, 3.525);
    QCOMPARE(counts.maxCount, 0);
    const HistogramCounts thickness = histogram(-0.2, 1.2, 41);
    QCOMPARE(thickness.width, 1.4 / 40);
    QCOMPARE(thickness.from, -0.2175);
    QVERIFY(!counts.autoRange);
    HistogramCounts automatic;
    automatic.reset({0, 1, 2, true});
    QVERIFY(automatic.autoRange);
}

void tst_HistogramCounts::values_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("bin"); // -1 below, 41 above
    QTest::newRow("2.0") << 2.0 << 10;
    QTest::newRow("quotient -0.5") << 1.45 << 0;
    QTest::newRow("quotient -0.9") << 1.43 << 0;
    QTest::newRow("quotient -1.1") << 1.42 << -1;
    QTest::newRow("last bin") << 3.52 << 40;
    QTest::newRow("above") << 3.53 << 41;
    QTest::newRow("far below") << -1e300 << -1;
    QTest::newRow("far above, beyond 32 bits") << 1e300 << -1;
    QTest::newRow("infinite") << infinity << -1;
    QTest::newRow("minus infinite") << -infinity << -1;
    QTest::newRow("not a number") << notANumber << -1;
}

void tst_HistogramCounts::values()
{
    QFETCH(double, value);
    QFETCH(int, bin);
    HistogramCounts counts = histogram(1.5, 3.5, 41);
    counts.add(value);
    QCOMPARE(counts.under, bin < 0 ? 1 : 0);
    QCOMPARE(counts.over, bin > 40 ? 1 : 0);
    for (int i = 0; i < 41; ++i)
        QCOMPARE(counts.counts[static_cast<std::size_t>(i)], i == bin ? 1 : 0);
    QCOMPARE(counts.maxCount, bin >= 0 && bin <= 40 ? 1 : 0);
}

void tst_HistogramCounts::maximumFollowsTheBins()
{
    HistogramCounts counts = histogram(0, 2, 3);
    for (const double value : {0.0, 1.0, 1.2, -9.0, -9.0, -9.0, 9.0, 9.0, 9.0, 9.0})
        counts.add(value);
    QCOMPARE(counts.counts, (std::vector<int>{1, 2, 0}));
    QCOMPARE(counts.maxCount, 2);
    QCOMPARE(counts.under, 3);
    QCOMPARE(counts.over, 4);
}

void tst_HistogramCounts::numberOfBoxes_data()
{
    QTest::addColumn<double>("typed");
    QTest::addColumn<int>("boxes");
    QTest::addColumn<int>("bins");
    constexpr int lowest = std::numeric_limits<int>::min();
    QTest::newRow("cut off") << 40.9 << 40 << 40;
    QTest::newRow("zero") << 0.0 << 0 << 0;
    QTest::newRow("below one") << 0.9 << 0 << 0;
    QTest::newRow("negative") << -3.7 << -3 << 0;
    QTest::newRow("very negative") << -1e10 << lowest << 0;
    QTest::newRow("minus infinite") << -infinity << lowest << 0;
    QTest::newRow("not a number") << notANumber << lowest << 0;
    QTest::newRow("as many as there may be") << 10000000.9 << 10000000 << 10000000;
}

void tst_HistogramCounts::numberOfBoxes()
{
    QFETCH(double, typed);
    HistogramCounts counts = histogram(0, 1, 5);
    counts.add(0.5);
    QVERIFY(counts.reset({0, 1, typed, false}));
    QTEST(counts.boxes, "boxes");
    QFETCH(int, bins);
    QCOMPARE(counts.counts.size(), static_cast<std::size_t>(bins));
    QCOMPARE(counts.maxCount, 0);
}

void tst_HistogramCounts::tooManyBoxesAreRefused()
{
    HistogramCounts counts = histogram(0, 4, 5);
    counts.add(2.0);
    for (const double typed : {1e9, 10000001.0, 4e9, 1e300, infinity}) {
        QVERIFY(!(HistogramSettings{7, 8, typed, true}.acceptable()));
        QVERIFY(!counts.reset({7, 8, typed, true}));
        QCOMPARE(counts.boxes, 5);
        QCOMPARE(counts.from, -0.5);
        QCOMPARE(counts.to, 4.5);
        QVERIFY(!counts.autoRange);
        QCOMPARE(counts.counts, (std::vector<int>{0, 0, 1, 0, 0}));
    }
}

void tst_HistogramCounts::quotientsBeyondIntegers_data()
{
    QTest::addColumn<double>("value"); // width 1, first edge 0: the value is the quotient
    QTest::addColumn<int>("under");
    QTest::newRow("largest integer") << 2147483647.0 << 0;
    QTest::newRow("truncated to the largest") << 2147483647.5 << 0;
    QTest::newRow("just too large") << 2147483648.0 << 1;
    QTest::newRow("most negative") << -2147483648.0 << 1;
    QTest::newRow("just too negative") << -2147483649.0 << 1;
}

void tst_HistogramCounts::quotientsBeyondIntegers()
{
    QFETCH(double, value);
    QFETCH(int, under);
    HistogramCounts one = histogram(0.5, 1.5, 2);
    QCOMPARE(one.from, 0.0);
    one.add(value);
    QCOMPARE(one.under, under);
    QCOMPARE(one.over, 1 - under);
    HistogramCounts many = histogram(0.5, 1.5, 2);
    many.add(&value, 1);
    compare(many, one);
}

void tst_HistogramCounts::oneBox()
{
    // The width is infinite; finite values divided by it are zero, the edge is infinite too.
    HistogramCounts counts = histogram(0, 1, 1);
    QCOMPARE(counts.width, infinity);
    QCOMPARE(counts.from, -infinity);
    counts.add(0.5); // infinity / infinity
    QCOMPARE(counts.under, 1);
    HistogramCounts undefined = histogram(1, 1, 1);
    QVERIFY(std::isnan(undefined.width));
    undefined.add(1.0);
    QCOMPARE(undefined.under, 1);
}

void tst_HistogramCounts::resetStartsFromZero()
{
    HistogramCounts counts = histogram(0, 2, 3);
    counts.add(1.0);
    counts.add(-9.0);
    counts.add(9.0);
    counts.reset({0, 2, 3, false});
    QCOMPARE(counts.counts, (std::vector<int>{0, 0, 0}));
    QCOMPARE(counts.maxCount, 0);
    QCOMPARE(counts.under, 0);
    QCOMPARE(counts.over, 0);
}

void tst_HistogramCounts::mergeAddsUp()
{
    HistogramCounts left = histogram(0, 2, 3);
    HistogramCounts right = left;
    for (const double value : {0.0, 0.0, 1.0, -5.0})
        left.add(value);
    for (const double value : {1.0, 1.0, 9.0})
        right.add(value);
    left.merge(right);
    QCOMPARE(left.counts, (std::vector<int>{2, 3, 0}));
    QCOMPARE(left.maxCount, 3);
    QCOMPARE(left.under, 1);
    QCOMPARE(left.over, 1);
}

void tst_HistogramCounts::manyAtOnceEqualOneByOne()
{
    const quint64 seed = Random::seed();
    qInfo("seed %llu", seed);
    std::mt19937_64 random(seed);
    const auto uniform = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    constexpr int runs = 2000;
    constexpr std::size_t valuesInARun = 500;
    static const std::vector<double> odd = {0.0,   -0.0,       1e9,      -1e9,      1e10,  -1e10,
                                            1e300, notANumber, infinity, -infinity, 1e-320};
    for (int run = 0; run < runs; ++run) {
        const double first = uniform(-2, 2);
        const double last = run % 10 == 0 ? first : uniform(-2, 2);
        HistogramCounts many = histogram(first, last, static_cast<double>(random() % 100) - 3);
        HistogramCounts one = many;
        PlainCounts plain{one.counts};
        std::vector<double> values;
        for (std::size_t i = 0; i < valuesInARun; ++i)
            values.push_back(random() % 8 == 0 ? odd[random() % odd.size()]
                             : random() % 8 == 0
                                 ? one.from + one.width * (static_cast<double>(random() % 100) - 3)
                                 : uniform(-4, 4));
        const std::size_t part = random() % valuesInARun;
        many.add(values.data(), part);
        many.add(values.data() + part, values.size() - part);
        for (const double value : values) {
            one.add(value);
            plain.add(value, one.from, one.width);
        }
        compare(many, one);
        QCOMPARE(one.counts, plain.counts);
        QCOMPARE(one.maxCount, plain.maxCount);
        QCOMPARE(one.under, plain.under);
        QCOMPARE(one.over, plain.over);
    }
}

QTEST_GUILESS_MAIN(tst_HistogramCounts)
#include "tst_HistogramCounts.moc"

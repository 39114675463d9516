#include "analysis/BlockLogarithm.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

/// The logarithm of ratios against that of numbers with more digits.
class tst_BlockLogarithm : public QObject
{
    Q_OBJECT
private slots:
    void digits_data();
    void digits();
    void exact();
    void beyondNumbers();
    void missing();
    void sameBitsInBlocks();
};

namespace
{

constexpr double inf = std::numeric_limits<double>::infinity();

/// The bits of a number; all that are none count as one.
quint64 bitsOf(double number)
{
    quint64 bits = 0;
    if (!std::isnan(number))
        std::memcpy(&bits, &number, sizeof bits);
    return std::isnan(number) ? ~quint64{0} : bits;
}

/// How far a logarithm is off, in units of its last digit.
double errorOf(double incident, double transmitted)
{
    const long double truth = std::log(static_cast<long double>(incident / transmitted));
    const double nearest = std::abs(static_cast<double>(truth));
    const double unit = std::nextafter(nearest, inf) - nearest;
    const long double off = logarithmOfRatio(incident, transmitted) - truth;
    return std::abs(static_cast<double>(off)) / unit;
}

} // namespace

void tst_BlockLogarithm::digits_data()
{
    QTest::addColumn<double>("least"); // exponents of 2
    QTest::addColumn<double>("most");
    QTest::addColumn<double>("offset"); // to the power of 2
    QTest::newRow("all magnitudes") << -1022.0 << 1023.9 << 0.0;
    QTest::newRow("measured ones") << -2.0 << 16.0 << 0.0;
    QTest::newRow("subnormal") << -1074.0 << -1022.0 << 0.0;
    QTest::newRow("above 1") << -52.0 << -3.0 << 1.0;
    QTest::newRow("the ends of a reduction") << -52.0 << -30.0 << std::sqrt(0.5);
}

/// Numbers evenly spread over their exponents, and on both sides of a number.
void tst_BlockLogarithm::digits()
{
    QFETCH(double, least);
    QFETCH(double, most);
    QFETCH(double, offset);
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> exponents(least, most);
    double worst = 0.0;
    for (int i = 0; i < 20000; ++i) {
        const double power = std::exp2(exponents(random));
        worst = std::max(worst, errorOf(offset + power, 1.0));
        if (offset > 0.0)
            worst = std::max(worst, errorOf(offset - power, 1.0));
    }
    QVERIFY2(worst < 1.0, qPrintable(QString::number(worst)));
}

/// Powers of 2, whose logarithms are multiples of one number.
void tst_BlockLogarithm::exact()
{
    QCOMPARE(bitsOf(logarithmOfRatio(3.0, 3.0)), bitsOf(0.0));
    QCOMPARE(logarithmOfRatio(2.0, 1.0), 0.6931471805599453);
    QCOMPARE(logarithmOfRatio(1.0, 2.0), -0.6931471805599453);
    QCOMPARE(logarithmOfRatio(0x1p1023, 1.0), 709.0895657128241);
    QCOMPARE(logarithmOfRatio(0x1p-1022, 1.0), -708.3964185322641);
    QCOMPARE(logarithmOfRatio(0x1p-1074, 1.0), -744.4400719213812);
}

/// Intensities whose ratio has no number.
void tst_BlockLogarithm::beyondNumbers()
{
    QCOMPARE(logarithmOfRatio(1e300, 1e-300), inf);
    QCOMPARE(logarithmOfRatio(1e-300, 1e300), -inf);
}

void tst_BlockLogarithm::missing()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double none : {0.0, -0.0, -1.0, inf, -inf, nan})
        for (const double other : {1.0, 0.0, -1.0, inf, -inf, nan, 1e-310}) {
            QVERIFY(std::isnan(logarithmOfRatio(none, other)));
            QVERIFY(std::isnan(logarithmOfRatio(other, none)));
        }
}

/// Blocks of any length and of any neighbours have the bits of single numbers.
void tst_BlockLogarithm::sameBitsInBlocks()
{
    const std::vector<double> some{1.0,    3.0,   65535.0, 0.7,    0.0, -2.0,
                                   1e-310, 1e300, 1e-300,  5e-324, inf, std::nan("")};
    std::mt19937_64 random(7);
    for (std::size_t count = 0; count < 70; ++count)
        for (const bool ordinary : {true, false}) {
            const auto number = [&] {
                const std::uint64_t drawn = random();
                return ordinary || drawn % 3 == 0 ? 1.0 + static_cast<double>(drawn >> 48)
                                                  : some[(drawn >> 8) % some.size()];
            };
            std::vector<double> incident(count);
            std::vector<double> transmitted(count);
            std::vector<double> logarithms(count + 1, 5.0);
            std::generate(incident.begin(), incident.end(), number);
            std::generate(transmitted.begin(), transmitted.end(), number);
            logarithmsOfRatios(incident.data(), transmitted.data(), count, logarithms.data());
            for (std::size_t i = 0; i < count; ++i)
                QCOMPARE(bitsOf(logarithms[i]),
                         bitsOf(logarithmOfRatio(incident[i], transmitted[i])));
            QCOMPARE(logarithms[count], 5.0);
        }
}

QTEST_GUILESS_MAIN(tst_BlockLogarithm)
#include "tst_BlockLogarithm.moc"

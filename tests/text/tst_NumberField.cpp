#include "tests/support/Random.h"
#include "text/NumberField.h"

#include <QtTest>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace
{

QByteArray number(double value)
{
    std::array<char, longestNumber> text{};
    const char* const end = writeNumber(value, text.data());
    return {text.data(), static_cast<int>(end - text.data())};
}

QByteArray field(double value)
{
    std::array<char, fieldWidth + longestNumber> text{};
    const char* const end = writeField(value, text.data());
    return {text.data(), static_cast<int>(end - text.data())};
}

using Engine = std::mt19937_64;

/// Doubles of all kinds: any bits, everyday magnitudes, and the neighbourhood of exact ties and of
/// powers of ten, where rounding shows.
double randomDouble(Engine& random)
{
    const auto power = [&](int range) {
        return std::pow(10.0,
                        static_cast<int>(random() % static_cast<unsigned>(2 * range)) - range);
    };
    double value = 0.0;
    switch (random() % 7) {
    case 0: {
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    case 1:
        return std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())),
                          static_cast<int>(random() % 160) - 120);
    case 2: // few binary places: often an exact tie
        value = static_cast<double>(random() % 100000000) /
                static_cast<double>(std::uint64_t{1} << (random() % 30));
        break;
    case 3: // a half behind the sixth digit, exact for the smaller powers
        value = (static_cast<double>(random() % 2000000) + 0.5) * power(12);
        break;
    case 4:
        value = static_cast<double>((random() % 2000000) * 10 + 5) * power(3);
        break;
    case 5:
        value = power(40);
        break;
    default:
        value = static_cast<double>(random() % 1000000) / 1000.0;
        break;
    }
    if (random() % 3 == 0)
        value = std::nextafter(value, random() % 2 == 0 ? 0.0 : 1e300);
    return random() % 2 == 0 ? value : -value;
}

} // namespace

class tst_NumberField : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
    void equalsTheToolkit();
};

void tst_NumberField::text_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("plain");
    QTest::addColumn<QByteArray>("aligned");
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("one") << 1.0 << QByteArray("1") << QByteArray("         1");
    QTest::newRow("zero") << 0.0 << QByteArray("0") << QByteArray("         0");
    QTest::newRow("minus zero") << -0.0 << QByteArray("0") << QByteArray("         0");
    QTest::newRow("fraction") << 0.25 << QByteArray("0.25") << QByteArray("      0.25");
    QTest::newRow("negative") << -2.75 << QByteArray("-2.75") << QByteArray("     -2.75");
    QTest::newRow("trailing zeros") << 1200.0 << QByteArray("1200") << QByteArray("      1200");
    QTest::newRow("six digits") << 123456.4 << QByteArray("123456") << QByteArray("    123456");
    QTest::newRow("tie up from even")
        << 100000.5 << QByteArray("100001") << QByteArray("    100001");
    QTest::newRow("tie away from zero")
        << -524288.5 << QByteArray("-524289") << QByteArray("   -524289");
    QTest::newRow("tie of integers")
        << 1234565.0 << QByteArray("1.23457e+06") << QByteArray("1.23457e+06");
    QTest::newRow("looks like a tie, lies below")
        << 12345.65 << QByteArray("12345.6") << QByteArray("   12345.6");
    QTest::newRow("carry") << 999999.5 << QByteArray("1e+06") << QByteArray("     1e+06");
    QTest::newRow("smallest plain") << 0.0001 << QByteArray("0.0001") << QByteArray("    0.0001");
    QTest::newRow("longest plain")
        << -0.000123456789 << QByteArray("-0.000123457") << QByteArray("-0.000123457");
    QTest::newRow("small") << 1.5e-05 << QByteArray("1.5e-05") << QByteArray("   1.5e-05");
    QTest::newRow("carry to plain")
        << 9.9999999e-05 << QByteArray("0.0001") << QByteArray("    0.0001");
    QTest::newRow("large") << 1e22 << QByteArray("1e+22") << QByteArray("     1e+22");
    QTest::newRow("largest") << std::numeric_limits<double>::max() << QByteArray("1.79769e+308")
                             << QByteArray("1.79769e+308");
    QTest::newRow("smallest") << -std::numeric_limits<double>::denorm_min()
                              << QByteArray("-4.94066e-324") << QByteArray("-4.94066e-324");
    QTest::newRow("infinity") << infinity << QByteArray("inf") << QByteArray("       inf");
    QTest::newRow("minus infinity") << -infinity << QByteArray("-inf") << QByteArray("      -inf");
    QTest::newRow("not a number") << nan << QByteArray("nan") << QByteArray("       nan");
    QTest::newRow("minus not a number")
        << std::copysign(nan, -1.0) << QByteArray("nan") << QByteArray("       nan");
}

void tst_NumberField::text()
{
    QFETCH(double, value);
    QTEST(number(value), "plain");
    QTEST(field(value), "aligned");
}

void tst_NumberField::equalsTheToolkit()
{
    const quint64 seed = Random::seed();
    qInfo("seed %llu", seed);
    Engine random(seed);
    constexpr int cases = 1000000;
    for (int i = 0; i < cases; ++i) {
        const double value = randomDouble(random);
        const QByteArray toolkit = QStringLiteral("%1").arg(value).toLatin1();
        const QByteArray toolkitField = QStringLiteral("%1").arg(value, 10).toLatin1();
        if (number(value) != toolkit)
            QCOMPARE(number(value), toolkit);
        if (field(value) != toolkitField)
            QCOMPARE(field(value), toolkitField);
    }
}

QTEST_APPLESS_MAIN(tst_NumberField)
#include "tst_NumberField.moc"

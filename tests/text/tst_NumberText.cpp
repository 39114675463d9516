#include "tests/support/CommaLocale.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"
#include "text/NumberText.h"

#include <QtTest>

#include <cstring>
#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double fromToken(const QByteArray& token)
{
    return numberFromToken({token.constData(), static_cast<std::size_t>(token.size())});
}

/// A token as files may hold it: mostly numbers, in every way of writing them, some spoiled.
QByteArray token(Random& random)
{
    switch (random.below(8)) {
    case 0: { // any double, shortest text or many digits
        const std::uint64_t bits = random.bits();
        double value = 0.0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        return QByteArray::number(value, 'g', random.below(30) + 1);
    }
    case 1:
        return QByteArray::number(random.uniform(-1e5, 1e5), 'f', random.below(20));
    case 2:
        return QByteArray::number(random.uniform(-10, 10), 'e', random.below(20)).toUpper();
    case 3: { // the middle between two doubles, and a little beside it
        QByteArray text = QByteArray::number(std::ldexp(1.0, random.below(60) + 53) + 0.0, 'f', 0);
        text += '.';
        text += QByteArray(random.below(40), '0');
        return text + (random.oneIn(2) ? "1" : "");
    }
    case 4: { // digits by chance
        QByteArray text;
        for (int count = random.below(30); count >= 0; --count)
            text += "0123456789.00"[random.below(13)];
        return text + 'e' + QByteArray::number(random.below(800) - 400);
    }
    default:
        break;
    }
    static const char alphabet[] = "0123456789+-.eE, \t\v#naifINFxXpd_\xC2\xA0\xE2\x88\x92\x00";
    QByteArray text;
    for (int count = random.below(12); count > 0; --count)
        text += alphabet[random.below(static_cast<int>(sizeof alphabet))];
    return text;
}

} // namespace

class tst_NumberText : public QObject
{
    Q_OBJECT
private slots:
    void numbers_data();
    void numbers();
    void embeddedNul();
    void veryLongTokens();
    void numberToText_data();
    void numberToText();
    void sixDigitsOfANumber();
    void sixDigitsAreThoseOfTheText();
    void commaLocale();
    void tokenAgreesWithTheToolkit();
};

void tst_NumberText::numbers_data()
{
    QTest::addColumn<double>("value");
    const auto row = [](const char* text, double value) { QTest::newRow(text) << value; };
    row("0", 0);
    row("-0", -0.0);
    row("+1", 1);
    row("-1", -1);
    row("+-1", 0);
    row("-+1", 0);
    row("++1", 0);
    row("1.", 1);
    row(".5", 0.5);
    row("-.5", -0.5);
    row("+.5", 0.5);
    row(".", 0);
    row("+", 0);
    row("-", 0);
    row("1e5", 1e5);
    row("1E5", 1e5);
    row("1e+5", 1e5);
    row("1e-5", 1e-5);
    row("1.e5", 1e5);
    row("1e", 0);
    row("1e+", 0);
    row("e5", 0);
    row("1e5.5", 0);
    row("1e400", infinity);
    row("-1e400", -infinity);
    row("1e-400", 0);
    row("-1e-400", 0);
    row("4.9e-324", 4.9e-324);
    row("2.2250738585072011e-308", 2.2250738585072011e-308);
    row("1.7976931348623157e308", 1.7976931348623157e308);
    row("1.7976931348623159e308", infinity);
    row("9007199254740993", 9007199254740992.0);
    row("9007199254740993.00000000000000000001", 9007199254740994.0);
    row("0x10", 0);
    row("1,5", 0);
    row("1,500.5", 0);
    row("1_000", 0);
    row("1d5", 0);
    row("1.5.5", 0);
    row("12abc", 0);
    row("abc", 0);
    row("", 0);
    row(" ", 0);
    row(" 1.5 ", 1.5);
    row("\t1.5", 1.5);
    row("1 5", 0);
    row("inf", infinity);
    row("-inf", -infinity);
    row("+inf", infinity);
    row("INF", infinity);
    row("infinity", 0);
    row("nan", notANumber);
    row("NaN", notANumber);
    row("-nan", 0);
    row("nan(1)", 0);
    row("\xE2\x88\x92"
        "5",
        -5);
}

void tst_NumberText::numbers()
{
    QFETCH(double, value);
    const QByteArray text = QTest::currentDataTag();
    COMPARE_EXACT(numberFromText(QString::fromUtf8(text)), value);
    COMPARE_EXACT(fromToken(text), value);
}

void tst_NumberText::embeddedNul()
{
    const QByteArray token("1\0002", 3);
    COMPARE_EXACT(fromToken(token), 0.0);
    COMPARE_EXACT(fromToken(QByteArray("1\000", 2)), 0.0);
    COMPARE_EXACT(fromToken(QByteArray("\0001", 2)), 0.0);
}

void tst_NumberText::veryLongTokens()
{
    const QByteArray zeros(100000, '0');
    COMPARE_EXACT(fromToken(zeros + "1.5" + zeros), 1.5);
    COMPARE_EXACT(fromToken("0." + zeros + "1e100001"), 1.0);
    COMPARE_EXACT(fromToken("1" + zeros), infinity);
    COMPARE_EXACT(fromToken("1e" + zeros + "2"), 100.0);
    // Just above the middle between two doubles, told by the last of many digits.
    COMPARE_EXACT(fromToken("9007199254740993." + zeros + "1"), 9007199254740994.0);
}

void tst_NumberText::numberToText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const char* text) {
        QTest::addRow("%s", text) << value << QString::fromLatin1(text);
    };
    row(0.5, "0.5");
    row(1.5e-5, "1.5e-05");
    row(1234567, "1.23457e+06");
    row(123456, "123456");
    row(-0.333333333, "-0.333333");
    row(8350, "8350");
    row(1e100, "1e+100");
    row(infinity, "inf");
    row(-infinity, "-inf");
    row(notANumber, "nan");
    row(0, "0");
    QTest::newRow("minus zero") << -0.0 << QStringLiteral("0");
    QTest::newRow("negative not-a-number") << -notANumber << QStringLiteral("nan");
    // Exact ties go away from zero.
    row(100000.5, "100001");
    row(-100000.5, "-100001");
    row(1000002.5, "1e+06");
    row(1000005, "1.00001e+06");
}

void tst_NumberText::numberToText()
{
    QFETCH(double, value);
    QTEST(textFromNumber(value), "text");
    QCOMPARE(textFromNumber(value), QStringLiteral("%1").arg(value));
}

void tst_NumberText::sixDigitsOfANumber()
{
    COMPARE_EXACT(sixDigits(0.12345649), 0.123456);
    COMPARE_EXACT(sixDigits(-0.12345651), -0.123457);
    COMPARE_EXACT(sixDigits(0.999999501), 1.0);
    COMPARE_EXACT(sixDigits(8390.0), 8390.0);
    COMPARE_EXACT(sixDigits(1234567.0), 1234570.0);
    COMPARE_EXACT(sixDigits(100000.5), 100001.0); // a tie goes away from zero
    COMPARE_EXACT(sixDigits(1.0 / 3.0), 0.333333);
    COMPARE_EXACT(sixDigits(-0.0), 0.0);
    COMPARE_EXACT(sixDigits(5e-324), 4.94066e-324);
    COMPARE_EXACT(sixDigits(1.7976931348623157e308), 1.79769e308);
    COMPARE_EXACT(sixDigits(infinity), infinity);
    COMPARE_EXACT(sixDigits(-infinity), -infinity);
    COMPARE_EXACT(sixDigits(notANumber), notANumber);
}

void tst_NumberText::sixDigitsAreThoseOfTheText()
{
    Random random;
    for (int run = 0; run < 200000; ++run) {
        const double value = random.anyNumber();
        COMPARE_EXACT(sixDigits(value), QString::number(value, 'g', 6).toDouble());
    }
}

void tst_NumberText::commaLocale()
{
    const CommaLocale comma;
    QCOMPARE(QLocale().decimalPoint(), QLatin1Char(','));
    COMPARE_EXACT(fromToken("1.5"), 1.5);
    COMPARE_EXACT(fromToken("1,5"), 0.0);
    COMPARE_EXACT(fromToken(" 1.5"), 1.5);
    COMPARE_EXACT(numberFromText(QStringLiteral("8350.25")), 8350.25);
    COMPARE_EXACT(numberFromText(QStringLiteral("8350,25")), 0.0);
    COMPARE_EXACT(numberFromText(QStringLiteral("8.350")), 8.35);
    QCOMPARE(textFromNumber(8350.25), QStringLiteral("8350.25"));
    QCOMPARE(textFromNumber(1234567.0), QStringLiteral("1.23457e+06"));
}

void tst_NumberText::tokenAgreesWithTheToolkit()
{
    Random random;
    int numbers = 0;
    for (int run = 0; run < 1000000; ++run) {
        const QByteArray text = token(random);
        const double expected = QString::fromUtf8(text.constData(), text.size()).toDouble();
        numbers += expected != 0.0 ? 1 : 0;
        QVERIFY2(same(fromToken(text), expected), text.toPercentEncoding().constData());
    }
    QVERIFY(numbers > 300000);
}

QTEST_GUILESS_MAIN(tst_NumberText)
#include "tst_NumberText.moc"

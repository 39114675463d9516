#include "input/LongToken.h"
#include "input/NumberText.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <QtTest>

namespace
{

constexpr int kept = static_cast<int>(LongToken::longestKept);

/// The value of a token that arrives in pieces.
double valueOf(const QByteArray& text, int pieceSize)
{
    LongToken token;
    for (int at = 0; at < text.size(); at += pieceSize) {
        const char* const first = text.constData() + at;
        token.append(first, first + std::min(pieceSize, text.size() - at));
    }
    const std::string_view found = token.text();
    return numberFromToken(found.data(), found.data() + found.size());
}

/// Blows a number up by zeros and digits until it is too long to be kept.
QByteArray blownUp(Random& random)
{
    const QByteArray signs[] = {"", "+", "-"};
    QByteArray text = signs[random.below(3)];
    const auto digits = [&random](int count) {
        if (random.oneIn(2))
            return QByteArray(count, random.oneIn(2) ? '0' : '9');
        QByteArray made;
        for (int i = 0; i < count; ++i)
            made += static_cast<char>('0' + random.below(10));
        return made;
    };
    const int before = random.oneIn(3) ? kept : random.below(900);
    text += digits(before);
    if (random.oneIn(2))
        text += digits(random.below(40));
    if (!random.oneIn(4))
        text += '.' + digits(random.below(1000)) + digits(random.oneIn(3) ? kept : 20);
    const int exponent =
        random.below(700) - 350 - (random.oneIn(2) ? before : 0) + (random.oneIn(4) ? kept : 0);
    if (!random.oneIn(4))
        text += (random.oneIn(2) ? "e" : "E") + QByteArray::number(exponent);
    if (random.oneIn(8))
        text.insert(random.below(text.size() + 1), "+-.eEx,"[random.below(7)]);
    return text;
}

} // namespace

class tst_LongToken : public QObject
{
    Q_OBJECT
private slots:
    void shortTokenIsKept();
    void longTokens_data();
    void longTokens();
    void longTokenIsNoKeyword();
    void clearedTokenStartsAnew();
    void agreesWithTheToolkit();
};

void tst_LongToken::shortTokenIsKept()
{
    LongToken token;
    QVERIFY(token.empty());
    const QByteArray text = "Offset" + QByteArray(kept - 6, 'x');
    token.append(text.constData(), text.constData() + 6);
    QVERIFY(!token.empty());
    QVERIFY(token.text() == "Offset");
    token.append(text.constData() + 6, text.constData() + text.size());
    QVERIFY(token.text() == std::string_view(text.constData(), LongToken::longestKept));
}

void tst_LongToken::longTokens_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    const double infinity = std::numeric_limits<double>::infinity();
    const QByteArray zeros(kept, '0');
    QTest::newRow("leading zeros") << zeros + "1.5" << 1.5;
    QTest::newRow("trailing zeros") << "1.5" + zeros << 1.5;
    QTest::newRow("only zeros") << zeros << 0.0;
    QTest::newRow("minus zero") << '-' + zeros + ".0" << -0.0;
    QTest::newRow("zeros, any exponent") << zeros + "e999" << 0.0;
    QTest::newRow("nothing before the point") << "-.5" + zeros << -0.5;
    QTest::newRow("nothing after the point") << '+' + zeros + "7." << 7.0;
    QTest::newRow("small fraction, large exponent")
        << "0." + zeros + "25e" + QByteArray::number(kept + 1) << 2.5;
    QTest::newRow("large number, small exponent")
        << "25" + zeros + "e-" + QByteArray::number(kept) << 25.0;
    QTest::newRow("too large") << "1" + zeros << infinity;
    QTest::newRow("too small") << "-0." + zeros + "1" << 0.0;
    QTest::newRow("long exponent") << "1e" + zeros + "3" << 1000.0;
    QTest::newRow("long negative exponent") << "1E-" + zeros + "3" << 0.001;
    QTest::newRow("huge exponent") << "1e" + QByteArray(kept, '9') << infinity;
    QTest::newRow("far digit decides") << "9007199254740993." + zeros + "1" << 9007199254740994.0;
    QTest::newRow("tie to even") << "9007199254740993." + zeros << 9007199254740992.0;
    QTest::newRow("word") << QByteArray(kept + 1, 'x') << 0.0;
    QTest::newRow("two points") << zeros + "1.5.5" << 0.0;
    QTest::newRow("two signs") << "--1" + zeros << 0.0;
    QTest::newRow("point only") << "." + QByteArray(kept, '.') << 0.0;
    QTest::newRow("no mantissa") << "e1" + zeros << 0.0;
    QTest::newRow("no exponent") << "1" + zeros + "e" << 0.0;
    QTest::newRow("sign of the exponent only") << "1" + zeros + "e-" << 0.0;
    QTest::newRow("point in the exponent") << "1e0" + zeros + ".5" << 0.0;
    QTest::newRow("junk at the end") << "1." + zeros + "x" << 0.0;
    QTest::newRow("NULs") << QByteArray(kept + 1, '\0') << 0.0;
}

void tst_LongToken::longTokens()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    COMPARE_EXACT(QString::fromLatin1(text).toDouble(), value);
    for (const int pieceSize : {16384, 1 << 20})
        COMPARE_EXACT(valueOf(text, pieceSize), value);
}

void tst_LongToken::longTokenIsNoKeyword()
{
    LongToken token;
    const QByteArray text(kept + 1, 'D');
    token.append(text.constData(), text.constData() + text.size());
    QVERIFY(!token.empty());
    QVERIFY(token.text() != "D=" && token.text() != "Offset");
    QVERIFY(token.text().size() < 1000);
}

void tst_LongToken::clearedTokenStartsAnew()
{
    LongToken token;
    const QByteArray text(kept + 1, 'x');
    token.append(text.constData(), text.constData() + text.size());
    token.clear();
    QVERIFY(token.empty());
    token.append(text.constData(), text.constData() + 2);
    QVERIFY(token.text() == "xx");
}

void tst_LongToken::agreesWithTheToolkit()
{
    Random random;
    int numbers = 0;
    for (int run = 0; run < 1500; ++run) {
        const QByteArray text = blownUp(random);
        const double expected = QString::fromLatin1(text).toDouble();
        numbers += std::isnormal(expected) ? 1 : 0;
        QVERIFY2(same(valueOf(text, 1000 + random.below(100000)), expected),
                 text.left(200).constData());
    }
    QVERIFY(numbers > 150);
}

QTEST_GUILESS_MAIN(tst_LongToken)
#include "tst_LongToken.moc"

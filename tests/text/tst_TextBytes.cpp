#include "tests/support/ArrayBytes.h"
#include "text/TextBytes.h"

#include <QtTest>

namespace
{

constexpr std::size_t enough = 10000000;

QByteArray textOf(const TextBytes& text)
{
    QByteArray bytes(static_cast<int>(text.bytes().size() - text.start()), '\0');
    if (!text.bytes().read(bytes.data(), static_cast<std::size_t>(bytes.size()), text.start()))
        qFatal("cannot be read");
    return bytes;
}

/// "A" and a character beyond 16 bits, U+1D11E, and a line feed.
const QByteArray inUtf8("A\xF0\x9D\x84\x9E\n");

} // namespace

class tst_TextBytes : public QObject
{
    Q_OBJECT

private slots:
    void encodings_data();
    void encodings();
    void whatIsNotConvertedIsNotCopied();
    void conversionsAreBound();
    void unreadable();
    void longUtf16();
    void textOfUtf8();
    void returns();
};

void tst_TextBytes::encodings_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const QByteArray& file, const QByteArray& text) {
        QTest::newRow(name) << file << text;
    };
    row("empty", "", "");
    row("a byte", "x", "x");
    row("UTF-8", inUtf8, inUtf8);
    row("UTF-8, marked", "\xEF\xBB\xBF" + inUtf8, inUtf8);
    row("UTF-8, marked twice", "\xEF\xBB\xBF\xEF\xBB\xBF" + inUtf8, "\xEF\xBB\xBF" + inUtf8);
    row("a part of a mark", "\xEF\xBB", "\xEF\xBB");
    row("EUC-JP", "\xBB\xEE\xCE\xC1 1\n", "\xBB\xEE\xCE\xC1 1\n");
    row("UTF-16, low first",
        QByteArray("\xFF\xFE"
                   "A\0\x34\xD8\x1E\xDD\n\0",
                   10),
        inUtf8);
    row("UTF-16, high first", QByteArray("\xFE\xFF\0A\xD8\x34\xDD\x1E\0\n", 10), inUtf8);
    row("UTF-32, low first",
        QByteArray("\xFF\xFE\0\0"
                   "A\0\0\0\x1E\xD1\x01\0\n\0\0\0",
                   16),
        inUtf8);
    row("UTF-32, high first", QByteArray("\0\0\xFE\xFF\0\0\0A\0\x01\xD1\x1E\0\0\0\n", 16), inUtf8);
    row("a mark alone", QByteArray("\xFF\xFE", 2), "");
}

void tst_TextBytes::encodings()
{
    QFETCH(QByteArray, file);
    const ArrayBytes bytes(file);
    const TextBytes text(bytes, enough);
    QCOMPARE(text.outcome(), ReadOutcome::Read);
    QTEST(textOf(text), "text");
}

void tst_TextBytes::whatIsNotConvertedIsNotCopied()
{
    const ArrayBytes plain("1 2 3\n");
    const TextBytes text(plain, 0);
    QCOMPARE(text.outcome(), ReadOutcome::Read);
    QCOMPARE(&text.bytes(), static_cast<const ByteSource*>(&plain));
    QCOMPARE(text.start(), std::int64_t{0});
    const ArrayBytes marked("\xEF\xBB\xBF"
                            "1 2 3\n");
    QCOMPARE(TextBytes(marked, 0).start(), std::int64_t{3});
    QCOMPARE(TextBytes(marked, 0).outcome(), ReadOutcome::Read);
}

void tst_TextBytes::conversionsAreBound()
{
    const ArrayBytes bytes("\xFF\xFE" + QByteArray("1\0", 2).repeated(1000));
    QCOMPARE(TextBytes(bytes, 1000).outcome(), ReadOutcome::TooLarge);
    QCOMPARE(TextBytes(bytes, enough).outcome(), ReadOutcome::Read);
}

void tst_TextBytes::unreadable()
{
    const QByteArray file = "\xFF\xFE" + QByteArray("1\0", 2).repeated(100000);
    for (const std::int64_t badFrom : {0, 3, 100, 150000}) {
        const ArrayBytes bytes(file, badFrom);
        QCOMPARE(TextBytes(bytes, enough).outcome(), ReadOutcome::Unreadable);
    }
}

/// Characters of two halves everywhere, so that one is cut by every piece that is read.
void tst_TextBytes::longUtf16()
{
    const int count = 100000;
    for (const QByteArray& shift : {QByteArray(), QByteArray("A\0", 2)}) {
        const ArrayBytes bytes("\xFF\xFE" + shift +
                               QByteArray("\x34\xD8\x1E\xDD", 4).repeated(count));
        const TextBytes text(bytes, enough);
        QCOMPARE(text.outcome(), ReadOutcome::Read);
        QVERIFY(textOf(text) == shift.left(1) + QByteArray("\xF0\x9D\x84\x9E").repeated(count));
    }
}

void tst_TextBytes::textOfUtf8()
{
    QCOMPARE(textFromUtf8(""), QString());
    QCOMPARE(textFromUtf8("8350"), QStringLiteral("8350"));
    QCOMPARE(textFromUtf8("\xE8\xA9\xA6\xE6\x96\x99"), QStringLiteral("試料"));
    QCOMPARE(textFromUtf8("a\xFF"), QString(QLatin1Char('a')) + QChar(QChar::ReplacementCharacter));
    const QString mark(QChar(QChar::ByteOrderMark));
    QCOMPARE(textFromUtf8("\xEF\xBB\xBF"
                          "x"),
             mark + QLatin1Char('x'));
    QCOMPARE(textFromUtf8("\xEF\xBB\xBF\xEF\xBB\xBF"), mark + mark);
    QCOMPARE(textFromUtf8("x\xEF\xBB\xBF"), QLatin1Char('x') + mark);
    QCOMPARE(textFromUtf8(std::string_view("a\0b", 3)).size(), 3);
}

void tst_TextBytes::returns()
{
    std::string scratch;
    QCOMPARE(withoutReturns("", scratch), std::string_view());
    QCOMPARE(withoutReturns("1 2 3", scratch), std::string_view("1 2 3"));
    QCOMPARE(withoutReturns("1 2 3\r", scratch), std::string_view("1 2 3"));
    QCOMPARE(withoutReturns("1 2 3\r\r", scratch), std::string_view("1 2 3"));
    QCOMPARE(withoutReturns("\r1\r\r2 \r3\r", scratch), std::string_view("12 3"));
    QCOMPARE(withoutReturns("\r\r", scratch), std::string_view());
}

QTEST_APPLESS_MAIN(tst_TextBytes)
#include "tst_TextBytes.moc"

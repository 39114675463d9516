#include "text/LineTokens.h"

#include <QStringList>
#include <QtTest>

#include <string>

namespace
{

QByteArrayList tokensOf(const QByteArray& line)
{
    QByteArrayList tokens;
    LineTokens rest({line.constData(), static_cast<std::size_t>(line.size())});
    for (std::string_view token = rest.next(); !token.empty(); token = rest.next())
        tokens += QByteArray(token.data(), static_cast<int>(token.size()));
    return tokens;
}

} // namespace

class tst_LineTokens : public QObject
{
    Q_OBJECT

private slots:
    void byHand_data();
    void byHand();
    void everyCharacterOfUnicode();
    void blankThatIsBrokenOff();
};

void tst_LineTokens::byHand_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArrayList>("tokens");
    const auto row = [](const char* name, const QByteArray& line, const QByteArrayList& tokens) {
        QTest::newRow(name) << line << tokens;
    };
    row("nothing", "", {});
    row("blanks", " \t \v\f\r\n ", {});
    row("one", "one", {"one"});
    row("blanks around", "  one\t two  ", {"one", "two"});
    row("all blanks of ASCII", "a b\tc\nd\ve\ff\rg", {"a", "b", "c", "d", "e", "f", "g"});
    row("no blanks", QByteArray("a\0b\x1f\x1b\x08", 6), {QByteArray("a\0b\x1f\x1b\x08", 6)});
    row("wide blanks", "\xE3\x80\x80one\xC2\xA0two\xE3\x80\x80", {"one", "two"});
    row("no UTF-8", "\xA0\xFF \x80\xE3", {"\xA0\xFF", "\x80\xE3"});
    row("Japanese", "\xE3\x82\xB9\xE3\x83\x9A \xE3\x82\xAF",
        {"\xE3\x82\xB9\xE3\x83\x9A", "\xE3\x82\xAF"});
}

void tst_LineTokens::byHand()
{
    QFETCH(QByteArray, line);
    QTEST(tokensOf(line), "tokens");
}

/// The toolkit knows which characters are blanks.
void tst_LineTokens::everyCharacterOfUnicode()
{
    int blanks = 0;
    for (uint code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code < 0xE000)
            continue; // halves of characters
        const QByteArray line = "a" + QString::fromUcs4(&code, 1).toUtf8() + "b";
        const bool blank = QChar::isSpace(code);
        blanks += blank;
        QVERIFY2(tokensOf(line) == (blank ? QByteArrayList{"a", "b"} : QByteArrayList{line}),
                 qPrintable(QString::number(code, 16)));
    }
    QVERIFY(blanks > 20);
}

/// Nothing is read beyond the line, whose bytes may end within a character.
void tst_LineTokens::blankThatIsBrokenOff()
{
    const QByteArray blank("a\xE3\x80\x80");
    QCOMPARE(tokensOf(blank), QByteArrayList{"a"});
    LineTokens two({blank.constData(), 3});
    QCOMPARE(two.next().size(), std::size_t{3});
    LineTokens one({blank.constData(), 2});
    QCOMPARE(one.next().size(), std::size_t{2});
    QVERIFY(one.next().empty());
}

QTEST_APPLESS_MAIN(tst_LineTokens)
#include "tst_LineTokens.moc"

#include "tests/support/ArrayBytes.h"
#include "text/LineReader.h"

#include <QtTest>

#include <algorithm>

namespace
{

/// All that a reader brings of a range, and how it ended.
struct Read {
    QByteArray text;
    LinesResult end = LinesResult::Lines;
};

Read readAll(LineReader& reader, const LineRange& range)
{
    Read read;
    reader.start(range);
    const char* first = nullptr;
    const char* last = nullptr;
    while ((read.end = reader.next(first, last)) == LinesResult::Lines)
        read.text.append(first, static_cast<int>(last - first));
    return read;
}

Read readAll(const QByteArray& text, std::size_t piece, const LineRange& range = {})
{
    const ArrayBytes bytes(text);
    LineReader reader(bytes, piece);
    return readAll(reader, range);
}

LineRange range(std::int64_t begin, std::int64_t end = LineRange::toTheEnd)
{
    return {begin, end, begin == 0};
}

/// The lines that begin within a range.
QByteArray literalLines(const QByteArray& text, std::int64_t begin, std::int64_t end)
{
    QByteArray lines;
    for (int start = 0; start < text.size();) {
        const int feed = text.indexOf('\n', start);
        const int behind = feed < 0 ? text.size() : feed + 1;
        if (begin <= start && start < end)
            lines += text.mid(start, behind - start) + (feed < 0 ? "\n" : "");
        start = behind;
    }
    return lines;
}

/// Lines of all lengths: none, some, and more than is read beyond a range.
QByteArray manyLines(bool feedAtTheEnd)
{
    QByteArray text("\n\nfirst\r\n\n");
    for (const int length : {1, 100, 4095, 0, 4096, 4097, 3, 0, 0, 10000, 2})
        text += QByteArray(length, static_cast<char>('a' + length % 26)) + '\n';
    return text + "the last one" + (feedAtTheEnd ? "\n" : "");
}

} // namespace

class tst_LineReader : public QObject
{
    Q_OBJECT

private slots:
    void wholeText_data();
    void wholeText();
    void everyRangeOfAShortText();
    void bordersAtEveryByte_data();
    void bordersAtEveryByte();
    void textThatBeginsLater();
    void longestLine_data();
    void longestLine();
    void longLineOfTheRangeBefore();
    void bytesThatCannotBeRead();
    void readableBehindTheLines();
};

void tst_LineReader::wholeText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("lines");
    const auto row = [](const char* name, const QByteArray& text, const QByteArray& lines) {
        QTest::newRow(name) << text << lines;
    };
    row("empty", "", "");
    row("a feed", "\n", "\n");
    row("no feed", "one", "one\n");
    row("two lines", "one\ntwo\n", "one\ntwo\n");
    row("two lines, no last feed", "one\ntwo", "one\ntwo\n");
    row("returns are kept", "one\r\ntwo\r", "one\r\ntwo\r\n");
    row("NUL", QByteArray("a\0b\n\0", 5), QByteArray("a\0b\n\0\n", 6));
    row("many", manyLines(true), manyLines(true));
    row("many, no last feed", manyLines(false), manyLines(true));
}

void tst_LineReader::wholeText()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, lines);
    for (const std::size_t piece : {1U, 7U, 4096U, 1000000U}) {
        const Read read = readAll(text, piece);
        QCOMPARE(read.end, LinesResult::End);
        QCOMPARE(read.text, lines);
    }
}

void tst_LineReader::everyRangeOfAShortText()
{
    for (const QByteArray text : {"a\nbc\n\n\ndef\ng", "a\nbc\n\n\ndef\ng\n", "\n\n\n", "abc"})
        for (int begin = 0; begin < text.size(); ++begin)
            for (int end = begin + 1; end <= text.size() + 1; ++end) {
                const Read read = readAll(text, 3, range(begin, end));
                QCOMPARE(read.end, LinesResult::End);
                QCOMPARE(read.text, literalLines(text, begin, end));
            }
}

void tst_LineReader::bordersAtEveryByte_data()
{
    QTest::addColumn<bool>("feedAtTheEnd");
    QTest::addColumn<int>("piece");
    for (const bool feed : {true, false})
        for (const int piece : {1, 5000, 100000})
            QTest::addRow("%s, pieces of %d", feed ? "feed" : "no feed", piece) << feed << piece;
}

void tst_LineReader::bordersAtEveryByte()
{
    QFETCH(bool, feedAtTheEnd);
    QFETCH(int, piece);
    const QByteArray text = manyLines(feedAtTheEnd);
    const QByteArray whole = manyLines(true);
    const ArrayBytes bytes(text);
    LineReader reader(bytes, static_cast<std::size_t>(piece));
    for (int border = 1; border < text.size(); ++border) {
        const Read before = readAll(reader, range(0, border));
        const Read behind = readAll(reader, range(border));
        QCOMPARE(before.end, LinesResult::End);
        QCOMPARE(behind.end, LinesResult::End);
        QVERIFY2(before.text + behind.text == whole, qPrintable(QString::number(border)));
        // No line of the second range begins before the border.
        QVERIFY(whole.size() - behind.text.size() >= border);
        QVERIFY(whole.left(border - 1).lastIndexOf('\n') < before.text.size());
    }
}

/// Behind a byte order mark a line begins, though no line feed stands before.
void tst_LineReader::textThatBeginsLater()
{
    const QByteArray text("\xEF\xBB\xBFone\ntwo\n");
    QCOMPARE(readAll(text, 100, {3, LineRange::toTheEnd, true}).text, QByteArray("one\ntwo\n"));
    QCOMPARE(readAll(text, 100, {3, LineRange::toTheEnd, false}).text, QByteArray("two\n"));
}

void tst_LineReader::longestLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isTooLarge");
    const QByteArray longest(4 * 1024 * 1024, 'x');
    QTest::newRow("longest") << longest + "\n" << false;
    QTest::newRow("longest, no feed") << longest << false;
    QTest::newRow("longer") << longest + "x\n" << true;
    QTest::newRow("longer, no feed") << longest + "x" << true;
    QTest::newRow("longest, second") << "short\n" + longest + "\nshort\n" << false;
    QTest::newRow("longer, second") << "short\n" + longest + "x\nshort\n" << true;
}

void tst_LineReader::longestLine()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isTooLarge);
    for (const std::size_t piece :
         {1000U, 1000000U}) { // as the readers' ones, below a longest line
        const Read read = readAll(text, piece);
        QCOMPARE(read.end, isTooLarge ? LinesResult::TooLarge : LinesResult::End);
        if (!isTooLarge)
            QVERIFY(read.text == (text.endsWith('\n') ? text : text + '\n'));
    }
}

void tst_LineReader::longLineOfTheRangeBefore()
{
    const QByteArray text = QByteArray(5 * 1024 * 1024, 'x') + "\nshort\n";
    const Read read = readAll(text, 100000, range(10));
    QCOMPARE(read.end, LinesResult::End);
    QCOMPARE(read.text, QByteArray("short\n"));
}

void tst_LineReader::bytesThatCannotBeRead()
{
    const QByteArray text = QByteArray("1 2 3\n").repeated(10000);
    const ArrayBytes bytes(text, 50000);
    LineReader reader(bytes, 1000);
    const Read read = readAll(reader, {});
    QCOMPARE(read.end, LinesResult::Unreadable);
    QVERIFY(read.text.size() <= 50000 && text.startsWith(read.text));
    QCOMPARE(readAll(reader, range(0, 600)).end, LinesResult::End); // another range is well
}

void tst_LineReader::readableBehindTheLines()
{
    const ArrayBytes bytes("1 2\n3 4");
    LineReader reader(bytes, 4);
    reader.start({});
    const char* first = nullptr;
    const char* last = nullptr;
    while (reader.next(first, last) == LinesResult::Lines) {
        volatile char sum = 0; // the sanitizer's matter
        for (std::size_t i = 0; i < LineReader::padding; ++i)
            sum = static_cast<char>(sum + last[i]);
        QCOMPARE(*(last - 1), '\n');
    }
}

QTEST_APPLESS_MAIN(tst_LineReader)
#include "tst_LineReader.moc"

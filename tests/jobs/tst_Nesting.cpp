#include "jobs/Nesting.h"

#include <QByteArray>
#include <QtTest>

class tst_Nesting : public QObject
{
    Q_OBJECT

private slots:
    void lines_data();
    void lines();
};

void tst_Nesting::lines_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    const auto row = [](const char* name, const QByteArray& text, int line) {
        QTest::newRow(name) << text << line;
    };
    const QByteArray open16(16, '[');
    const QByteArray open17(17, '[');
    const QByteArray key16 = QByteArray("a.").repeated(15) + "a";
    const QByteArray key17 = QByteArray("a.").repeated(16) + "a";
    row("nothing", "", 0);
    row("16 brackets", "\n\na = " + open16 + QByteArray(16, ']') + "\n", 0);
    row("17 brackets", "\n\na = " + open17 + QByteArray(17, ']') + "\n", 3);
    row("brackets side by side", "a = [" + QByteArray("[],").repeated(1000) + "]\n", 0);
    row("brackets over lines", "a = " + QByteArray("[\n").repeated(17), 17);
    row("both kinds", "a = " + QByteArray("[{a=").repeated(9), 1);
    row("key of 16", key16 + " = 1\n", 0);
    row("key of 17", "\n" + key17 + " = 1\n", 2);
    row("key of 17 with blanks", QByteArray("a . ").repeated(16) + "a = 1\n", 1);
    row("header of 16", "[" + key16 + "]\n" + key16 + " = 1\n", 0);
    row("header of 17", "[" + key17 + "]\n", 1);
    row("key in a table in line", "a = {" + key17 + " = 1}\n", 1);
    row("many short keys", QByteArray("a.b = 1.5\n").repeated(1000), 0);
    row("many numbers", "a = [" + QByteArray("1.5, ").repeated(1000) + "]\n", 0);
    row("quoted key with dots", "\"" + key17 + "\" = 1\n", 0);
    row("key of quoted parts", QByteArray("\"x\".").repeated(16) + "a = 1\n", 1);
    row("comment", "# " + open17 + key17 + "\"\n" + key16 + " = 1\n", 0);
    row("comment at the end", "# " + open17, 0);
    row("after a comment", "# it's \"\n" + key17 + " = 1", 2);
    row("string", "a = \"" + open17 + key17 + "\"\n", 0);
    row("string with its mark", "a = \"\\\"" + open17 + "\"\n", 0);
    row("string that ends in a backslash", "a = \"\\\\\"\nb = " + open17, 2);
    row("literal string", "a = '" + open17 + "\\'\nb = " + open17, 2);
    row("empty strings", "a = \"\"\nb = ''\nc = " + open17, 3);
    row("string of lines", "a = \"\"\"\n" + open17 + "\n\"\"\n\\\"\"\"" + key17 + "\"\"\"\n", 0);
    row("after a string of lines", "a = \"\"\"\n\n\"\"\"\nb = " + open17, 4);
    row("literal string of lines", "a = '''\n" + open17 + "''\\\n'''\nb = " + open17, 4);
    row("marks before the end", "a = \"\"\"x\"\"\"\"\"\nb = " + open17, 2);
    row("marks at the beginning", "a = \"\"\"\"\"x\"\"\"\nb = " + open17, 2);
    row("empty string of lines", "a = \"\"\"\"\"\"\nb = " + open17, 2);
    row("string that never ends", "a = \"x\nb = " + open17, 2);
    row("string of lines that never ends", "a = \"\"\"x\nb = " + open17, 0);
    row("backslash at the end", "a = \"\\", 0);
    row("closed more than opened", QByteArray(100, ']') + open16, 0);
}

void tst_Nesting::lines()
{
    QFETCH(QByteArray, text);
    QFETCH(int, line);
    QCOMPARE(lineOfDeepNesting({text.constData(), static_cast<std::size_t>(text.size())}), line);
}

QTEST_GUILESS_MAIN(tst_Nesting)
#include "tst_Nesting.moc"

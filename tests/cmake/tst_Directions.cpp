#include "tests/support/Files.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

/// cmake/directions: includes that point the wrong way are found, those of the program do not.
class tst_Directions : public QObject
{
    Q_OBJECT

private slots:
    void forbiddenIncludes_data();
    void forbiddenIncludes();
    void brokenTables_data();
    void brokenTables();
    void oneIncludeInTheProgramItself();
    void contributingShowsTheTable();
    void contributingNamesWhatIsThere();
};

namespace
{

const QString root = QStringLiteral(SOURCE_FOLDER);

QString textOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

void write(const QTemporaryDir& tree, const QString& path, const QByteArray& text)
{
    const QString whole = tree.filePath(path);
    QDir().mkpath(QFileInfo(whole).path());
    create(whole, text);
}

/// What the check says of a tree, the lines joined; empty for a tree that is in order. Checks that
/// its exit status agrees.
QString complaints(const QString& tree)
{
    QProcess check;
    check.start(root + QStringLiteral("/cmake/directions"), {tree});
    if (!check.waitForFinished(60000) || check.exitStatus() != QProcess::NormalExit)
        return QStringLiteral("did not end");
    const QByteArray errors = check.readAllStandardError();
    const QString said = QString::fromUtf8(errors + check.readAllStandardOutput()).trimmed();
    return (check.exitCode() == 0) == said.isEmpty()
               ? said
               : QStringLiteral("status %1: ").arg(check.exitCode()) + said;
}

const QByteArray table = "# ground first\nlow:\n\nmiddle: Qt low\ntop: Qt middle # not low\n";

} // namespace

void tst_Directions::forbiddenIncludes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char* name, const char* file, const char* text, const char* said) {
        QTest::newRow(name) << QString::fromLatin1(file) << QByteArray(text)
                            << QString::fromLatin1(said);
    };
    row("its own folder", "low/A.h", "#include \"low/B.h\"\n", "");
    row("below", "middle/A.h", "#include \"low/B.h\"\n#include <QString>\n", "");
    row("the standard library", "low/A.h", "#include <queue>\n#include <sys/stat.h>\n", "");
    row("a comment", "low/A.h", "// #include \"top/B.h\"\n", "");
    row("beside the house", "tests/A.cpp", "#include \"top/B.h\"\n#include \"C.h\"\n", "");
    row("above, in a header", "low/A.h", "\n#include \"middle/B.h\"\n",
        "low/A.h:2: low/ may not include middle/B.h");
    row("above, in a source", "low/A.cpp", "#include \"low/A.h\"\n\n#include \"top/B.h\"\n",
        "low/A.cpp:3: low/ may not include top/B.h");
    row("above, in a folder within", "low/deep/A.cpp", "#include \"top/B.h\"\n",
        "low/deep/A.cpp:1: low/ may not include top/B.h");
    row("below, but not named", "top/A.h", "#include \"low/B.h\"\n",
        "top/A.h:1: top/ may not include low/B.h");
    row("blanks and angles", "low/A.h", "  #  include <middle/B.h>\n",
        "low/A.h:1: low/ may not include middle/B.h");
    row("two of three", "low/A.h",
        "#include \"middle/B.h\"\n#include \"low/B.h\"\n#include \"top/B.h\"\n",
        "low/A.h:1: low/ may not include middle/B.h\nlow/A.h:3: low/ may not include top/B.h");
    row("the toolkit", "low/A.h", "#include <QString>\n",
        "low/A.h:1: low/ may not include QString");
    row("the toolkit's module", "low/A.h", "#include <QtCore/QString>\n",
        "low/A.h:1: low/ may not include QtCore/QString");
    row("the toolkit in small letters", "low/A.h", "#include <qglobal.h>\n",
        "low/A.h:1: low/ may not include qglobal.h");
    row("tests", "top/A.h", "#include \"tests/support/B.h\"\n",
        "top/A.h:1: top/ may not include tests/support/B.h");
    row("no folder", "top/A.h", "#include \"B.h\"\n",
        "top/A.h:1: B.h does not begin with its folder");
    row("a way out", "low/A.h", "#include \"../top/B.h\"\n",
        "low/A.h:1: low/ may not include ../top/B.h");
    row("a name of the preprocessor's", "low/A.h", "#include B\n",
        "low/A.h:1: an include without a name");
    row("a form", "top/A.h", "#include \"ui_Form.h\"\n", "");
    row("a form of other widgets", "middle/A.h", "#include \"ui_Form.h\"\n",
        "middle/A.h:1: middle/ may not include top/Widget.h");
    row("a folder without a line", "attic/A.h", "#include \"low/B.h\"\n",
        "cmake/floors.txt: no line for attic/");
}

void tst_Directions::forbiddenIncludes()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, text);
    QFETCH(QString, complaint);
    const QTemporaryDir tree;
    write(tree, QStringLiteral("cmake/floors.txt"), table);
    write(tree, QStringLiteral("forms/Form.ui"),
          "<customwidget>\n <class>A</class>\n <header>top/Widget.h</header>\n"
          "</customwidget>\n<customwidget>\n <class>B</class>\n"
          " <header location=\"global\">middle/Widget.h</header>\n</customwidget>\n");
    write(tree, file, text);
    QCOMPARE(complaints(tree.path()), complaint);
}

void tst_Directions::brokenTables_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("complaint");
    const QString line = QStringLiteral("cmake/floors.txt:");
    QTest::newRow("in order") << table << QString();
    QTest::newRow("circle") << QByteArray("low: top\ntop: low\n")
                            << line +
                                   QStringLiteral("1: low/ names top/, which is no floor below it");
    QTest::newRow("unknown") << QByteArray("low:\ntop: cellar\n")
                             << line + QStringLiteral(
                                           "2: top/ names cellar/, which is no floor below it");
    QTest::newRow("twice") << QByteArray("low:\nlow:\n")
                           << line + QStringLiteral("2: low/ stands here a second time");
    QTest::newRow("no colon") << QByteArray("low\n")
                              << line + QStringLiteral("1: not FOLDER: WHAT IT MAY INCLUDE");
}

// A line names what stands above it in the table, so that a circle of folders cannot be written.
void tst_Directions::brokenTables()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, complaint);
    const QTemporaryDir tree;
    write(tree, QStringLiteral("cmake/floors.txt"), text);
    QCOMPARE(complaints(tree.path()), complaint);
}

// The program's own table, and one include put beside its sources.
void tst_Directions::oneIncludeInTheProgramItself()
{
    QCOMPARE(complaints(root), QString());
    const QTemporaryDir tree;
    write(tree, QStringLiteral("cmake/floors.txt"),
          textOf(root + QStringLiteral("/cmake/floors.txt")).toUtf8());
    write(tree, QStringLiteral("analysis/Victreen.cpp"),
          "#include \"analysis/Victreen.h\"\n#include \"results/ResultText.h\"\n"
          "#include <QString>\n");
    write(tree, QStringLiteral("batch/JobRun.cpp"), "#include \"app/FourPs.h\"\n");
    QCOMPARE(
        complaints(tree.path()),
        QStringLiteral("analysis/Victreen.cpp:2: analysis/ may not include results/ResultText.h\n"
                       "analysis/Victreen.cpp:3: analysis/ may not include QString\n"
                       "batch/JobRun.cpp:1: batch/ may not include app/FourPs.h"));
}

void tst_Directions::contributingShowsTheTable()
{
    QString lines;
    for (const QString& line :
         textOf(root + QStringLiteral("/cmake/floors.txt")).split(QLatin1Char('\n')))
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#')))
            lines += QStringLiteral("    ") + line + QLatin1Char('\n');
    QVERIFY(lines.contains(QStringLiteral("    analysis:  system text\n")));
    QVERIFY2(textOf(root + QStringLiteral("/CONTRIBUTING.md"))
                 .contains(QLatin1Char('\n') + lines + QLatin1Char('\n')),
             qPrintable(lines));
}

// Its ways through the code name a class by its folder; one that moves takes its name along.
void tst_Directions::contributingNamesWhatIsThere()
{
    const QString text = textOf(root + QStringLiteral("/CONTRIBUTING.md"));
    const QRegularExpression name(QStringLiteral("`(?!build/)([a-z]+/[A-Za-z0-9_./-]*)`"));
    QStringList missing;
    int found = 0;
    for (auto i = name.globalMatch(text); i.hasNext(); ++found) {
        const QString path = root + QLatin1Char('/') + i.next().captured(1);
        if (!QFileInfo::exists(path) && !QFileInfo::exists(path + QStringLiteral(".h")))
            missing += path;
    }
    QVERIFY(found > 50);
    QCOMPARE(missing, QStringList());
}

QTEST_GUILESS_MAIN(tst_Directions)
#include "tst_Directions.moc"

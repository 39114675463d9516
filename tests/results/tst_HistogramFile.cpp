#include "analysis/HistogramCounts.h"
#include "results/HistogramFile.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

void create(const QString& path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("old contents that are much longer than what replaces them");
}

HistogramCounts histogram(double first, double last, double boxes)
{
    HistogramCounts counts;
    counts.reset({first, last, boxes, false});
    return counts;
}

} // namespace

class tst_HistogramFile : public QObject
{
    Q_OBJECT

private slots:
    void fileOnlyWhereItExists();
    void fileLineByLine();
    void fileNames_data();
    void fileNames();
    void fileThroughALink();
};

void tst_HistogramFile::fileOnlyWhereItExists()
{
    const QTemporaryDir dir;
    const QString result = dir.filePath(QStringLiteral("res.dat"));
    create(result);
    const HistogramCounts counts = histogram(1.5, 3.5, 41);
    QVERIFY(!writeHistogramFile(counts, result, QStringLiteral("HGAlpha")));
    QVERIFY(!QFile::exists(dir.filePath(QStringLiteral("res_HGAlpha.dat"))));
    create(dir.filePath(QStringLiteral("res_HGAlpha.dat")));
    QVERIFY(writeHistogramFile(counts, result, QStringLiteral("HGAlpha")));
    const QByteArray text = contents(dir.filePath(QStringLiteral("res_HGAlpha.dat")));
    QCOMPARE(text.count('\n'), 43);
    QVERIFY(!writeHistogramFile(counts, result, QStringLiteral("HGThick")));
    QVERIFY(
        !writeHistogramFile(counts, QStringLiteral("/nowhere/res.dat"), QStringLiteral("HGAlpha")));
    QVERIFY(!writeHistogramFile(counts, QString(), QStringLiteral("HGAlpha")));
}

void tst_HistogramFile::fileLineByLine()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("res_HGThick.dat"));
    create(path);
    HistogramCounts counts = histogram(0, 100000, 3);
    for (const double value : {0.0, 100000.0, 100000.0, -1e6, 1e6})
        counts.add(value);
    QVERIFY(writeHistogramFile(counts, dir.filePath(QStringLiteral("res.dat")),
                               QStringLiteral("HGThick")));
    QCOMPARE(contents(path), QByteArray("-75000 -50000 -25000  1\n"
                                        "-25000 0 25000  1\n"
                                        "25000 50000 75000  0\n"
                                        "75000 100000 125000  2\n"
                                        "125000 150000 175000  1\n"));
}

void tst_HistogramFile::fileNames_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("histogramFile");
    QTest::newRow("suffix") << QStringLiteral("res.dat") << QStringLiteral("res_HGAlpha.dat");
    QTest::newRow("two suffixes") << QStringLiteral("a.b.c") << QStringLiteral("a.b_HGAlpha.c");
    QTest::newRow("no suffix") << QStringLiteral("res") << QStringLiteral("res_HGAlpha.");
    QTest::newRow("only a suffix") << QStringLiteral(".dat") << QStringLiteral("_HGAlpha.dat");
    QTest::newRow("blanks") << QStringLiteral("my map.txt") << QStringLiteral("my map_HGAlpha.txt");
}

void tst_HistogramFile::fileNames()
{
    QFETCH(QString, result);
    QFETCH(QString, histogramFile);
    const QTemporaryDir dir;
    create(dir.filePath(histogramFile));
    const HistogramCounts counts = histogram(0, 1, 2);
    QVERIFY(writeHistogramFile(counts, dir.filePath(result), QStringLiteral("HGAlpha")));
    QCOMPARE(contents(dir.filePath(histogramFile)).count('\n'), 4);
}

void tst_HistogramFile::fileThroughALink()
{
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("elsewhere")));
    const QString target = dir.filePath(QStringLiteral("elsewhere/target"));
    create(target);
    QVERIFY(QFile::link(target, dir.filePath(QStringLiteral("res_HGAlpha.dat"))));
    QVERIFY(writeHistogramFile(histogram(0, 1, 2),
                               dir.filePath(QStringLiteral("elsewhere/../res.dat")),
                               QStringLiteral("HGAlpha")));
    QCOMPARE(contents(target).count('\n'), 4);
}

QTEST_GUILESS_MAIN(tst_HistogramFile)
#include "tst_HistogramFile.moc"

#include "jobs/TargetList.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

/// Which files a job's names and patterns give, and in which order.
class tst_TargetList : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void lists_data();
    void lists();
    void refusals_data();
    void refusals();
    void absolutePaths();

private:
    Job job(const QStringList& targets) const;
    QString inFolder(const QString& name) const
    {
        return m_dir.path() + QStringLiteral("/a [strange] folder/") + name;
    }

    QTemporaryDir m_dir;
};

void tst_TargetList::initTestCase()
{
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("a [strange] folder/scans/below.dat")));
    for (const char* name :
         {"scans/b.dat", "scans/B.dat", "scans/a10.dat", "scans/a2.dat", "scans/\xE9\x89\x84.dat",
          "scans/z.txt", "extra.dat", "odd[1].dat", "odd1.dat", "scans/.hidden.dat"}) {
        QFile file(inFolder(QString::fromUtf8(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QCOMPARE(
        mkfifo(QFile::encodeName(inFolder(QStringLiteral("scans/pipe.dat"))).constData(), 0600), 0);
}

Job tst_TargetList::job(const QStringList& targets) const
{
    Job made;
    made.folder = inFolder(QStringLiteral("."));
    for (int i = 0; i < targets.size(); ++i)
        made.targets.push_back({targets[i], {i + 5, 0, {}}});
    return made;
}

void tst_TargetList::lists_data()
{
    QTest::addColumn<QStringList>("given");
    QTest::addColumn<QStringList>("found");
    // By bytes: capitals first, 1 before 2, Japanese last; no folder, no pipe, nothing hidden.
    const QStringList scans{QStringLiteral("scans/B.dat"), QStringLiteral("scans/a10.dat"),
                            QStringLiteral("scans/a2.dat"), QStringLiteral("scans/b.dat"),
                            QStringLiteral("scans/\u9244.dat")};
    QTest::newRow("a pattern") << QStringList{QStringLiteral("scans/*.dat")} << scans;
    QTest::newRow("a name") << QStringList{QStringLiteral("extra.dat")}
                            << QStringList{QStringLiteral("extra.dat")};
    QTest::newRow("each once") << QStringList{QStringLiteral("scans/b.dat"),
                                              QStringLiteral("scans/*.dat"),
                                              QStringLiteral("scans/../scans/a2.dat"),
                                              QStringLiteral("./scans/B.dat")}
                               << scans;
    QTest::newRow("sorted together")
        << QStringList{QStringLiteral("scans/a*.dat"), QStringLiteral("extra.dat")}
        << QStringList{QStringLiteral("extra.dat"), QStringLiteral("scans/a10.dat"),
                       QStringLiteral("scans/a2.dat")};
    QTest::newRow("a name that looks like a pattern")
        << QStringList{QStringLiteral("odd[1].dat")} << QStringList{QStringLiteral("odd[1].dat")};
    QTest::newRow("a set of letters") << QStringList{QStringLiteral("scans/[ab].dat")}
                                      << QStringList{QStringLiteral("scans/b.dat")};
    QTest::newRow("one letter") << QStringList{QStringLiteral("s?ans/a?.dat")}
                                << QStringList{QStringLiteral("scans/a2.dat")};
}

void tst_TargetList::lists()
{
    QFETCH(QStringList, given);
    QFETCH(QStringList, found);
    JobError error;
    const auto targets = targetList(job(given), error);
    QVERIFY2(targets, qPrintable(error.reason));
    QStringList paths;
    for (const JobFilePath& target : *targets)
        paths += target.path;
    QStringList expected;
    for (const QString& name : found)
        expected += inFolder(name);
    QCOMPARE(paths, expected);
    QVERIFY(targets->front().place.line >= 5);
}

void tst_TargetList::refusals_data()
{
    QTest::addColumn<QString>("given");
    QTest::newRow("no such file") << QStringLiteral("scans/c.dat");
    QTest::newRow("no match") << QStringLiteral("scans/*.csv");
    QTest::newRow("only a folder") << QStringLiteral("scans/below*");
    QTest::newRow("no such folder") << QStringLiteral("nowhere/*.dat");
}

void tst_TargetList::refusals()
{
    QFETCH(QString, given);
    JobError error;
    QVERIFY(!targetList(job({QStringLiteral("extra.dat"), given}), error));
    QCOMPARE(error.place.line, 6);
    QCOMPARE(error.reason, QStringLiteral("no file is named, or matched by, ") +
                               QDir(inFolder(QStringLiteral("."))).filePath(given));
}

void tst_TargetList::absolutePaths()
{
    const QTemporaryDir other;
    for (const char* name : {"1.dat", "2.dat"}) {
        QFile file(other.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    JobError error;
    const auto targets = targetList(job({other.filePath(QStringLiteral("*.dat"))}), error);
    QVERIFY(targets);
    QCOMPARE(targets->size(), std::size_t{2});
    QCOMPARE(targets->at(1).path, other.filePath(QStringLiteral("2.dat")));
}

QTEST_GUILESS_MAIN(tst_TargetList)
#include "tst_TargetList.moc"

#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QtTest>

#include <sqlite3.h>

/// A list cut into shards and joined again is as if it had been run at once.
class tst_Shards : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void joinedIsAsOne_data();
    void joinedIsAsOne();
    void shardsShareTheList();
    void shardWritesItsRecordOnly();
    void gapsAreNamed();
    void gapsOfMixedDivisions();
    void otherJobIsRefused();
    void otherVersionIsRefused();
    void otherReferencesAreRefused();
    void shardAtWorkIsRefused();
    void noShards();
    void disagreementIsDecidedByTheFile();
    void badArguments_data();
    void badArguments();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    BatchOutput shard(int number, int count) const
    {
        return m_folder->run({QStringLiteral("--quiet"), QStringLiteral("--shard"),
                              QStringLiteral("%1/%2").arg(number).arg(count)});
    }
    BatchOutput merge() const
    {
        return m_folder->run({QStringLiteral("--quiet"), QStringLiteral("--merge")});
    }

    std::unique_ptr<BatchFolder> m_folder;
};

void tst_Shards::init()
{
    m_folder = std::make_unique<BatchFolder>();
    m_folder->addTargets(4);
    m_folder->write("scans/bad.dat", "no spectrum\n");
    m_folder->writeJob(m_folder->addMap("upper") + m_folder->addMap("lower"));
}

void tst_Shards::joinedIsAsOne_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {1, 2, 3, 7, 20})
        QTest::newRow(qPrintable(QString::number(count))) << count;
}

void tst_Shards::joinedIsAsOne()
{
    QFETCH(int, count);
    QCOMPARE(m_folder->run().status, 1); // one is no spectrum
    const QMap<QString, QByteArray> expected = m_folder->resultFiles();
    QVERIFY(expected.contains(QStringLiteral("report.html")));
    QVERIFY(expected.contains(QStringLiteral("maps.csv")));
    QVERIFY(expected.contains(QStringLiteral("maps/upper/upper.dat")));
    QCOMPARE(expected[QStringLiteral("results.csv")].count('\n'), 9);
    QDir(file("results")).removeRecursively();
    for (int i = count; i >= 1; --i)
        QVERIFY(shard(i, count).status >= 0);
    QCOMPARE(merge().status, 1);
    QCOMPARE(m_folder->resultFiles(), expected);
    // The record is as good as that of one run.
    const BatchOutput again = m_folder->run({QStringLiteral("--verbose")});
    QCOMPARE(again.errors.count(QStringLiteral(": there already\n")), 10);
    QCOMPARE(m_folder->resultFiles(), expected);
}

void tst_Shards::shardsShareTheList()
{
    const auto listed = [&](const QStringList& arguments) {
        return m_folder->run(QStringList{QStringLiteral("--list")} + arguments).text;
    };
    const QList<QByteArray> all = listed({}).split('\n');
    QCOMPARE(all.size(), 11); // ten and an empty one
    QCOMPARE(all[8], QByteArray("upper"));
    const QList<QByteArray> second =
        listed({QStringLiteral("--shard"), QStringLiteral("2/3")}).split('\n');
    QCOMPARE(second, QList<QByteArray>({all[1], all[4], all[7], QByteArray()}));
}

void tst_Shards::shardWritesItsRecordOnly()
{
    const BatchOutput output = m_folder->run({QStringLiteral("--shard"), QStringLiteral("1/8")});
    QCOMPARE(output.status, 0);
    QVERIFY(output.errors.endsWith(
        QStringLiteral("Written: %1\n").arg(file("results/shards/1-of-8.sqlite"))));
    QVERIFY(!QFile::exists(file("results/results.csv")));
    QVERIFY(!QFile::exists(file("results/run.sqlite")));
}

void tst_Shards::gapsAreNamed()
{
    QVERIFY(shard(1, 3).status >= 0);
    QVERIFY(shard(3, 3).status >= 0);
    const BatchOutput output = merge();
    QCOMPARE(output.status, 1);
    QCOMPARE(output.errors,
             QStringLiteral("scans/35.dat: in no record (shard 2/3)\n"
                            "scans/copy0000.dat: in no record (shard 2/3)\n"
                            "scans/copy0003.dat: in no record (shard 2/3)\n"
                            "3 of 10 are missing; without --merge the program calculates them "
                            "alone\n"));
    QVERIFY(!QFile::exists(file("results/results.csv")));
    const BatchOutput rest = m_folder->run({QStringLiteral("--verbose")});
    QCOMPARE(rest.errors.count(QStringLiteral(": there already\n")), 7);
    QCOMPARE(rest.errors.count(QStringLiteral(": calculated in ")), 3);
}

void tst_Shards::gapsOfMixedDivisions()
{
    QVERIFY(shard(1, 3).status >= 0);
    QVERIFY(shard(2, 2).status >= 0);
    const BatchOutput output = merge();
    QVERIFY(output.errors.startsWith(QStringLiteral("scans/80.dat: in no record\n")));
}

void tst_Shards::otherJobIsRefused()
{
    QVERIFY(shard(1, 1).status >= 0);
    m_folder->writeJob("[conditions]\nmethod = \"exact\"\n" + m_folder->addMap("upper"));
    const BatchOutput output = merge();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors,
             QStringLiteral("%1 is of another job\n").arg(file("results/shards/1-of-1.sqlite")));
    QVERIFY(!QFile::exists(file("results/results.csv")));
}

void tst_Shards::otherVersionIsRefused()
{
    QVERIFY(shard(1, 1).status >= 0);
    sqlite3* database = nullptr;
    QCOMPARE(sqlite3_open(file("results/shards/1-of-1.sqlite").toUtf8().constData(), &database),
             SQLITE_OK);
    QCOMPARE(sqlite3_exec(database, "UPDATE run SET version = '0.0.1'", nullptr, nullptr, nullptr),
             SQLITE_OK);
    sqlite3_close(database);
    const BatchOutput output = merge();
    QCOMPARE(output.status, 2);
    QVERIFY(output.errors.startsWith(QStringLiteral("%1 is of version 0.0.1, this is ")
                                         .arg(file("results/shards/1-of-1.sqlite"))));
}

void tst_Shards::otherReferencesAreRefused()
{
    QVERIFY(shard(1, 1).status >= 0);
    m_folder->write("ref2.dat", contents(file("ref2.dat")) + '\n');
    const BatchOutput output = merge();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors,
             QStringLiteral("%1 was calculated with other references or another blank\n")
                 .arg(file("results/shards/1-of-1.sqlite")));
}

void tst_Shards::shardAtWorkIsRefused()
{
    m_folder->addTargets(1500, "more");
    QProcess first;
    m_folder->start(first, {QStringLiteral("--verbose"), QStringLiteral("--shard"),
                            QStringLiteral("1/1"), QStringLiteral("job.toml")});
    first.setReadChannel(QProcess::StandardError);
    QVERIFY(first.waitForReadyRead());
    const BatchOutput output = merge();
    QCOMPARE(output.status, 2);
    QVERIFY(output.errors.startsWith(QStringLiteral("%1 is being written by process %2 on ")
                                         .arg(file("results/shards/1-of-1.sqlite"))
                                         .arg(first.processId())));
    first.kill();
    QVERIFY(first.waitForFinished());
    // What it did until then is not lost.
    QCOMPARE(shard(1, 1).status, 1);
    QCOMPARE(merge().status, 1);
    QCOMPARE(m_folder->results().count('\n'), 1509);
}

void tst_Shards::noShards()
{
    const BatchOutput output = merge();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors,
             QStringLiteral("there is no record of a shard in %1\n").arg(file("results/shards")));
}

// Records of two divisions, between which a target was measured again.
void tst_Shards::disagreementIsDecidedByTheFile()
{
    const QByteArray other = contents(file("scans/80.dat"));
    QVERIFY(shard(1, 2).status >= 0);
    QVERIFY(shard(2, 2).status >= 0);
    m_folder->write("scans/10.dat", other);
    QVERIFY(shard(1, 1).status >= 0);
    QCOMPARE(merge().status, 1);
    const QMap<QString, QByteArray> found = m_folder->resultFiles();
    QDir(file("results")).removeRecursively();
    QCOMPARE(m_folder->run().status, 1);
    QCOMPARE(found, m_folder->resultFiles());
}

void tst_Shards::badArguments_data()
{
    QTest::addColumn<QString>("shard");
    for (const char* shard : {"0/2", "3/2", "1", "1/", "/2", "1/2/3", "a/b", "-1/2", "1/2000000"})
        QTest::newRow(shard) << QString::fromLatin1(shard);
}

void tst_Shards::badArguments()
{
    QFETCH(QString, shard);
    const BatchOutput output = m_folder->run({QStringLiteral("--shard=") + shard});
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors, QStringLiteral("--shard takes K/N, two numbers with 1 <= K <= N <= "
                                           "1000000.\n"));
}

QTEST_GUILESS_MAIN(tst_Shards)
#include "tst_Shards.moc"

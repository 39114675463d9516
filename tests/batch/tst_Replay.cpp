#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QtTest>

#include <sqlite3.h>

/// What a record says is calculated again.
class tst_Replay : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void allTheSame();
    void someOnly();
    void changedInput();
    void missingInput();
    void changedReference();
    void otherVersion();
    void otherFigure();
    void changedImage();
    void folderThatMoved();
    void nothingIsWritten();
    void noRecord();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    BatchOutput replay(const QStringList& names = {}) const
    {
        return m_folder->runPlainly(
            QStringList{QStringLiteral("--replay"), QStringLiteral("results/run.sqlite")} + names);
    }
    void change(const char* statement) const;

    std::unique_ptr<BatchFolder> m_folder;
};

const QByteArray same = "scans/10.dat: the same\nscans/35.dat: the same\nscans/80.dat: the same\n"
                        "area: the same\n";

void tst_Replay::init()
{
    m_folder = std::make_unique<BatchFolder>();
    m_folder->writeJob(m_folder->addMap("area"));
    QCOMPARE(m_folder->run({QStringLiteral("--quiet")}).status, 0);
}

void tst_Replay::change(const char* statement) const
{
    sqlite3* database = nullptr;
    if (sqlite3_open(file("results/run.sqlite").toUtf8().constData(), &database) != SQLITE_OK ||
        sqlite3_exec(database, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("%s", sqlite3_errmsg(database));
    sqlite3_close(database);
}

void tst_Replay::allTheSame()
{
    const BatchOutput output = replay();
    QCOMPARE(output.text, same);
    QCOMPARE(output.errors, QString());
    QCOMPARE(output.status, 0);
    // The job is that of the record, whatever became of its file.
    m_folder->write("job.toml", "nothing");
    QCOMPARE(replay().text, same);
}

void tst_Replay::someOnly()
{
    const BatchOutput output = replay({QStringLiteral("area"), QStringLiteral("scans/35.dat")});
    QCOMPARE(output.text, QByteArray("scans/35.dat: the same\narea: the same\n"));
    QCOMPARE(output.status, 0);
    const BatchOutput unknown = replay({QStringLiteral("scans/36.dat")});
    QCOMPARE(unknown.status, 2);
    QCOMPARE(unknown.text, QByteArray());
    QCOMPARE(unknown.errors, QStringLiteral("scans/36.dat is not in the record\n"));
}

void tst_Replay::changedInput()
{
    m_folder->write("scans/35.dat", contents(file("scans/35.dat")) + '\n');
    const BatchOutput output = replay();
    QCOMPARE(output.text,
             QByteArray(same).replace("35.dat: the same", "35.dat: scans/35.dat changed"));
    QCOMPARE(output.status, 1);
}

void tst_Replay::missingInput()
{
    QVERIFY(QFile::remove(file("scans/35.dat")));
    const BatchOutput output = replay();
    QCOMPARE(output.text,
             QByteArray(same).replace("35.dat: the same",
                                      "35.dat: scans/35.dat is missing: there is no such file"));
    QCOMPARE(output.status, 1);
}

void tst_Replay::changedReference()
{
    m_folder->write("ref1.dat", contents(file("ref1.dat")) + '\n');
    const BatchOutput output = replay();
    // A line feed changes no figure, which is not what is asked.
    QCOMPARE(output.text, QByteArray(same).replace("the same", "ref1.dat changed"));
    QCOMPARE(output.status, 1);
}

void tst_Replay::otherVersion()
{
    change("UPDATE run SET version = '0.0.1'");
    const BatchOutput output = replay({QStringLiteral("scans/35.dat")});
    QVERIFY(output.text.startsWith("scans/35.dat: of version 0.0.1, this is "));
    QCOMPARE(output.text.count(';'), 0);
    QCOMPARE(output.status, 1);
}

// Another program wrote another figure, and sealed it.
void tst_Replay::otherFigure()
{
    const QByteArray before = m_folder->results();
    m_folder->writeJob("[valences]\nref1 = 4\n" + m_folder->addMap("area"));
    QCOMPARE(m_folder->run({QStringLiteral("--quiet")}).status, 0);
    const QByteArray after = m_folder->results();
    const QByteArray was = after.split('\n')[1].split(',')[3];
    const QByteArray is = before.split('\n')[1].split(',')[3];
    QVERIFY(was != is);
    change("UPDATE job SET text = replace(text, 'ref1 = 4', '')");
    const BatchOutput output = replay({QStringLiteral("scans/10.dat")});
    QVERIFY2(output.text.startsWith("scans/10.dat: valence was " + was + ", is " + is +
                                    "; lcf_valence was "),
             output.text.constData());
    QCOMPARE(output.status, 1);
}

void tst_Replay::changedImage()
{
    m_folder->write("images/area_2.txt", contents(file("images/area_2.txt")) + '\n');
    const BatchOutput output = replay();
    QCOMPARE(output.text,
             QByteArray(same).replace("area: the same", "area: images/area_2.txt changed"));
    QCOMPARE(output.status, 1);
}

// Job, inputs and results together.
void tst_Replay::folderThatMoved()
{
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("moved")));
    for (const char* name : {"ref1.dat", "ref2.dat", "blank.dat", "scans", "images", "results"})
        QVERIFY(QFile::rename(file(name),
                              m_folder->file(QStringLiteral("moved/") + QLatin1String(name))));
    const BatchOutput output = m_folder->runPlainly(
        {QStringLiteral("--replay"), QStringLiteral("moved/results/run.sqlite")});
    QCOMPARE(output.text, same);
    QCOMPARE(output.status, 0);
}

void tst_Replay::nothingIsWritten()
{
    const QMap<QString, QByteArray> before = m_folder->resultFiles();
    const QByteArray record = contents(file("results/run.sqlite"));
    QCOMPARE(replay().status, 0);
    QCOMPARE(m_folder->resultFiles(), before);
    QCOMPARE(contents(file("results/run.sqlite")), record);
}

void tst_Replay::noRecord()
{
    const BatchOutput output =
        m_folder->runPlainly({QStringLiteral("--replay"), QStringLiteral("none.sqlite")});
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors, QStringLiteral("there is no record none.sqlite\n"));
    const BatchOutput other =
        m_folder->runPlainly({QStringLiteral("--replay"), QStringLiteral("job.toml")});
    QCOMPARE(other.status, 2);
    QCOMPARE(other.errors, QStringLiteral("%1: is no record of a run; move it away to calculate "
                                          "all anew\n")
                               .arg(file("job.toml")));
}

QTEST_GUILESS_MAIN(tst_Replay)
#include "tst_Replay.moc"

#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QtTest>

#include <csignal>
#include <random>

/// Nothing is lost and nothing is done twice.
class tst_Resume : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void doneIsNotDoneAgain();
    void onlyWhatChangedIsDone();
    void otherSettingsAreDoneAgain();
    void sameSettingsInOtherWords();
    void goneTargetsLeaveTheResults();
    void unreadableIsTriedAgain();
    void killedAnywhere();
    void stopped_data();
    void stopped();
    void ignoredSignalStaysIgnored();
    void secondRunIsRefused();
    void fullDisk();
    void damagedRecordIsRefused();
    void foreignRecordIsRefused();
    void recordIsNoInput();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    /// Names of the targets that a run calculates.
    QStringList calculated(const QStringList& arguments = {}) const
    {
        return m_folder->calculated(arguments);
    }
    QByteArray undisturbed() const;

    std::unique_ptr<BatchFolder> m_folder;
};

void tst_Resume::init()
{
    m_folder = std::make_unique<BatchFolder>();
    m_folder->writeJob();
}

/// What a run into an empty folder writes.
QByteArray tst_Resume::undisturbed() const
{
    QDir(file("results")).removeRecursively();
    if (m_folder->run().status != 0)
        return "the run failed";
    return m_folder->results();
}

// So many that a run of one thread is still at work when its first line has been read; under the
// sanitizers each takes ten times as long.
#ifdef __SANITIZE_ADDRESS__
constexpr int manyTargets = 400;
#else
constexpr int manyTargets = 1500;
#endif

const QStringList all{QStringLiteral("scans/10.dat"), QStringLiteral("scans/35.dat"),
                      QStringLiteral("scans/80.dat")};

void tst_Resume::doneIsNotDoneAgain()
{
    QCOMPARE(calculated(), all);
    const QByteArray before = m_folder->results();
    QVERIFY(QFile::remove(file("results/results.csv")));
    QCOMPARE(calculated(), QStringList());
    QCOMPARE(m_folder->results(), before);
    QCOMPARE(calculated({QStringLiteral("--again")}), all);
    QCOMPARE(m_folder->results(), before);
}

// Of the same length and at the same time: the bytes decide.
void tst_Resume::onlyWhatChangedIsDone()
{
    QCOMPARE(calculated(), all);
    const QDateTime time = QFileInfo(file("scans/35.dat")).lastModified();
    const QByteArray text = contents(file("scans/35.dat"));
    const int place = text.lastIndexOf('9');
    m_folder->write("scans/35.dat", QByteArray(text).replace(place, 1, "8"));
    QFile scan(file("scans/35.dat"));
    QVERIFY(scan.open(QIODevice::ReadWrite));
    QVERIFY(scan.setFileTime(time, QFileDevice::FileModificationTime));
    scan.close();
    m_folder->write("scans/36.dat", text);
    QCOMPARE(calculated(),
             QStringList({QStringLiteral("scans/35.dat"), QStringLiteral("scans/36.dat")}));
    const QByteArray found = m_folder->results();
    QCOMPARE(found, undisturbed());
    m_folder->write("ref1.dat", contents(file("ref1.dat")) + "\n"); // concerns each
    QCOMPARE(calculated().size(), 4);
}

void tst_Resume::otherSettingsAreDoneAgain()
{
    QCOMPARE(calculated(), all);
    m_folder->writeJob("[conditions]\nmethod = \"exact\"\n");
    QCOMPARE(calculated(), all);
    const QByteArray found = m_folder->results();
    QCOMPARE(found, undisturbed());
}

void tst_Resume::sameSettingsInOtherWords()
{
    QCOMPARE(calculated(), all);
    m_folder->write("job.toml",
                    "# a comment\n" + contents(file("job.toml")).replace("8313", "8_313.0"));
    QCOMPARE(calculated(), QStringList());
}

void tst_Resume::goneTargetsLeaveTheResults()
{
    QCOMPARE(calculated(), all);
    QVERIFY(QFile::remove(file("scans/35.dat")));
    QCOMPARE(calculated(), QStringList());
    QCOMPARE(m_folder->results().count("scans/"), 2);
    const QByteArray found = m_folder->results();
    QCOMPARE(found, undisturbed());
}

void tst_Resume::unreadableIsTriedAgain()
{
    m_folder->writeJob({}, "\"scans/*.dat\", \"scans/no spectrum\"");
    m_folder->write("scans/no spectrum", "");
    QCOMPARE(m_folder->run().status, 1);
    // What is no spectrum stays so; the exit status is that of the results.
    const BatchOutput again = m_folder->run({QStringLiteral("--verbose")});
    QCOMPARE(again.status, 1);
    QVERIFY(again.errors.contains(QStringLiteral("scans/no spectrum: there already\n")));
    // What could not be read may be readable by now.
    QVERIFY(QFile::remove(file("scans/no spectrum")));
    QVERIFY(QFile::link(file("scans/35.dat"), file("scans/no spectrum")));
    QCOMPARE(m_folder->run().status, 0);
}

// At any moment, again and again until a run comes through: tables, report and files of maps.
void tst_Resume::killedAnywhere()
{
    const bool full = qEnvironmentVariableIsSet("DROVIK_KILLS");
    const int kills = full ? qEnvironmentVariableIntValue("DROVIK_KILLS") : 10;
    const unsigned seed = qEnvironmentVariableIsSet("DROVIK_SEED")
                              ? static_cast<unsigned>(qEnvironmentVariableIntValue("DROVIK_SEED"))
                              : 1U;
    const int targets = full ? 400 : 60;
    m_folder->addTargets(targets);
    m_folder->writeJob(m_folder->addMap("upper") + m_folder->addMap("lower"));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(undisturbed().count('\n'), targets + 4);
    const int longest = static_cast<int>(timer.elapsed());
    const QMap<QString, QByteArray> expected = m_folder->resultFiles();
    QVERIFY(expected.contains(QStringLiteral("maps.csv")));
    QVERIFY(expected.contains(QStringLiteral("report.html")));
    QVERIFY(expected.contains(QStringLiteral("maps/lower/lower.dat")));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> moment(0, longest);
    const QString unfinished = QStringLiteral(".drovik-");
    int killed = 0;
    int kept = 0;
    for (int runs = 0; killed < kills; ++runs) {
        QVERIFY2(runs < 20 * kills, "the runs are over before they are killed");
        if (killed % 10 == 0 || m_folder->resultFiles() == expected)
            QDir(file("results")).removeRecursively();
        QProcess process;
        m_folder->start(process, {QStringLiteral("job.toml")});
        QVERIFY(process.waitForStarted());
        if (process.waitForFinished(moment(random)))
            continue;
        process.kill();
        process.waitForFinished();
        killed += process.exitStatus() == QProcess::CrashExit ? 1 : 0;
        const QMap<QString, QByteArray> early = m_folder->resultFiles();
        for (auto it = early.begin(); it != early.end(); ++it)
            QVERIFY2(it.value() == expected.value(it.key()) || it.key().contains(unfinished),
                     qPrintable(it.key()));
        const BatchOutput rest = m_folder->run({QStringLiteral("--verbose")});
        QCOMPARE(rest.status, 0);
        kept += rest.errors.count(QStringLiteral(": there already\n"));
        QCOMPARE(m_folder->resultFiles(), expected);
        QDir(file("results")).removeRecursively();
    }
    qInfo("seed %u: %d runs killed within %d ms, %d of %d targets and maps were kept", seed, killed,
          longest, kept, (targets + 5) * killed);
    QVERIFY(kept > 0);
}

void tst_Resume::stopped_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_Resume::stopped()
{
    QFETCH(int, signal);
    const int targets = manyTargets + all.size();
    m_folder->addTargets(manyTargets);
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    m_folder->start(process, {QStringLiteral("--verbose"), QStringLiteral("--jobs"),
                              QStringLiteral("1"), QStringLiteral("job.toml")});
    process.setReadChannel(QProcess::StandardError);
    QVERIFY(process.waitForReadyRead());
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), signal), 0);
    const BatchOutput output = BatchFolder::outputOf(process);
    QCOMPARE(output.status, 128 + signal);
    const QStringList lines = output.errors.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const int done = lines.filter(QStringLiteral(": calculated in ")).size();
    QVERIFY(done > 0 && done < targets);
    QCOMPARE(lines.last(), QStringLiteral("Stopped: %1 of %2 targets are left; the same command "
                                          "goes on with them.")
                               .arg(targets - done)
                               .arg(targets));
    QVERIFY(!QFile::exists(file("results/results.csv")));
    // Each target that was told of is kept.
    QCOMPARE(calculated().size(), targets - done);
    const QByteArray found = m_folder->results();
    QCOMPARE(found, undisturbed());
}

// As after `nohup`.
void tst_Resume::ignoredSignalStaysIgnored()
{
    m_folder->addTargets(1000);
    QProcess process;
    m_folder->start(process,
                    {QStringLiteral("-c"),
                     QStringLiteral("trap '' TERM; exec " BATCH_PROGRAM " --verbose job.toml")},
                    QStringLiteral("bash"));
    process.setReadChannel(QProcess::StandardError);
    QVERIFY(process.waitForReadyRead());
    process.terminate();
    QCOMPARE(BatchFolder::outputOf(process).status, 0);
}

void tst_Resume::secondRunIsRefused()
{
    m_folder->addTargets(1500);
    QProcess first;
    m_folder->start(first, {QStringLiteral("--verbose"), QStringLiteral("job.toml")});
    first.setReadChannel(QProcess::StandardError);
    QVERIFY(first.waitForReadyRead());
    const BatchOutput second = m_folder->run();
    QCOMPARE(second.errors, QStringLiteral("%1 is being written by process %2 on %3\n")
                                .arg(file("results/run.sqlite"))
                                .arg(first.processId())
                                .arg(QSysInfo::machineHostName()));
    QCOMPARE(second.status, 2);
    QCOMPARE(BatchFolder::outputOf(first).status, 0);
    QCOMPARE(m_folder->run().status, 0);
}

// The disk fills up anywhere: it is said once, the record is sound, and with room again the same
// command completes the run.
void tst_Resume::fullDisk()
{
    m_folder->addTargets(60);
    const QByteArray expected = undisturbed();
    const qint64 size = QFileInfo(file("results/run.sqlite")).size();
    QVERIFY(size > 20000);
    for (qint64 limit = 1024; limit < size; limit += size / 7) {
        QDir(file("results")).removeRecursively();
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("results")));
        m_folder->write("results/results.csv", "earlier");
        QProcess process;
        m_folder->start(process,
                        {QStringLiteral("--fsize=%1").arg(limit), QStringLiteral(BATCH_PROGRAM),
                         QStringLiteral("job.toml")},
                        QStringLiteral("prlimit"));
        const BatchOutput output = BatchFolder::outputOf(process);
        QCOMPARE(output.status, 3);
        QVERIFY(output.errors.startsWith(
            QStringLiteral("cannot write %1: ").arg(file("results/run.sqlite"))));
        QCOMPARE(output.errors.count(QLatin1Char('\n')), 1);
        QCOMPARE(m_folder->results(), QByteArray("earlier"));
        QCOMPARE(m_folder->run().status, 0);
        QCOMPARE(m_folder->results(), expected);
    }
    // There is room for the record, but not for the table.
    m_folder->write("results/results.csv", "earlier");
    QProcess process;
    m_folder->start(process,
                    {QStringLiteral("--fsize=%1").arg(expected.size() / 2),
                     QStringLiteral(BATCH_PROGRAM), QStringLiteral("job.toml")},
                    QStringLiteral("prlimit"));
    const BatchOutput output = BatchFolder::outputOf(process);
    QCOMPARE(output.status, 3);
    QCOMPARE(output.errors.count(QLatin1Char('\n')), 1);
    QVERIFY(output.errors.startsWith(QStringLiteral("cannot write ")));
    QCOMPARE(m_folder->results(), QByteArray("earlier"));
}

void tst_Resume::damagedRecordIsRefused()
{
    QCOMPARE(m_folder->run().status, 0);
    QFile record(file("results/run.sqlite"));
    QVERIFY(record.open(QIODevice::ReadWrite) && record.seek(100));
    QVERIFY(record.write(QByteArray(3000, '\x55')) == 3000);
    record.close();
    const QByteArray before = contents(record.fileName());
    const QByteArray results = m_folder->results();
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors, QStringLiteral("%1: the record is damaged; move it away to calculate "
                                           "all anew\n")
                                .arg(record.fileName()));
    QCOMPARE(contents(record.fileName()), before);
    QCOMPARE(m_folder->results(), results);
}

void tst_Resume::foreignRecordIsRefused()
{
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("results")));
    m_folder->write("results/run.sqlite", "a diary");
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors, QStringLiteral("%1: is no record of a run; move it away to calculate "
                                           "all anew\n")
                                .arg(file("results/run.sqlite")));
    QCOMPARE(contents(file("results/run.sqlite")), QByteArray("a diary"));
}

void tst_Resume::recordIsNoInput()
{
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("results")));
    QVERIFY(QFile::link(file("ref1.dat"), file("results/run.sqlite")));
    const QByteArray before = contents(file("ref1.dat"));
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors,
             QStringLiteral("job.toml:7:10: output.folder: %1 would be written over ref1\n")
                 .arg(file("results/run.sqlite")));
    QCOMPARE(contents(file("ref1.dat")), before);
}

QTEST_GUILESS_MAIN(tst_Resume)
#include "tst_Resume.moc"

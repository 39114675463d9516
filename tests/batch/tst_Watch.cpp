#include "batch/Watch.h"
#include "examples/MapSample.h"
#include "examples/StackFiles.h"
#include "system/Signals.h"
#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QtTest>

#include <csignal>
#include <cstdio>

using std::chrono::milliseconds;

/// While the beam is on: new files are analysed as they come.
class tst_Watch : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void growingFileIsNotDue();
    void freshFileIsLookedAtAgain();
    void foldersOfPatterns();
    void renamedIntoPlace();
    void slowWriter();
    void rewritten();
    void removed();
    void emptyBeginning();
    void mapWhoseImagesCome();
    void stackThatComesAndIsRewritten();
    void ownResultsAreNoInput();
    void secondRunIsRefused();
    void withoutNotices();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    void startWatching();
    /// Reads what is said until a line ends with this.
    void await(const QString& end);
    void awaitResults() { await(QStringLiteral("results/report.html")); }
    void stop();
    void isAsOneRun();

    std::unique_ptr<BatchFolder> m_folder;
    std::unique_ptr<QProcess> m_process;
    QStringList m_said;
};

void tst_Watch::init()
{
    m_process.reset();
    m_folder = std::make_unique<BatchFolder>();
    m_folder->writeJob();
    m_said.clear();
}

void tst_Watch::startWatching()
{
    m_process = std::make_unique<QProcess>();
    m_folder->start(*m_process, {QStringLiteral("--watch"), QStringLiteral("--verbose"),
                                 QStringLiteral("job.toml")});
    m_process->setReadChannel(QProcess::StandardError);
    awaitResults();
}

void tst_Watch::await(const QString& end)
{
    m_said.clear();
    while (m_said.isEmpty() || !m_said.last().endsWith(end)) {
        if (!m_process->canReadLine() && !m_process->waitForReadyRead())
            qFatal("\"%s\" is not said", qPrintable(end));
        while (m_process->canReadLine() && (m_said.isEmpty() || !m_said.last().endsWith(end)))
            m_said += QString::fromUtf8(m_process->readLine()).trimmed();
    }
}

void tst_Watch::stop()
{
    m_process->terminate();
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process->exitCode(), 128 + SIGTERM);
}

/// What the watch left is what one run over all would.
void tst_Watch::isAsOneRun()
{
    stop();
    const QMap<QString, QByteArray> found = m_folder->resultFiles();
    QDir(file("results")).removeRecursively();
    QVERIFY(m_folder->run().status >= 0);
    QCOMPARE(found, m_folder->resultFiles());
}

void tst_Watch::growingFileIsNotDue()
{
    WatchedFiles files;
    const QByteArray path = file("new.dat").toUtf8();
    WatchedFiles::Time now{};
    QVERIFY(!files.look(path, now));
    m_folder->write("new.dat", "a");
    QVERIFY(files.look(path, now));
    QVERIFY(files.isPending(path));
    QVERIFY(!files.isDue(path, now + WatchedFiles::quiet - milliseconds(1)));
    QVERIFY(files.isDue(path, now + WatchedFiles::quiet));
    now += WatchedFiles::quiet - milliseconds(1);
    m_folder->write("new.dat", "ab");
    QVERIFY(files.look(path, now)); // it grew: the time begins anew
    QVERIFY(!files.isDue(path, now + milliseconds(1)));
    QVERIFY(files.isDue(path, now + WatchedFiles::quiet));
    QVERIFY(files.anyPending());
    files.setDone(path);
    QVERIFY(!files.isPending(path));
    QVERIFY(!files.anyPending());
    QVERIFY(files.look(path, now + milliseconds(5000)));
    QVERIFY(!files.isDue(path, now + milliseconds(9000)));
    QVERIFY(QFile::remove(file("new.dat")));
    QVERIFY(!files.look(path, now));
}

// The file system's clock may not tell two changes apart that follow each other at once.
void tst_Watch::freshFileIsLookedAtAgain()
{
    WatchedFiles files;
    const WatchedFiles::Time now{};
    files.takeAsDone(file("scans/35.dat").toUtf8(), now);
    QVERIFY(files.isPending(file("scans/35.dat").toUtf8()));
    files.takeAsDone(QByteArrayLiteral("/etc/passwd"), now);
    QVERIFY(!files.isPending(QByteArrayLiteral("/etc/passwd")));
}

void tst_Watch::foldersOfPatterns()
{
    const auto folders = [this](const QString& pattern) {
        Job job;
        job.folder = m_folder->path();
        job.targets = {{pattern, {}}};
        return watchedFolders(job);
    };
    const auto below = [this](const char* name) { return file(name).toUtf8(); };
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("days/one/x")));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("days/two")));
    QCOMPARE(folders(QStringLiteral("scans/*.dat")), QByteArrayList({below("scans")}));
    QCOMPARE(folders(QStringLiteral("*.dat")), QByteArrayList({m_folder->path().toUtf8()}));
    QCOMPARE(folders(QStringLiteral("none/deep/*.dat")),
             QByteArrayList({m_folder->path().toUtf8()}));
    QCOMPARE(folders(QStringLiteral("days/*/*.dat")),
             QByteArrayList({below("days"), below("days/one"), below("days/two")}));
    QCOMPARE(folders(file("days/o*/x/a.dat")),
             QByteArrayList({below("days"), below("days/one/x")}));
    // The stack of a region is not there yet.
    Job job;
    job.folder = m_folder->path();
    job.stackTargets.resize(1);
    job.stackTargets[0].stack.source.path = file("scans/p_*.tif");
    QCOMPARE(watchedFolders(job), QByteArrayList({below("scans")}));
}

void tst_Watch::renamedIntoPlace()
{
    startWatching();
    QCOMPARE(m_folder->results().count('\n'), 4);
    m_folder->write("scans/.36", contents(file("scans/35.dat")));
    QVERIFY(QFile::rename(file("scans/.36"), file("scans/36.dat")));
    awaitResults();
    QCOMPARE(m_said.filter(QStringLiteral("calculated")).size(), 1);
    QCOMPARE(m_said.filter(QStringLiteral("scans/36.dat: calculated in ")).size(), 1);
    isAsOneRun();
}

// One that pauses for so long that its file looks whole.
void tst_Watch::slowWriter()
{
    const QByteArray text = contents(file("scans/35.dat"));
    startWatching();
    QFile scan(file("scans/36.dat"));
    QVERIFY(scan.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QCOMPARE(scan.write(text.left(text.size() / 2)), text.size() / 2);
    awaitResults();
    const QByteArray half = m_folder->results();
    QCOMPARE(half.count('\n'), 5);
    QVERIFY(scan.write(text.mid(text.size() / 2)) > 0);
    awaitResults();
    QVERIFY(m_folder->results() != half);
    isAsOneRun();
}

void tst_Watch::rewritten()
{
    startWatching();
    const QByteArray before = m_folder->results();
    m_folder->write("scans/35.dat", contents(file("scans/80.dat")));
    awaitResults();
    QVERIFY(m_folder->results() != before);
    isAsOneRun();
}

void tst_Watch::removed()
{
    startWatching();
    QVERIFY(QFile::remove(file("scans/35.dat")));
    awaitResults();
    QCOMPARE(m_folder->results().count('\n'), 3);
    isAsOneRun();
}

void tst_Watch::emptyBeginning()
{
    QVERIFY(QDir(file("scans")).rename(file("scans"), file("elsewhere")));
    startWatching();
    QCOMPARE(m_folder->results().count('\n'), 1);
    QVERIFY(QDir(file("scans")).rename(file("elsewhere"), file("scans")));
    awaitResults();
    QCOMPARE(m_folder->results().count('\n'), 4);
    isAsOneRun();
}

void tst_Watch::mapWhoseImagesCome()
{
    m_folder->writeJob(m_folder->addMap("area"));
    QVERIFY(QFile::rename(file("images/area_4.txt"), file("later.txt")));
    startWatching();
    QVERIFY(!QFile::exists(file("results/maps/area/area.dat")));
    QVERIFY(QFile::rename(file("later.txt"), file("images/area_4.txt")));
    awaitResults();
    QVERIFY(QFile::exists(file("results/maps/area/area.dat")));
    m_folder->write("images/area_2.txt", contents(file("images/area_1.txt")));
    awaitResults();
    isAsOneRun();
}

void tst_Watch::stackThatComesAndIsRewritten()
{
    m_folder->writeJob("[[target]]\nname = \"grain\"\nstack = \"scan.h5\"\n");
    MapSample sample;
    const auto put = [&] {
        const CountedStack stack = countedStack(sample, mapEnergies());
        return writeExchange(file("scan.new"), stack) &&
               std::rename(QFile::encodeName(file("scan.new")).constData(),
                           QFile::encodeName(file("scan.h5")).constData()) == 0;
    };
    startWatching();
    QCOMPARE(m_folder->results().count('\n'), 4);
    QVERIFY(put());
    awaitResults();
    const QByteArray before = m_folder->results();
    QCOMPARE(before.count("\ngrain,"), 1);
    QCOMPARE(m_said.filter(QStringLiteral("calculated")).size(), 1);
    sample.rows = 12;
    QVERIFY(put());
    awaitResults();
    QVERIFY(m_folder->results() != before);
    QCOMPARE(m_said.filter(QStringLiteral("grain: calculated in ")).size(), 1);
    isAsOneRun();
}

void tst_Watch::ownResultsAreNoInput()
{
    QVERIFY(QFile::remove(file("scans/10.dat")));
    m_folder->writeJob({}, "\"scans/*.dat\", \"*/results.csv\"");
    startWatching();
    QCOMPARE(m_folder->results().count('\n'), 3);
    m_folder->write("scans/10.dat", contents(file("scans/35.dat")));
    awaitResults();
    QCOMPARE(m_folder->results().count('\n'), 4);
    stop();
}

void tst_Watch::secondRunIsRefused()
{
    startWatching();
    QCOMPARE(m_folder->run().status, 2);
    stop();
}

// On a network file system nothing is told.
void tst_Watch::withoutNotices()
{
    JobError error;
    const QByteArray text = contents(file("job.toml"));
    const auto job = parseJob(text, m_folder->path(), error);
    QVERIFY(job);
    auto prepared = prepareList(file("job.toml"), text, *job, {}, {}, error);
    QVERIFY(prepared);
    QStringList names;
    const WatchActions actions{[&](const PreparedJob& due, bool& any) -> std::optional<int> {
                                   any = true;
                                   for (const TargetJob& target : due.list.targets)
                                       names += QFileInfo(target.path()).fileName();
                                   return std::nullopt;
                               },
                               [&](const PreparedJob& all) -> std::optional<int> {
                                   if (all.list.targets.size() == 3)
                                       m_folder->write("scans/99.dat", "new");
                                   else
                                       raise(SIGTERM);
                                   return std::nullopt;
                               }};
    keepStopSignals();
    FolderWatch folders(false);
    QCOMPARE(watchJob(*prepared, {}, actions, folders), 128 + SIGTERM);
    QCOMPARE(names, QStringList({QStringLiteral("10.dat"), QStringLiteral("35.dat"),
                                 QStringLiteral("80.dat"), QStringLiteral("99.dat")}));
}

QTEST_GUILESS_MAIN(tst_Watch)
#include "tst_Watch.moc"

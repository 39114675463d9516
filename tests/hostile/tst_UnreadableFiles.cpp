#include "tests/hostile/HostileFiles.h"
#include "tests/model/PanelSession.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsData.h"
#include "input/MapReader.h"
#include "input/SpectrumReader.h"
#include "system/InputFile.h"
#include "tests/support/PanelActions.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace
{

/// From this byte on files cannot be read.
std::atomic<std::int64_t> badFrom{std::numeric_limits<std::int64_t>::max()};

class BadBlock
{
public:
    explicit BadBlock(std::int64_t from) { badFrom = from; }
    ~BadBlock() { badFrom = std::numeric_limits<std::int64_t>::max(); }
    BadBlock(const BadBlock&) = delete;
    BadBlock& operator=(const BadBlock&) = delete;
};

QStringList shown(const FourPs& panel)
{
    QStringList texts{panel.CalcRes->text(), panel.LCFRes->text()};
    for (const AEPoint* point : qAsConst(panel.ePoints))
        texts += {point->Mut1->text(), point->Mut2->text(), point->MutT->text(),
                  point->MutBlank->text()};
    return texts;
}

} // namespace

/// A disk with a bad block: this function stands before the system's.
extern "C" ssize_t pread(int file, void* to, size_t count, off_t offset)
{
    if (offset + static_cast<off_t>(count) > badFrom) {
        if (offset >= badFrom) {
            errno = EIO;
            return -1;
        }
        count = static_cast<size_t>(badFrom - offset);
    }
    return syscall(SYS_pread64, file, to, count, offset);
}

/// Files that cannot be read to their end, have no end, or have none of what they promise: refused
/// at once, with one line where the window has to say it, and nothing of before is lost.
class tst_UnreadableFiles : public QObject
{
    Q_OBJECT
private slots:
    void aBadBlockInASpectrumRefusesIt();
    void aBadBlockInAMapRefusesIt();
    void filesOfTheSystemAreEmpty_data();
    void filesOfTheSystemAreEmpty();
    void aFileOfHolesIsRefusedAtOnce();
    void whatIsAppendedWhileReadingIsNotRead();
    void aPipeThatTakesTheNameIsNotWaitedFor();
    void aSpectrumThatDoesNotFitInMemory();
};

void tst_UnreadableFiles::aBadBlockInASpectrumRefusesIt()
{
    const QTemporaryDir folder;
    PanelSession session(1, folder.path(), false);
    FourPs& panel = session.panel();
    user::click(panel.TRVic2);
    const QString path =
        hostile::write(folder.filePath(QStringLiteral("target")),
                       "Offset\n" + QByteArray("0 13.2 1 6 5\n0 13.1 1 7 5\n").repeated(10000));
    const QStringList before = shown(panel);
    QVERIFY(before.first().startsWith(QLatin1String("4ps2")));
    const int lines = user::messages(panel).size();
    {
        const BadBlock half(100000);
        user::drop(panel.TargetFile, path);
    }
    const QStringList since = user::messagesSince(panel, lines);
    QCOMPARE(since.first(), QStringLiteral("The spectrum file [%1] cannot be read.").arg(path));
    QCOMPARE(since.filter(QStringLiteral("cannot be read")).size(), 1);
    QCOMPARE(shown(panel), before);
    user::drop(panel.TargetFile, path);
    QVERIFY(shown(panel) != before);
}

void tst_UnreadableFiles::aBadBlockInAMapRefusesIt()
{
    const QTemporaryDir folder;
    PanelSession session(2, folder.path(), false);
    FourPs& panel = session.panel();
    const QString path = hostile::write(folder.filePath(QStringLiteral("map")),
                                        "# AXIS 0 x mm 0 1 500\n# AXIS 1 y mm 0 1 400\n" +
                                            QByteArray("12 34 0.5 1\n").repeated(200000));
    AEPoint* point = panel.ePoints.at(2);
    const std::size_t records = point->mapData().mut.size();
    QVERIFY(records > 0);
    const int lines = user::messages(panel).size();
    {
        const BadBlock half(1200000);
        user::drop(point->MapFile, path);
    }
    QCOMPARE(user::messagesSince(panel, lines),
             QStringList{QStringLiteral("The 2D data file [%1] cannot be read.").arg(path)});
    QVERIFY(!point->mapData().valid);
    QCOMPARE(point->mapData().mut.size(), records);
}

void tst_UnreadableFiles::filesOfTheSystemAreEmpty_data()
{
    QTest::addColumn<QString>("path");
    for (const char* path : {"/proc/kmsg", "/proc/self/pagemap", "/proc/self/mem", "/proc/cpuinfo"})
        QTest::newRow(path) << QString::fromLatin1(path);
}

// Some of them block, some never end; their size says that there is nothing in them.
void tst_UnreadableFiles::filesOfTheSystemAreEmpty()
{
    QFETCH(QString, path);
    if (!QFileInfo(path).isFile() || !QFileInfo(path).isReadable())
        QSKIP("there is no such file here");
    AXafsData spectrum;
    QVERIFY(!spectrum.read(path));
    QVERIFY(spectrum.points.empty());
    QCOMPARE(spectrum.refusal, QString());
    MapData map;
    const MapReadResult result = readMapData(path, map);
    QCOMPARE(result.outcome, ReadOutcome::Read);
    QVERIFY(!map.valid);
}

void tst_UnreadableFiles::aFileOfHolesIsRefusedAtOnce()
{
    const QTemporaryDir folder;
    const QString path =
        hostile::write(folder.filePath(QStringLiteral("holes")), "Offset\n0 13 0 2 1\n");
    QVERIFY(QFile::resize(path, qint64{20} << 30));
    AXafsData data;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!data.read(path));
    QVERIFY2(clock.elapsed() < 2000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(data.refusal, QStringLiteral("The spectrum file [%1] is too large.").arg(path));
    // Small enough for a spectrum, but a line of nothing but holes is none.
    QVERIFY(QFile::resize(path, qint64{1} << 30));
    QVERIFY(!data.read(path));
    QCOMPARE(data.refusal, QStringLiteral("The spectrum file [%1] is too large.").arg(path));
}

// A measurement that goes on: each row that is read is followed by others.
void tst_UnreadableFiles::whatIsAppendedWhileReadingIsNotRead()
{
    const QTemporaryDir folder;
    constexpr int rows = 20000;
    const QByteArray row = "0 13.2 1 6 5\n";
    const QString path =
        hostile::write(folder.filePath(QStringLiteral("growing")), "Offset\n" + row.repeated(rows));
    const std::unique_ptr<InputFile> file = InputFile::open(path);
    QVERIFY(file);
    QFile more(path);
    QVERIFY(more.open(QIODevice::Append));
    QCOMPARE(more.write(row.repeated(rows)), qint64{row.size()} * rows);
    more.close();
    SpectrumPoints points;
    QCOMPARE(readSpectrum(*file, points), ReadOutcome::Read);
    QCOMPARE(points.size(), std::size_t{rows});
    // A file that has become shorter is not what it was.
    QVERIFY(more.resize(1000));
    QCOMPARE(readSpectrum(*file, points), ReadOutcome::Unreadable);
    QCOMPARE(points.size(), std::size_t{rows});
}

// The file's name belongs to a file and to a pipe in turn, as fast as they can be exchanged.
void tst_UnreadableFiles::aPipeThatTakesTheNameIsNotWaitedFor()
{
    const QTemporaryDir folder;
    const QByteArray name = QFile::encodeName(folder.filePath(QStringLiteral("name")));
    const QByteArray pipe = QFile::encodeName(folder.filePath(QStringLiteral("pipe")));
    const QByteArray file = QFile::encodeName(
        hostile::write(folder.filePath(QStringLiteral("file")), "Offset\n0 13 0 2 1\n"));
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    std::atomic<bool> done{false};
    std::thread exchange([&] {
        const QByteArray next = name + ".next";
        for (bool isFile = false; !done; isFile = !isFile) {
            link(isFile ? file.constData() : pipe.constData(), next.constData());
            std::rename(next.constData(), name.constData());
            unlink(next.constData()); // two names of one file stay both
        }
    });
    int opened = 0;
    int refused = 0;
    for (int i = 0; i < 20000; ++i)
        ++(InputFile::open(QFile::decodeName(name)) ? opened : refused);
    done = true;
    exchange.join();
    QVERIFY(opened > 0);
    QVERIFY(refused > 0);
}

// A process with little memory: the program says so, ends in order, and a small one still works.
void tst_UnreadableFiles::aSpectrumThatDoesNotFitInMemory()
{
    if (hostile::memoryIsPadded())
        QSKIP("the sanitizers need more address space than there is here");
    const QTemporaryDir folder;
    const QString large = folder.filePath(QStringLiteral("large"));
    hostile::write(large, "Offset\n" + QByteArray("0 1 0 2 1\n").repeated(12 << 20));
    hostile::write(folder.filePath(QStringLiteral("small")), "Offset\n0 13 0 2 1\n");
    const QString job = hostile::write(folder.filePath(QStringLiteral("job.toml")),
                                       "[files]\nref1 = \"small\"\nref2 = \"large\"\n");
    QProcess batch;
    batch.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"), QStringLiteral("ulimit -v 400000; exec \"$0\" \"$1\""),
                 QStringLiteral(BATCH_PROGRAM), job});
    QVERIFY(batch.waitForFinished(60000));
    QCOMPARE(batch.exitStatus(), QProcess::NormalExit);
    const QByteArray error = batch.readAllStandardError();
    QCOMPARE(batch.exitCode(), 2);
    QVERIFY2(error.contains("large"), error.constData());
    QCOMPARE(batch.readAllStandardOutput(), QByteArray());
}

QTEST_MAIN(tst_UnreadableFiles)
#include "tst_UnreadableFiles.moc"

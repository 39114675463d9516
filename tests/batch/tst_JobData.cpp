#include "batch/JobData.h"
#include "tests/support/Files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>

namespace
{

/// Tells which files of a folder are opened from now on. Closing is listened to as well, since the
/// system joins two equal events that follow one another.
class OpenedFiles
{
public:
    explicit OpenedFiles(const QString& folder) : m_events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        if (inotify_add_watch(m_events, QFile::encodeName(folder), IN_OPEN | IN_CLOSE) < 0)
            qFatal("cannot watch the folder");
    }
    ~OpenedFiles() { close(m_events); }
    Q_DISABLE_COPY(OpenedFiles)

    QStringList names() const
    {
        alignas(inotify_event) std::array<char, 4096> bytes;
        const ssize_t size = read(m_events, bytes.data(), bytes.size());
        QStringList found;
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(&bytes[std::size_t(at)]);
            if ((event->mask & IN_OPEN) != 0)
                found.append(QFile::decodeName(event->name));
            at += ssize_t(sizeof(inotify_event) + event->len);
        }
        return found;
    }

private:
    int m_events;
};

} // namespace

/// The files of a job, read without a panel.
class tst_JobData : public QObject
{
    Q_OBJECT

private slots:
    void mapsOfOneScanKeepItsPositionsOnce();
    void lastEnergyOfAHeaderIsTaken();
    void eachFileIsOpenedOnce();

private:
    QString file(const char* name, const QByteArray& text) const;

    QTemporaryDir m_dir;
};

QString tst_JobData::file(const char* name, const QByteArray& text) const
{
    return create(m_dir.filePath(QLatin1String(name)), text);
}

void tst_JobData::mapsOfOneScanKeepItsPositionsOnce()
{
    const QByteArray axes = "# AXIS 0 a b c d 2\n# AXIS 1 a b c d 1\n";
    Job job;
    job.points.emplace(3);
    (*job.points)[0].map.path = file("one", axes + "1 2 3 4\n5 6 7 8\n");
    (*job.points)[1].map.path = file("two", axes + "1 2 9 9\n5 6 9 9\n");
    (*job.points)[2].map.path = file("moved", axes + "1 2 3 4\n5 6.5 7 8\n");
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    QVERIFY2(data, qPrintable(error.reason));
    QCOMPARE(data->maps[0].positions->size(), std::size_t{2});
    QVERIFY(data->maps[1].positions == data->maps[0].positions);
    QVERIFY(data->maps[2].positions != data->maps[0].positions);
}

void tst_JobData::lastEnergyOfAHeaderIsTaken()
{
    const QByteArray axes = "# AXIS 0 a b c d 1\n# AXIS 1 a b c d 1\n";
    Job job;
    job.points.emplace(2);
    (*job.points)[0].energy = QStringLiteral("8313");
    (*job.points)[1].energy = QStringLiteral("8381");
    (*job.points)[1].map.path =
        file("twice", axes + "# ENERGY = 7090 eV\n# ENERGY = 7125.5 eV\n1 2 3 4\n");
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    QVERIFY2(data, qPrintable(error.reason));
    QCOMPARE(data->settings.points[0].energy, std::optional(8313.0));
    QCOMPARE(data->settings.points[1].energy, std::optional(7125.5));
}

// The file that is found to open is the one that is read, even if another takes its name meanwhile.
void tst_JobData::eachFileIsOpenedOnce()
{
    Job job;
    job.spectra[SpectrumSet::Target].path = file("spectrum", "Offset\n1 2 3 4 5\n");
    job.points.emplace(1);
    job.points->front().map.path =
        file("image", "# AXIS 0 a b c d 1\n# AXIS 1 a b c d 1\n1 2 3 4\n");
    const OpenedFiles opened(m_dir.path());
    JobError error;
    QVERIFY2(readJobData(job, error), qPrintable(error.reason));
    QCOMPARE(opened.names(), QStringList({QStringLiteral("spectrum"), QStringLiteral("image")}));
}

QTEST_GUILESS_MAIN(tst_JobData)
#include "tst_JobData.moc"

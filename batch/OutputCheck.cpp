#include "batch/OutputCheck.h"

#include "batch/InputFiles.h"
#include "batch/MapsRun.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace
{

/// Looks at all that a run with an output folder writes.
class OutputCheck
{
public:
    OutputCheck(const Job& job, const QString& jobPath, const std::vector<TargetJob>& targets,
                const std::vector<MapJob>& maps)
        : m_job(job), m_maps(maps), m_inputs(job, jobPath)
    {
        m_inputs.add(targets);
        m_inputs.add(maps);
    }

    std::optional<JobError> check(const QStringList& files)
    {
        const QDir folder(m_job.output.path);
        QString wrong = QFileInfo(folder.path()).isFile()
                            ? QStringLiteral("the output folder is a file: %1").arg(folder.path())
                            : asFolder(folder.path());
        for (const QString& file : files)
            if (wrong.isEmpty())
                wrong = asFile(file);
        if (wrong.isEmpty())
            wrong = below(folder.filePath(QStringLiteral("pictures")));
        if (!wrong.isEmpty())
            return JobError{m_job.output.place, wrong};
        for (const MapJob& map : m_maps)
            if (wrong = below(mapFolder(m_job, map)); !wrong.isEmpty())
                return JobError{map.place, wrong};
        return std::nullopt;
    }

private:
    /// Why no folder can be made here; empty where it can, or is there.
    static QString asFolder(const QString& path)
    {
        for (QFileInfo place(path); !place.isDir(); place = QFileInfo(place.path())) {
            if (place.exists() || place.isSymLink())
                return QStringLiteral("%1 is no folder").arg(place.filePath());
            if (place.path() == place.filePath())
                break;
        }
        return {};
    }

    QString asFile(const QString& path)
    {
        const QFileInfo file(path);
        if (file.isDir())
            return QStringLiteral("%1 is a folder").arg(path);
        if (const QString lost = m_inputs.lostBy(path); !lost.isEmpty())
            return QStringLiteral("%1 would be written over %2").arg(path, lost);
        return {};
    }

    /// A folder that the run fills with files of its own.
    QString below(const QString& path)
    {
        if (QString wrong = asFolder(path); !wrong.isEmpty())
            return wrong;
        QDirIterator files(path,
                           QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            const QFileInfo info = files.fileInfo();
            if (info.isSymLink() && info.isDir())
                return QStringLiteral("%1 is a link to another folder").arg(file);
            QString lost = info.isDir() ? QString() : asFile(file);
            if (!lost.isEmpty())
                return lost;
        }
        return {};
    }

    const Job& m_job;
    const std::vector<MapJob>& m_maps;
    InputFiles m_inputs;
};

} // namespace

std::optional<JobError> checkOutputs(const Job& job, const QString& jobPath,
                                     const std::vector<TargetJob>& targets,
                                     const std::vector<MapJob>& maps, const QStringList& files)
{
    return OutputCheck(job, jobPath, targets, maps).check(files);
}

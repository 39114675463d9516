#include "batch/ResultPath.h"

#include "results/HistogramFile.h"
#include "system/SafeFile.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace
{

struct ReadFile {
    QString what;
    QString path;
};

std::vector<ReadFile> filesReadBy(const Job& job, const QString& jobPath)
{
    std::vector<ReadFile> files{{QStringLiteral("the job itself"), jobPath}};
    for (std::size_t i = 0; i < spectrumKeys.size(); ++i)
        files.push_back({QLatin1String(spectrumKeys[i]), job.spectra[i].path});
    for (std::size_t i = 0; job.points && i < job.points->size(); ++i)
        files.push_back(
            {QStringLiteral("the map of [[point]] %1").arg(i + 1), (*job.points)[i].map.path});
    return files;
}

/// One file by whatever names and links.
bool areSame(const QString& path, const QString& other)
{
    struct stat a = {};
    struct stat b = {};
    return stat(QFile::encodeName(path).constData(), &a) == 0 &&
           stat(QFile::encodeName(other).constData(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

/// What of the files that the job reads would be lost; empty if nothing.
QString lostBy(const QString& written, const std::vector<ReadFile>& files)
{
    for (const ReadFile& file : files)
        if (!written.isEmpty() && !file.path.isEmpty() && areSame(written, file.path))
            return file.what;
    return {};
}

QString whyUnwritable(const QString& path)
{
    const QFileInfo file(path);
    const QString folder = file.absolutePath();
    if (!QFileInfo(folder).isDir())
        return QStringLiteral("there is no folder %1").arg(folder);
    if (!file.exists())
        return QStringLiteral("no file can be made in %1").arg(folder);
    return file.isFile() ? QStringLiteral("there is no permission to write it")
                         : QStringLiteral("it is no regular file");
}

} // namespace

std::optional<JobError> checkResultPath(const Job& job, const QString& jobPath)
{
    const QString path = job.mapResult.path;
    const auto wrong = [&](const QString& reason) { return JobError{job.mapResult.place, reason}; };
    if (path.isEmpty())
        return std::nullopt;
    if (QFileInfo(path).isDir())
        return wrong(QStringLiteral("map_result is a folder: %1").arg(path));
    const std::vector<ReadFile> files = filesReadBy(job, jobPath);
    if (const QString lost = lostBy(path, files); !lost.isEmpty())
        return wrong(QStringLiteral("map_result would be written over %1: %2").arg(lost, path));
    for (const QString& tag :
         {QString::fromLatin1(valenceHistogramTag), QString::fromLatin1(thicknessHistogramTag)}) {
        const QString beside = histogramFile(path, tag);
        if (const QString lost = lostBy(beside, files); !lost.isEmpty())
            return wrong(
                QStringLiteral("the histogram file beside map_result would be written over %1: %2")
                    .arg(lost, beside));
    }
    if (job.calculateMap && !SafeFile(path).open())
        return wrong(
            QStringLiteral("map_result %1 cannot be written: %2").arg(path, whyUnwritable(path)));
    return std::nullopt;
}

std::optional<JobError> checkOutput(const Job& job, const QString& jobPath,
                                    const std::vector<JobFilePath>& targets, const QString& path)
{
    const auto wrong = [&](const QString& reason) { return JobError{job.output.place, reason}; };
    const QFileInfo folder(job.output.path);
    if (folder.exists() && !folder.isDir())
        return wrong(QStringLiteral("the output folder is a file: %1").arg(job.output.path));
    if (QFileInfo(path).isDir())
        return wrong(QStringLiteral("%1 is a folder").arg(path));
    std::vector<ReadFile> files = filesReadBy(job, jobPath);
    for (const JobFilePath& target : targets)
        files.push_back({QStringLiteral("the target %1").arg(target.path), target.path});
    if (const QString lost = lostBy(path, files); !lost.isEmpty())
        return wrong(QStringLiteral("%1 would be written over %2").arg(path, lost));
    return std::nullopt;
}

#include "batch/ResultPath.h"

#include "batch/InputFiles.h"
#include "results/HistogramFile.h"
#include "system/SafeFile.h"

#include <QFileInfo>

namespace
{

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
    InputFiles files(job, jobPath);
    if (const QString lost = files.lostBy(path); !lost.isEmpty())
        return wrong(QStringLiteral("map_result would be written over %1: %2").arg(lost, path));
    for (const QString& tag :
         {QString::fromLatin1(valenceHistogramTag), QString::fromLatin1(thicknessHistogramTag)}) {
        const QString beside = histogramFile(path, tag);
        if (const QString lost = files.lostBy(beside); !lost.isEmpty())
            return wrong(
                QStringLiteral("the histogram file beside map_result would be written over %1: %2")
                    .arg(lost, beside));
    }
    if (job.calculateMap && !SafeFile(path).open())
        return wrong(
            QStringLiteral("map_result %1 cannot be written: %2").arg(path, whyUnwritable(path)));
    return std::nullopt;
}

#include "batch/PreparedJob.h"

#include "batch/JobKey.h"
#include "batch/OutputCheck.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace
{

/// All files that a run writes into its folder beside those of maps and pictures.
QStringList filesOf(const Job& job, const Shard& shard)
{
    const RunFolder folder(job);
    const QString record = shard.isAll() ? folder.record() : folder.record(shard);
    return {record,           record + QStringLiteral("-journal"),
            folder.results(), folder.maps(),
            folder.report(),  folder.hdf5()};
}

QByteArray nameOf(const Job& job, const JobFilePath& spectrum)
{
    return QDir(job.folder).relativeFilePath(spectrum.path).toUtf8();
}

} // namespace

JobList JobList::part(const Shard& shard) const
{
    if (shard.isAll())
        return *this;
    JobList list;
    for (std::size_t i = 0; i < targets.size(); ++i)
        if (shard.has(i))
            list.targets.push_back(targets[i]);
    for (std::size_t i = 0; i < maps.size(); ++i)
        if (shard.has(targets.size() + i))
            list.maps.push_back(maps[i]);
    return list;
}

std::optional<JobList> listOf(const Job& job, JobError& error)
{
    auto targets = targetJobs(job, error);
    if (!targets)
        return std::nullopt;
    auto maps = mapList(job, error);
    if (!maps)
        return std::nullopt;
    return JobList{std::move(*targets), std::move(*maps)};
}

JobList presentListOf(const Job& job)
{
    return {presentTargetJobs(job), presentMaps(job)};
}

std::optional<PreparedJob> prepareList(const QString& path, const QByteArray& text, const Job& job,
                                       const JobList& list, const Shard& shard, JobError& error)
{
    if (auto wrong = checkOutputs(job, path, list.targets, list.maps, filesOf(job, shard))) {
        error = *wrong;
        return std::nullopt;
    }
    auto common = readJobData(job, error);
    if (!common)
        return std::nullopt;
    return PreparedJob{
        path, text, settingsOfTargets(text), job, list.part(shard), std::move(*common)};
}

std::optional<PreparedJob> prepareJob(const QString& path, const QByteArray& text, const Job& job,
                                      const Shard& shard, JobError& error)
{
    const auto list = listOf(job, error);
    if (list)
        if (const auto wrong = checkRegions(list->targets)) {
            error = *wrong;
            return std::nullopt;
        }
    auto prepared = list ? prepareList(path, text, job, *list, shard, error) : std::nullopt;
    if (!prepared || !prepared->common.alignment)
        return prepared;
    const Alignment& alignment = *prepared->common.alignment;
    for (const TargetJob& target : list->targets)
        if (const QString why = alignment.whyNotNamed(target.path()); !why.isEmpty()) {
            error = {alignment.tablePlace(), why};
            return std::nullopt;
        }
    return prepared;
}

std::vector<RecordedFile> commonInputs(const PreparedJob& prepared)
{
    std::vector<RecordedFile> inputs;
    for (std::size_t i = 0; i < prepared.common.digests.size(); ++i)
        if (const auto& digest = prepared.common.digests[i])
            inputs.push_back({nameOf(prepared.job, prepared.job.spectra[i]), *digest});
    if (prepared.common.alignment)
        for (const RecordedFile& file : prepared.common.alignment->inputs())
            inputs.push_back(file);
    return inputs;
}

RecordedRun recordedRun(const PreparedJob& prepared, const Shard& shard, const QString& record)
{
    RecordedRun run;
    run.version = programVersion();
    run.jobText = prepared.text;
    // By the folders' true places, so that both can move together.
    const QDir folder(QFileInfo(QFileInfo(record).path()).canonicalFilePath());
    const QFileInfo job(prepared.path);
    run.jobFile = QFile::encodeName(folder.relativeFilePath(
        QDir(QFileInfo(job.path()).canonicalFilePath()).filePath(job.fileName())));
    if (!shard.isAll())
        run.shard = shard.text().toUtf8();
    run.began = QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toUtf8();
    run.inputs = commonInputs(prepared);
    return run;
}

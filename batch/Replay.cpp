#include "batch/Replay.h"

#include "batch/Console.h"
#include "batch/JobKey.h"
#include "batch/MapsRecord.h"
#include "batch/SourceFile.h"
#include "batch/TargetRow.h"
#include "system/InputFile.h"
#include "system/OrderedHandOver.h"
#include "system/Signals.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <map>

namespace
{

/// A run of the record, with its job as it would be today.
struct ReplayedRun {
    Job job;
    std::optional<JobData> common;
    QHash<QString, TargetJob> regions;
    std::vector<MapJob> maps;
    QStringList differences; ///< from what the run had, for all its rows
};

/// What the record says of one input, against the file of today.
/// @param name  of the file, in what is said
QString inputDifference(const QString& path, const QString& name,
                        const std::optional<Digest>& recorded)
{
    QString why;
    const auto source = SourceFile::open(path, why);
    if (!source)
        return recorded ? QStringLiteral("%1 is missing: %2").arg(name, why) : QString();
    return source->digest() == recorded ? QString() : QStringLiteral("%1 changed").arg(name);
}

/// The same of a file that several targets may be made from.
QString sharedDifference(const QString& path, const RecordedFile& recorded, FileDigests& digests)
{
    const QString name = QString::fromUtf8(recorded.path);
    if (!InputFile::open(path))
        return inputDifference(path, name, recorded.digest);
    return digests.of(path) == recorded.digest ? QString() : QStringLiteral("%1 changed").arg(name);
}

ReplayedRun replayed(const RecordedRun& run, const QString& record)
{
    ReplayedRun replay;
    if (run.version != programVersion())
        replay.differences +=
            QStringLiteral("of version %1, this is %2")
                .arg(QString::fromUtf8(run.version), QString::fromUtf8(programVersion()));
    const QDir folder(QFileInfo(QFileInfo(record).absolutePath()).canonicalFilePath());
    const QString place =
        QFileInfo(QDir::cleanPath(folder.filePath(QFile::decodeName(run.jobFile)))).path();
    JobError error;
    auto job = parseJob(run.jobText, place, error);
    if (!job) {
        replay.differences += QStringLiteral("the job cannot be read: ") + error.reason;
        return replay;
    }
    replay.job = *job;
    replay.job.pictures = false;
    replay.job.report = false;
    for (const RecordedFile& input : run.inputs) {
        const QString name = QString::fromUtf8(input.path);
        const QString wrong = inputDifference(QDir(place).filePath(name), name, input.digest);
        if (!wrong.isEmpty())
            replay.differences += wrong;
    }
    replay.common = readJobData(replay.job, error);
    replay.regions = regionsByName(replay.job);
    if (const auto maps = mapList(replay.job, error))
        replay.maps = *maps;
    return replay;
}

QStringList figureDifferences(const QByteArrayList& columns, const QByteArrayList& before,
                              const QByteArrayList& now)
{
    QStringList found;
    for (int i = 0; i < columns.size(); ++i)
        if (before[i] != now[i])
            found +=
                QStringLiteral("%1 was %2, is %3")
                    .arg(QString::fromUtf8(columns[i]),
                         before[i].isEmpty() ? QStringLiteral("nothing")
                                             : QString::fromUtf8(before[i]),
                         now[i].isEmpty() ? QStringLiteral("nothing") : QString::fromUtf8(now[i]));
    return found;
}

/// The target of a row as its job has it: a region, or a file.
TargetJob targetOf(const ReplayedRun& run, const RecordedRow& row)
{
    const QString name = QString::fromUtf8(row.name());
    return run.regions.value(name, {{QDir(run.job.folder).filePath(name)}});
}

/// The target as it is calculated today.
TargetRow targetNow(const ReplayedRun& run, const TargetJob& target, const QString& name,
                    FileDigests& digests)
{
    QString why;
    const auto source = openTarget(run.job, target, name, digests, why);
    if (!source)
        return refusedTarget(name, why);
    const auto& alignment = run.common->alignment;
    const QString path = alignment ? alignment->targetFoil(name) : QString();
    if (path.isEmpty())
        return analyseTarget(run.job, *run.common, {name, *source});
    QString reason;
    const auto foil = SourceFile::open(path, reason);
    if (!foil)
        return refusedTarget(
            name, QStringLiteral("cannot open %1: %2").arg(alignment->shown(path), reason));
    return analyseTarget(run.job, *run.common, {name, *source, &foil->bytes()});
}

/// What the record says of the files of a target, against those of today.
QStringList inputDifferences(const ReplayedRun& run, const RecordedRow& row,
                             const TargetJob& target, FileDigests& digests)
{
    QStringList found;
    const QDir folder(run.job.folder);
    const auto add = [&found](const QString& difference) {
        if (!difference.isEmpty())
            found += difference;
    };
    if (!target.region)
        add(inputDifference(target.file.path, QString::fromUtf8(row.name()), row.input));
    QStringList known;
    for (const RecordedFile& file : row.inputs) {
        known += folder.filePath(QString::fromUtf8(file.path));
        add(sharedDifference(known.last(), file, digests));
    }
    if (target.region && row.input)
        for (const QString& path : target.files())
            if (!known.contains(path))
                add(QStringLiteral("%1 is new").arg(folder.relativeFilePath(path)));
    return found;
}

QStringList targetDifferences(const ReplayedRun& run, const RecordedRow& row, FileDigests& digests)
{
    const TargetJob target = targetOf(run, row);
    const QStringList inputs = inputDifferences(run, row, target, digests);
    if (!inputs.isEmpty() || !run.common)
        return run.differences + inputs;
    const TargetRow now = targetNow(run, target, QString::fromUtf8(row.name()), digests);
    return run.differences + figureDifferences(targetColumns(), row.fields, targetFields(now));
}

/// The files of a map, against those that were written for it.
QStringList fileDifferences(const RecordedRow& row, const RecordedRow& now)
{
    QStringList found;
    for (const RecordedFile& file : now.outputs)
        for (const RecordedFile& before : row.outputs)
            if (before.path == file.path && before.digest != file.digest)
                found += QStringLiteral("%1 would be another").arg(QFile::decodeName(file.path));
    return found;
}

/// The map is calculated into a folder of its own.
QStringList mapDifferences(const ReplayedRun& run, const RecordedRow& row, Workers& workers)
{
    QStringList found = run.differences;
    for (const RecordedFile& image : row.inputs) {
        const QString name = QFile::decodeName(image.path);
        const QString wrong =
            inputDifference(QDir(run.job.folder).filePath(name), name, image.digest);
        if (!wrong.isEmpty())
            found += wrong;
    }
    const QTemporaryDir folder;
    PreparedJob prepared;
    prepared.job = run.job;
    prepared.job.output.path = folder.path();
    if (!found.isEmpty() || !run.common)
        return found;
    for (const MapJob& map : run.maps)
        if (map.name.toUtf8() == row.name()) {
            const MapOutcome outcome = analyseMap(prepared.job, *run.common, map, workers);
            found += figureDifferences(mapColumns(), row.fields, mapFields(outcome.row));
            if (const auto now = recordedMap(prepared, map, outcome))
                found += fileDifferences(row, *now);
            return found;
        }
    return found + QStringList{QStringLiteral("its images are missing")};
}

class Replay
{
public:
    Replay(RunRecord& record, const RunOptions& options)
        : m_record(record), m_workers(options.threads > 0 ? options.threads : usualThreads())
    {
    }

    /// @return a name that the record does not have; empty where it has all
    QString choose(const QStringList& names);
    int run();

private:
    const ReplayedRun& runOf(std::int64_t number);
    void read(RowKind kind, const QByteArrayList& names);
    bool tell(const QByteArray& name, const QStringList& differences);

    RunRecord& m_record;
    Workers m_workers;
    FileDigests m_digests;
    QByteArrayList m_targets;
    QByteArrayList m_maps;
    std::map<std::int64_t, ReplayedRun> m_runs;
    int m_same = 0;
    int m_told = 0;
};

QString Replay::choose(const QStringList& names)
{
    m_targets = m_record.names(RowKind::Target);
    m_maps = m_record.names(RowKind::Map);
    if (names.isEmpty())
        return {};
    QByteArrayList targets;
    QByteArrayList maps;
    for (const QString& name : names) {
        const bool isTarget = m_record.row(RowKind::Target, name.toUtf8()).has_value();
        const bool isMap = m_record.row(RowKind::Map, name.toUtf8()).has_value();
        if (!isTarget && !isMap)
            return name;
        if (isTarget)
            targets += name.toUtf8();
        if (isMap)
            maps += name.toUtf8();
    }
    m_targets = targets;
    m_maps = maps;
    return {};
}

const ReplayedRun& Replay::runOf(std::int64_t number)
{
    const auto known = m_runs.find(number);
    if (known != m_runs.end())
        return known->second;
    return m_runs.emplace(number, replayed(m_record.run(number), m_record.path())).first->second;
}

bool Replay::tell(const QByteArray& name, const QStringList& differences)
{
    ++m_told;
    m_same += differences.isEmpty() ? 1 : 0;
    const QByteArray what = differences.isEmpty() ? QByteArray("the same")
                                                  : differences.join(QStringLiteral("; ")).toUtf8();
    return console::print(name + ": " + what + '\n');
}

int Replay::run()
{
    // The record is read by one thread; a thousand rows at a time are calculated by all.
    constexpr int atOnce = 1000;
    bool printed = true;
    for (int from = 0; printed && from < m_targets.size() && stopSignal() == 0; from += atOnce) {
        std::vector<std::pair<RecordedRow, const ReplayedRun*>> rows;
        for (const QByteArray& name : m_targets.mid(from, atOnce))
            if (auto row = m_record.row(RowKind::Target, name))
                rows.emplace_back(std::move(*row), &runOf(row->run));
        std::size_t told = 0;
        printed = runInOrder<QStringList>(
            m_workers, rows.size(),
            [&](std::size_t i, unsigned, QStringList& differences) {
                differences = targetDifferences(*rows[i].second, rows[i].first, m_digests);
                return true;
            },
            [&](const QStringList& differences) {
                return tell(rows[told++].first.name(), differences);
            });
    }
    for (int i = 0; printed && i < m_maps.size() && stopSignal() == 0; ++i)
        if (const auto row = m_record.row(RowKind::Map, m_maps[i]))
            printed = tell(m_maps[i], mapDifferences(runOf(row->run), *row, m_workers));
    if (!printed)
        return console::complain(QStringLiteral("The standard output cannot be written."),
                                 ExitStatus::FileFailed);
    if (stopSignal() != 0)
        return static_cast<int>(ExitStatus::Stopped) + stopSignal();
    return static_cast<int>(m_same == m_told ? ExitStatus::Done : ExitStatus::SomeRefused);
}

} // namespace

int replayRecord(const QString& path, const QStringList& names, const RunOptions& options)
{
    const QFileInfo file(path);
    if (!file.isFile() || file.size() == 0)
        return console::complain(QStringLiteral("there is no record %1").arg(path));
    try {
        // Where it may be written, what a kill left half done can be undone.
        RunRecord record(file.absoluteFilePath(),
                         file.isWritable() ? RunRecord::Access::Write : RunRecord::Access::Read);
        keepStopSignals();
        Replay replay(record, options);
        if (const QString unknown = replay.choose(names); !unknown.isEmpty())
            return console::complain(QStringLiteral("%1 is not in the record").arg(unknown));
        return replay.run();
    } catch (const RecordFailure& failure) {
        return console::complain(failure.reason());
    }
}

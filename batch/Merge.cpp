#include "batch/Merge.h"

#include "batch/Console.h"
#include "batch/JobKey.h"
#include "batch/MapsRecord.h"
#include "batch/RunEnd.h"
#include "batch/SourceFile.h"

#include <QDir>

#include <algorithm>
#include <set>

namespace
{

class Merge
{
public:
    Merge(const PreparedJob& prepared, RunRecord& record)
        : m_prepared(prepared), m_record(record), m_regions(regionsByName(prepared.job)),
          m_targets(keyOfTargets(prepared.settings, prepared.common)),
          m_maps(keyOfMaps(prepared.text, prepared.common))
    {
    }

    /// @return why the record of a shard is refused; empty where it was taken
    QString take(const QString& path);
    QStringList gaps();

private:
    QString whyOfAnother(const RecordedRun& run, const QString& path) const;
    void takeRows(RunRecord& shard, std::int64_t run);
    bool isOurs(RowKind kind, const RecordedRow& row) const;
    bool isOurTarget(const RecordedRow& row) const;
    /// The region of the job that has the name of a row; a file where none has.
    TargetJob regionOf(const RecordedRow& row) const
    {
        return m_regions.value(QString::fromUtf8(row.name()));
    }
    bool isPresent(RowKind kind, const RecordedRow& row) const;
    QString gap(const QString& name, std::size_t place) const;

    const PreparedJob& m_prepared;
    RunRecord& m_record;
    QHash<QString, TargetJob> m_regions;
    Digest m_targets;
    Digest m_maps;
    std::set<unsigned> m_counts; ///< into how many shards the list was cut
};

QString Merge::whyOfAnother(const RecordedRun& run, const QString& path) const
{
    if (run.version != programVersion())
        return QStringLiteral("%1 is of version %2, this is %3")
            .arg(path, QString::fromUtf8(run.version), QString::fromUtf8(programVersion()));
    if (!haveSameSettings(run.jobText, m_prepared.text))
        return QStringLiteral("%1 is of another job").arg(path);
    const std::vector<RecordedFile> inputs = commonInputs(m_prepared);
    const auto isSame = [](const RecordedFile& a, const RecordedFile& b) {
        return a.digest == b.digest;
    };
    if (!std::equal(inputs.begin(), inputs.end(), run.inputs.begin(), run.inputs.end(), isSame))
        return QStringLiteral("%1 was calculated with other references or another blank").arg(path);
    return {};
}

QString Merge::take(const QString& path)
{
    RunRecord shard(path, RunRecord::Access::Write); // may have to undo what a kill left half done
    auto run = shard.lastRun();
    if (!run)
        return {}; // broken off before its first row
    if (QString why = whyOfAnother(*run, path); !why.isEmpty())
        return why;
    if (const auto part = Shard::fromText(QString::fromUtf8(run->shard)))
        m_counts.insert(part->count);
    RecordedRun taken = recordedRun(m_prepared, {}, m_record.path());
    taken.shard = run->shard;
    taken.began = run->began;
    m_record.begin();
    takeRows(shard, m_record.beginRun(taken));
    m_record.commit();
    return {};
}

void Merge::takeRows(RunRecord& shard, std::int64_t run)
{
    for (const RowKind kind : {RowKind::Target, RowKind::Map}) {
        const QByteArrayList names = shard.names(kind);
        shard.forEach(
            kind, static_cast<std::size_t>(names.size()),
            [&](std::size_t i) { return names[static_cast<int>(i)]; },
            [&](std::size_t, std::optional<RecordedRow> row) {
                if (!row || !isOurs(kind, *row))
                    return;
                const auto other = m_record.row(kind, row->name());
                const bool isBetter = !other || !isOurs(kind, *other) ||
                                      (other->key != row->key && isPresent(kind, *row));
                if (!isBetter)
                    return;
                row->run = run;
                m_record.put(kind, *row);
            });
    }
}

/// Whether a row was calculated from this job's settings, references and blank.
bool Merge::isOurs(RowKind kind, const RecordedRow& row) const
{
    if (kind == RowKind::Target)
        return isOurTarget(row);
    if (!row.key)
        return true; // what could not be read depends on nothing else
    for (const MapJob& map : m_prepared.list.maps)
        if (map.name.toUtf8() == row.name())
            return row.key == keyOfMap(m_maps, map, digestsOf(map, row.inputs));
    return false;
}

bool Merge::isOurTarget(const RecordedRow& row) const
{
    const auto region = regionOf(row).region;
    if (region && row.input && row.input != digestOfStack(region->stack))
        return false;
    return !row.key || (row.input && row.key == keyOfTarget(m_targets, *row.input, row.inputs));
}

/// Whether a row is of the files as they are now.
bool Merge::isPresent(RowKind kind, const RecordedRow& row) const
{
    if (kind == RowKind::Map || regionOf(row).region)
        return areInPlace(row.inputs, m_prepared.job.folder);
    const QString path = QDir(m_prepared.job.folder).filePath(QString::fromUtf8(row.name()));
    QString why;
    const auto source = SourceFile::open(path, why);
    const bool isSame = source ? row.input && source->digest() == row.input : !row.input;
    return isSame && areInPlace(row.inputs, m_prepared.job.folder);
}

/// "scans/5.dat: in no record", with the shard that it belongs to if all are of one division.
QString Merge::gap(const QString& name, std::size_t place) const
{
    QString text = QStringLiteral("%1: in no record").arg(name);
    if (m_counts.size() != 1)
        return text;
    const unsigned count = *m_counts.begin();
    return text + QStringLiteral(" (shard %1/%2)").arg(place % count + 1).arg(count);
}

QStringList Merge::gaps()
{
    QStringList found;
    const JobList& list = m_prepared.list;
    m_record.forEach(
        RowKind::Target, list.targets.size(),
        [&](std::size_t i) { return targetName(m_prepared.job, list.targets[i]).toUtf8(); },
        [&](std::size_t i, const std::optional<RecordedRow>& row) {
            if (!row || !isOurs(RowKind::Target, *row) ||
                !areInPlace(row->outputs, m_prepared.job.output.path))
                found += gap(targetName(m_prepared.job, list.targets[i]), i);
        });
    for (std::size_t i = 0; i < list.maps.size(); ++i) {
        const auto row = m_record.row(RowKind::Map, list.maps[i].name.toUtf8());
        if (!row || !isOurs(RowKind::Map, *row) ||
            !areInPlace(row->outputs, m_prepared.job.output.path))
            found += gap(list.maps[i].name, list.targets.size() + i);
    }
    return found;
}

/// The records of a folder's shards, none of which is at work, with the right to them.
/// @param why  one is at work, or there is none; where nothing comes back
std::optional<std::vector<std::pair<QString, std::unique_ptr<FileLock>>>>
shardsOf(const RunFolder& folder, QString& why)
{
    const QDir place(folder.shards());
    std::vector<std::pair<QString, std::unique_ptr<FileLock>>> shards;
    for (const QString& name :
         place.entryList({QStringLiteral("*-of-*.sqlite")}, QDir::Files, QDir::Name)) {
        bool inUse = false;
        auto lock = RunFolder::lock(place.filePath(name), why, inUse);
        if (!lock && inUse)
            return std::nullopt;
        shards.emplace_back(place.filePath(name), std::move(lock));
    }
    if (!shards.empty())
        return shards;
    why = QStringLiteral("there is no record of a shard in %1").arg(place.path());
    return std::nullopt;
}

int mergeInto(RunRecord& record, const PreparedJob& prepared, const RunOptions& options)
{
    QString why;
    const auto shards = shardsOf(RunFolder(prepared.job), why);
    if (!shards)
        return console::complain(why);
    Merge merge(prepared, record);
    for (const auto& [path, lock] : *shards)
        if (why = merge.take(path); !why.isEmpty())
            return console::complain(why);
    const QStringList gaps = merge.gaps();
    if (gaps.isEmpty()) {
        dropOthers(record, prepared);
        return writeAndTell(record, prepared, options.quiet);
    }
    for (const QString& gap : gaps)
        console::say(gap);
    return console::complain(
        QStringLiteral("%1 of %2 are missing; without --merge the program calculates "
                       "them alone")
            .arg(gaps.size())
            .arg(prepared.list.targets.size() + prepared.list.maps.size()),
        ExitStatus::SomeRefused);
}

} // namespace

int mergeShards(const QString& path, const QByteArray& text, const Job& job,
                const RunOptions& options)
{
    JobError error;
    const auto prepared = prepareJob(path, text, job, {}, error);
    if (!prepared)
        return console::complain(errorText(path, error));
    return withRecord(RunFolder(job).record(),
                      [&](RunRecord& record) { return mergeInto(record, *prepared, options); });
}

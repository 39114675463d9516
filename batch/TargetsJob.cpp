#include "batch/TargetsJob.h"

#include "batch/Console.h"
#include "batch/JobKey.h"
#include "batch/MapsRecord.h"
#include "batch/PreparedJob.h"
#include "batch/ProgressLine.h"
#include "batch/RecordWriter.h"
#include "batch/RunEnd.h"
#include "batch/TargetsRun.h"
#include "batch/Watch.h"
#include "system/Signals.h"

#include <QFile>

#include <algorithm>
#include <sched.h>

namespace
{

constexpr double millisecond = 1e-3;

/// One run over the targets and maps of a job, into a record that is its own for as long.
class ListRun
{
public:
    ListRun(const PreparedJob& prepared, const RunOptions& options, RunRecord& record)
        : m_prepared(prepared), m_options(options), m_record(record),
          m_workers(options.threads > 0 ? options.threads : usualThreads()),
          m_targets{prepared.job,
                    prepared.common,
                    prepared.list.targets,
                    keyOfTargets(prepared.settings, prepared.common),
                    knownTargets(record, prepared, options.again),
                    m_digests},
          m_count(prepared.list.targets.size() + prepared.list.maps.size()),
          m_progress(m_count, options.quiet)
    {
    }

    /// @return nothing where all is in the record, or the status to end with
    std::optional<int> run()
    {
        calculate();
        if (!m_failed.isEmpty())
            return console::complain(m_failed, ExitStatus::FileFailed);
        return m_left > 0 ? std::optional(stopped()) : std::nullopt;
    }

    std::size_t calculated() const { return m_calculated; }

private:
    QString targetOf(std::size_t i) const
    {
        return targetName(m_prepared.job, m_prepared.list.targets[i]);
    }

    void calculate()
    {
        const std::vector<MapJob> maps = mapsToDo();
        RecordWriter writer(m_record, recordedRun(m_prepared, m_options.shard, m_record.path()));
        const bool more = runTargets(
            m_targets, [&](const TargetStep& step) { return take(step, writer); }, m_workers);
        if (more)
            runMaps(
                m_prepared.job, m_prepared.common, maps,
                [&](const MapJob& map, const MapOutcome& outcome) {
                    return take(map, outcome, writer);
                },
                m_workers);
        if (const auto failure = writer.finish())
            throw *failure;
        m_progress.clear();
    }

    std::vector<MapJob> mapsToDo()
    {
        const std::vector<MapJob>& all = m_prepared.list.maps;
        if (m_options.again || m_record.isNew())
            return all;
        const std::vector<bool> kept = keptMaps(m_record, m_prepared, m_workers);
        std::vector<MapJob> maps;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (!kept[i])
                maps.push_back(all[i]);
            else
                tellKept(all[i].name);
        }
        return maps;
    }

    bool take(const TargetStep& step, RecordWriter& writer)
    {
        if (step.state == TargetStep::State::Left) {
            ++m_left;
            return true;
        }
        if (step.state == TargetStep::State::Kept) {
            tellKept(targetOf(step.number));
            return true;
        }
        const TargetRow& row = step.row;
        if (!row.notWritten.isEmpty())
            return fail(row.notWritten);
        tell(row.target, row.refusal, {}, row.warnings, step.seconds);
        if (m_options.verbose)
            for (const QString& line : unseenLines(row.figures.unseen))
                say(row.target, line);
        const auto recorded = recordedTarget(m_targets, step);
        return recorded ? writer.put(RowKind::Target, *recorded) : fail(row.target);
    }

    bool take(const MapJob& map, const MapOutcome& outcome, RecordWriter& writer)
    {
        if (outcome.left) {
            ++m_left;
            return true;
        }
        if (outcome.fileFailed) {
            m_failed = outcome.failure;
            return false;
        }
        const MapRow& row = outcome.row;
        tell(row.map, row.refusal, row.messages, row.warnings, outcome.seconds);
        const auto recorded = recordedMap(m_prepared, map, outcome);
        return recorded ? writer.put(RowKind::Map, *recorded) : fail(row.map);
    }

    /// @return false
    bool fail(const QString& file)
    {
        m_failed = QStringLiteral("cannot write %1").arg(file);
        return false;
    }

    void say(const QString& name, const QString& what)
    {
        m_progress.clear();
        console::say(QStringLiteral("%1: %2").arg(name, what));
    }

    void tellKept(const QString& name)
    {
        if (m_options.verbose)
            say(name, QStringLiteral("there already"));
        m_progress.show(++m_done);
    }

    void tell(const QString& name, const QString& refusal, const QStringList& messages,
              const QStringList& warnings, double seconds)
    {
        if (!refusal.isEmpty())
            say(name, refusal);
        for (const QString& message : messages)
            say(name, message);
        for (const QString& warning : warnings)
            say(name, QStringLiteral("warning: ") + warning);
        if (m_options.verbose)
            say(name, QStringLiteral("calculated in %1 ms").arg(seconds / millisecond, 0, 'g', 3));
        ++m_calculated;
        m_progress.show(++m_done);
    }

    int stopped() const
    {
        const QString what = m_prepared.list.maps.empty() ? QStringLiteral("targets")
                                                          : QStringLiteral("targets and maps");
        return console::complain(
                   QStringLiteral("Stopped: %1 of %2 %3 are left; the same command goes on "
                                  "with them.")
                       .arg(m_left)
                       .arg(m_count)
                       .arg(what),
                   ExitStatus::Stopped) +
               stopSignal();
    }

    const PreparedJob& m_prepared;
    const RunOptions& m_options;
    RunRecord& m_record;
    Workers m_workers;
    FileDigests m_digests;
    TargetsRun m_targets;
    std::size_t m_count;
    ProgressLine m_progress;
    std::size_t m_done = 0;
    std::size_t m_calculated = 0;
    std::size_t m_left = 0;
    QString m_failed; ///< why a file could not be written
};

int runAll(const PreparedJob& prepared, const RunOptions& options, RunRecord& record)
{
    if (const auto status = ListRun(prepared, options, record).run())
        return *status;
    dropOthers(record, prepared);
    if (options.shard.isAll())
        return writeAndTell(record, prepared, options.quiet);
    if (!options.quiet)
        console::say(QStringLiteral("Written: ") + record.path());
    return static_cast<int>(record.allGood() ? ExitStatus::Done : ExitStatus::SomeRefused);
}

/// Goes on until a signal or a disk that fails.
int watch(PreparedJob& prepared, const RunOptions& options, RunRecord& record)
{
    WatchedFiles seen;
    lookAt(prepared.job, prepared.list, seen);
    const int status = runAll(prepared, options, record);
    if (status != static_cast<int>(ExitStatus::Done) &&
        status != static_cast<int>(ExitStatus::SomeRefused))
        return status;
    RunOptions later = options;
    later.quiet = true; // no progress of a file
    later.again = false;
    const WatchActions actions{[&](const PreparedJob& part, bool& any) {
                                   ListRun run(part, later, record);
                                   const std::optional<int> ended = run.run();
                                   any = run.calculated() > 0;
                                   return ended;
                               },
                               [&](const PreparedJob& all) -> std::optional<int> {
                                   dropOthers(record, all);
                                   const int written = writeAndTell(record, all, !options.verbose);
                                   return written == static_cast<int>(ExitStatus::FileFailed)
                                              ? std::optional(written)
                                              : std::nullopt;
                               }};
    FolderWatch folders;
    return watchJob(prepared, std::move(seen), actions, folders);
}

int runInFolder(PreparedJob& prepared, const RunOptions& options)
{
    const RunFolder folder(prepared.job);
    return withRecord(options.shard.isAll() ? folder.record() : folder.record(options.shard),
                      [&](RunRecord& record) {
                          keepStopSignals();
                          return options.watch ? watch(prepared, options, record)
                                               : runAll(prepared, options, record);
                      });
}

} // namespace

int withRecord(const QString& path, const std::function<int(RunRecord&)>& use)
{
    QString why;
    bool inUse = false;
    const std::unique_ptr<FileLock> lock = RunFolder::lock(path, why, inUse);
    if (!lock)
        return console::complain(why, inUse ? ExitStatus::BadJob : ExitStatus::FileFailed);
    try {
        RunRecord record(path, RunRecord::Access::Write);
        return use(record);
    } catch (const RecordFailure& failure) {
        return console::complain(failure.reason(), failure.kind() == RecordFailure::Kind::Disk
                                                       ? ExitStatus::FileFailed
                                                       : ExitStatus::BadJob);
    }
}

unsigned usualThreads()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    const bool known = sched_getaffinity(0, sizeof set, &set) == 0;
    unsigned threads =
        known ? static_cast<unsigned>(CPU_COUNT(&set)) : std::thread::hardware_concurrency();
    const unsigned given =
        qEnvironmentVariableIntValue("SLURM_CPUS_PER_TASK") > 0
            ? static_cast<unsigned>(qEnvironmentVariableIntValue("SLURM_CPUS_PER_TASK"))
            : threads;
    return std::clamp(std::min(threads, given), 1U, mostThreads);
}

ExitStatus printList(const JobList& list, const RunOptions& options)
{
    const char end = options.listWithNul ? '\0' : '\n';
    QByteArray text;
    for (const TargetJob& target : list.targets)
        if (!target.path().isEmpty())
            text += QFile::encodeName(target.path()) + end;
    for (const MapJob& map : list.maps)
        text += map.name.toUtf8() + end;
    if (console::print(text))
        return ExitStatus::Done;
    console::say(QStringLiteral("The list cannot be written."));
    return ExitStatus::FileFailed;
}

int analyseTargets(const QString& path, const QByteArray& text, const Job& job,
                   const RunOptions& options)
{
    JobError error;
    if (options.listOnly) {
        const auto list = listOf(job, error);
        return list ? static_cast<int>(printList(list->part(options.shard), options))
                    : console::complain(errorText(path, error));
    }
    // A night begins with folders that are empty.
    auto prepared = options.watch ? prepareList(path, text, job, presentListOf(job), {}, error)
                                  : prepareJob(path, text, job, options.shard, error);
    if (!prepared)
        return console::complain(errorText(path, error));
    prepared->isWatched = options.watch;
    return options.checkOnly ? static_cast<int>(ExitStatus::Done) : runInFolder(*prepared, options);
}

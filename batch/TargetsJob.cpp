#include "batch/TargetsJob.h"

#include "batch/Console.h"
#include "batch/JobKey.h"
#include "batch/PreparedJob.h"
#include "batch/ProgressLine.h"
#include "batch/RecordWriter.h"
#include "batch/ResultTables.h"
#include "batch/TargetsRun.h"
#include "system/Signals.h"

#include <QFile>

#include <algorithm>
#include <sched.h>

namespace
{

constexpr double millisecond = 1e-3;

int complain(const QString& text, ExitStatus status = ExitStatus::BadJob)
{
    console::say(text);
    return static_cast<int>(status);
}

/// One run over the targets of a job, into a record that is its own for as long.
class TargetsJob
{
public:
    TargetsJob(const PreparedJob& prepared, const RunOptions& options, RunRecord& record)
        : m_prepared(prepared), m_options(options),
          m_record(record), m_run{prepared.job, prepared.common, prepared.list.targets,
                                  keyOfTargets(prepared.settings, prepared.common), knownKeys()},
          m_progress(prepared.list.targets.size(), options.quiet)
    {
    }

    int run()
    {
        calculate();
        if (m_left > 0)
            return stopped();
        dropOthers();
        return m_options.shard.isAll() ? writeAll() : shardDone();
    }

private:
    std::vector<std::optional<Digest>> knownKeys() const
    {
        std::vector<std::optional<Digest>> keys(m_prepared.list.targets.size());
        for (std::size_t i = 0; i < keys.size() && !m_options.again; ++i)
            keys[i] = m_record.key(RowKind::Target, name(i));
        return keys;
    }

    QByteArray name(std::size_t i) const
    {
        return targetName(m_prepared.job, m_prepared.list.targets[i]).toUtf8();
    }

    void calculate()
    {
        Workers workers(m_options.threads > 0 ? m_options.threads : usualThreads());
        RecordWriter writer(m_record, recordedRun(m_prepared, m_options.shard, m_record.path()));
        runTargets(
            m_run, [&](const TargetStep& step) { return take(step, writer); }, workers);
        if (const auto failure = writer.finish())
            throw *failure;
        m_progress.clear();
    }

    bool take(const TargetStep& step, RecordWriter& writer)
    {
        if (step.state == TargetStep::State::Left) {
            ++m_left;
            return true;
        }
        ++m_done;
        if (step.state == TargetStep::State::Calculated)
            tell(step);
        else if (m_options.verbose)
            say(step, QStringLiteral("there already"));
        m_progress.show(m_done);
        return step.state == TargetStep::State::Kept ||
               writer.put(RowKind::Target, recordedRow(m_run, step));
    }

    void say(const TargetStep& step, const QString& what)
    {
        m_progress.clear();
        console::say(QStringLiteral("%1: %2").arg(QString::fromUtf8(name(step.number)), what));
    }

    void tell(const TargetStep& step)
    {
        const TargetRow& row = step.row;
        if (!row.refusal.isEmpty())
            say(step, row.refusal);
        for (const QString& warning : row.warnings)
            say(step, QStringLiteral("warning: ") + warning);
        if (m_options.verbose)
            say(step,
                QStringLiteral("calculated in %1 ms").arg(step.seconds / millisecond, 0, 'g', 3));
    }

    int stopped()
    {
        const int signal = stopSignal();
        return complain(
                   QStringLiteral("Stopped: %1 of %2 targets are left; the same command goes on "
                                  "with them.")
                       .arg(m_left)
                       .arg(m_prepared.list.targets.size()),
                   ExitStatus::Stopped) +
               signal;
    }

    /// Rows of targets that are no longer the job's.
    void dropOthers()
    {
        const QByteArrayList names = m_record.names(RowKind::Target);
        if (static_cast<std::size_t>(names.size()) == m_prepared.list.targets.size())
            return;
        std::vector<QByteArray> own;
        for (std::size_t i = 0; i < m_prepared.list.targets.size(); ++i)
            own.push_back(name(i));
        std::sort(own.begin(), own.end());
        m_record.begin();
        for (const QByteArray& other : names)
            if (!std::binary_search(own.begin(), own.end(), other))
                m_record.drop(RowKind::Target, other);
        m_record.commit();
    }

    int writeAll()
    {
        const ResultsWritten written = writeResults(m_record, m_prepared);
        if (!written.failed.isEmpty())
            return complain(QStringLiteral("cannot write %1").arg(written.failed),
                            ExitStatus::FileFailed);
        for (const QString& file : written.files)
            if (!m_options.quiet)
                console::say(QStringLiteral("Written: ") + file);
        return static_cast<int>(written.allGood ? ExitStatus::Done : ExitStatus::SomeRefused);
    }

    int shardDone()
    {
        bool allGood = true;
        m_record.forEach(
            RowKind::Target, m_prepared.list.targets.size(),
            [this](std::size_t i) { return name(i); },
            [&](std::size_t, const std::optional<RecordedRow>& row) {
                allGood = allGood && row && row->good;
            });
        if (!m_options.quiet)
            console::say(QStringLiteral("Written: ") + m_record.path());
        return static_cast<int>(allGood ? ExitStatus::Done : ExitStatus::SomeRefused);
    }

    const PreparedJob& m_prepared;
    const RunOptions& m_options;
    RunRecord& m_record;
    TargetsRun m_run;
    ProgressLine m_progress;
    std::size_t m_done = 0;
    std::size_t m_left = 0;
};

int runInFolder(const PreparedJob& prepared, const RunOptions& options)
{
    const RunFolder folder(prepared.job);
    const QString path = options.shard.isAll() ? folder.record() : folder.record(options.shard);
    QString why;
    bool inUse = false;
    const std::unique_ptr<FileLock> lock = RunFolder::lock(path, why, inUse);
    if (!lock)
        return complain(why, inUse ? ExitStatus::BadJob : ExitStatus::FileFailed);
    try {
        RunRecord record(path, RunRecord::Access::Write);
        keepStopSignals();
        return TargetsJob(prepared, options, record).run();
    } catch (const RecordFailure& failure) {
        return complain(failure.reason(), failure.kind() == RecordFailure::Kind::Disk
                                              ? ExitStatus::FileFailed
                                              : ExitStatus::BadJob);
    }
}

} // namespace

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

ExitStatus listTargets(const std::vector<JobFilePath>& targets, const RunOptions& options)
{
    QByteArray text;
    for (const JobFilePath& target : targets)
        if (!target.path.isEmpty())
            text += QFile::encodeName(target.path) + (options.listWithNul ? '\0' : '\n');
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
        return list ? static_cast<int>(listTargets(list->part(options.shard).targets, options))
                    : complain(errorText(path, error));
    }
    const auto prepared = prepareJob(path, text, job, options.shard, error);
    if (!prepared)
        return complain(errorText(path, error));
    return options.checkOnly ? static_cast<int>(ExitStatus::Done) : runInFolder(*prepared, options);
}

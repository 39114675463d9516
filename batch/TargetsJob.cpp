#include "batch/TargetsJob.h"

#include "batch/Console.h"
#include "batch/OutputCheck.h"
#include "batch/ProgressLine.h"
#include "batch/TargetList.h"
#include "batch/TargetsRun.h"
#include "text/Csv.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <sched.h>

namespace
{

ExitStatus complain(const QString& text, ExitStatus status = ExitStatus::BadJob)
{
    console::say(text);
    return status;
}

QString csvPath(const Job& job)
{
    return QDir(job.output.path).filePath(QStringLiteral("results.csv"));
}

void tell(const TargetRow& row)
{
    if (!row.refusal.isEmpty())
        console::say(QStringLiteral("%1: %2").arg(row.target, row.refusal));
    for (const QString& warning : row.warnings)
        console::say(QStringLiteral("%1: warning: %2").arg(row.target, warning));
}

/// What one run of all targets leaves.
struct Outcome {
    bool written = false;
    bool allGood = true;
};

Outcome run(const Job& job, const JobData& common, const std::vector<JobFilePath>& targets,
            const RunOptions& options)
{
    Outcome outcome;
    Workers workers(options.threads > 0 ? options.threads : usualThreads());
    SafeFile file(csvPath(job));
    if (!QDir().mkpath(job.output.path) || !file.open())
        return outcome;
    ProgressLine progress(targets.size(), options.quiet);
    std::size_t done = 0;
    const auto write = [&](const QByteArrayList& fields) {
        const QByteArray line = csv::line(fields);
        return file.write(line.constData(), line.size());
    };
    const auto use = [&](const TargetRow& row) {
        outcome.allGood = outcome.allGood && row.isGood();
        progress.clear();
        tell(row);
        progress.show(++done);
        return write(targetFields(row));
    };
    outcome.written =
        write(targetColumns()) && runTargets(job, common, targets, use, workers) && file.commit();
    return outcome;
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
    if (!console::print(text))
        return complain(QStringLiteral("The list cannot be written."), ExitStatus::FileFailed);
    return ExitStatus::Done;
}

ExitStatus analyseTargets(const QString& path, const Job& job, const RunOptions& options)
{
    JobError error;
    const auto targets = targetList(job, error);
    if (!targets)
        return complain(errorText(path, error));
    if (options.listOnly)
        return listTargets(*targets, options);
    const auto maps = mapList(job, error);
    if (!maps)
        return complain(errorText(path, error));
    if (const auto wrong = checkOutputs(job, path, *targets, *maps, {csvPath(job)}))
        return complain(errorText(path, *wrong));
    const std::optional<JobData> common = readJobData(job, error);
    if (!common)
        return complain(errorText(path, error));
    if (options.checkOnly)
        return ExitStatus::Done;
    const Outcome outcome = run(job, *common, *targets, options);
    if (!outcome.written)
        return complain(QStringLiteral("cannot write %1").arg(csvPath(job)),
                        ExitStatus::FileFailed);
    if (!options.quiet)
        console::say(QStringLiteral("Written: ") + csvPath(job));
    return outcome.allGood ? ExitStatus::Done : ExitStatus::SomeRefused;
}

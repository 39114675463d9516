#include "batch/CommandLine.h"
#include "batch/Console.h"
#include "batch/Convert.h"
#include "batch/InspectFile.h"
#include "batch/JobFacts.h"
#include "batch/JobRun.h"
#include "batch/Merge.h"
#include "batch/PictureApplication.h"
#include "batch/RankJob.h"
#include "batch/Replay.h"
#include "batch/ResultPath.h"
#include "batch/ShowJob.h"
#include "batch/TargetsJob.h"
#include "jobs/JobTemplate.h"
#include "system/Signals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>

namespace
{

int report(const QString& path, const Job& job, const RunReport& run)
{
    const bool printed = console::print(reportText(job, run).toUtf8());
    console::warn(path, doubtsAfter(run.results));
    for (const QString& file : run.written)
        console::say(QStringLiteral("Written: ") + file);
    if (!printed)
        return console::complain(QStringLiteral("The report cannot be written."),
                                 ExitStatus::FileFailed);
    if (run.resultNotWritten)
        return console::complain(
            errorText(path, {job.mapResult.place,
                             QStringLiteral("cannot write %1").arg(job.mapResult.path)}),
            ExitStatus::FileFailed);
    const bool good = !run.refused && areFinite(run.results);
    return static_cast<int>(good ? ExitStatus::Done : ExitStatus::SomeRefused);
}

int analyseOne(const QString& path, const Job& job, bool checkOnly)
{
    if (const std::optional<JobError> wrong = checkResultPath(job, path))
        return console::complain(errorText(path, *wrong));
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    if (!data)
        return console::complain(errorText(path, error));
    console::warn(path, doubtsBefore(factsOf(job, *data)));
    if (checkOnly)
        return static_cast<int>(ExitStatus::Done);
    return report(path, job, runJob(job, *data));
}

/// The program and what it was started with.
struct Start {
    std::unique_ptr<QCoreApplication>& application; ///< may be replaced by one that paints
    int argc;
    char** argv;

    void letPaint()
    {
        application.reset();
        application = pictureApplication(argc, argv);
    }
};

/// What the command line wants of a job.
int run(Start& start, const CommandLine& options)
{
    JobError error;
    const std::optional<QByteArray> text = readJobText(options.job, error);
    const std::optional<Job> job =
        text ? parseJob(*text, QFileInfo(options.job).absolutePath(), error) : std::nullopt;
    if (!job)
        return console::complain(errorText(options.job, error));
    if (options.convert)
        return static_cast<int>(convertJob(options.job, *job, options.to, options.run.quiet));
    if (options.show)
        return console::complain(showJob(options.job));
    if (job->paints() || !options.picture.isEmpty())
        start.letPaint();
    if (options.rank)
        return rankJob(options.job, *job, options.picture);
    if (options.merge && !job->output.path.isEmpty())
        return mergeShards(options.job, *text, *job, options.run);
    if (!job->output.path.isEmpty())
        return analyseTargets(options.job, *text, *job, options.run);
    if (options.run.listOnly)
        return static_cast<int>(
            printList({{{job->spectra[SpectrumSet::Target]}}, {}}, options.run));
    return analyseOne(options.job, *job, options.run.checkOnly);
}

int run(Start start)
{
    QCommandLineParser parser;
    CommandLine options;
    if (const QString wrong = readCommandLine(parser, options); !wrong.isEmpty())
        return console::complain(wrong);
    if (options.help)
        parser.showHelp(0);
    if (options.version)
        parser.showVersion();
    if (options.showTemplate)
        return console::print(jobTemplate())
                   ? static_cast<int>(ExitStatus::Done)
                   : console::complain(QStringLiteral("The job cannot be written."),
                                       ExitStatus::FileFailed);
    if (!options.replay.isEmpty())
        return replayRecord(options.replay, options.names, options.run);
    if (!options.inspect.isEmpty()) {
        if (!options.picture.isEmpty())
            start.letPaint();
        return static_cast<int>(inspect(options.inspect, options.picture));
    }
    return run(start, options);
}

} // namespace

/// Runs a job without a window, in English.
int main(int argc, char* argv[])
{
    reportFailedWrites();
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("drovik-batch"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DROVIK_VERSION));
    try {
        return run({application, argc, argv});
    } catch (const std::bad_alloc&) {
        return console::complain(QStringLiteral("There is not enough memory."));
    } catch (const std::exception& failure) {
        return console::complain(QString::fromLocal8Bit(failure.what()));
    }
}

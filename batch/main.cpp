#include "batch/Console.h"
#include "batch/JobFacts.h"
#include "batch/JobRun.h"
#include "batch/JobTemplate.h"
#include "batch/Merge.h"
#include "batch/PictureApplication.h"
#include "batch/RankTable.h"
#include "batch/Replay.h"
#include "batch/ResultPath.h"
#include "batch/TargetsJob.h"
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

int complain(const QString& text, ExitStatus status = ExitStatus::BadJob)
{
    console::say(text);
    return static_cast<int>(status);
}

int report(const QString& path, const Job& job, const RunReport& run)
{
    const bool printed = console::print(reportText(job, run).toUtf8());
    console::warn(path, doubtsAfter(run.results));
    for (const QString& file : run.written)
        console::say(QStringLiteral("Written: ") + file);
    if (!printed)
        return complain(QStringLiteral("The report cannot be written."), ExitStatus::FileFailed);
    if (run.resultNotWritten)
        return complain(
            errorText(path, {job.mapResult.place,
                             QStringLiteral("cannot write %1").arg(job.mapResult.path)}),
            ExitStatus::FileFailed);
    const bool good = !run.refused && areFinite(run.results);
    return static_cast<int>(good ? ExitStatus::Done : ExitStatus::SomeRefused);
}

int analyseOne(const QString& path, const Job& job, bool checkOnly)
{
    if (const std::optional<JobError> wrong = checkResultPath(job, path))
        return complain(errorText(path, *wrong));
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    if (!data)
        return complain(errorText(path, error));
    console::warn(path, doubtsBefore(factsOf(job, *data)));
    if (checkOnly)
        return static_cast<int>(ExitStatus::Done);
    return report(path, job, runJob(job, *data));
}

int rankJob(const QString& path, const Job& job)
{
    Job references = job; // no target is needed
    references.spectra[SpectrumSet::Target] = {};
    references.targets.clear();
    references.maps.clear();
    if (references.points)
        for (JobPoint& point : *references.points)
            point.map = {};
    JobError error;
    const std::optional<JobData> data = readJobData(references, error);
    if (!data)
        return complain(errorText(path, error));
    const std::vector<RankedChoice> ranked = rankEnergies(data->input, rankedTargetOf(job));
    if (ranked.empty())
        return complain(QStringLiteral("No energies were found: the references need common "
                                       "energies below the edge, and two crossings above it."),
                        ExitStatus::SomeRefused);
    if (!console::print(rankTable(ranked, data->settings.valences)))
        return complain(QStringLiteral("The table cannot be written."), ExitStatus::FileFailed);
    return static_cast<int>(ExitStatus::Done);
}

/// What the command line asks for.
struct Options {
    bool help = false;
    bool version = false;
    bool showTemplate = false;
    bool rank = false;
    bool merge = false;
    QString replay;    ///< path of a record
    QStringList names; ///< all that is no option
    QString job;
    RunOptions run;
};

/// @return why the command line cannot be understood; empty where it can
QString readOptions(QCommandLineParser& parser, Options& options)
{
    parser.setApplicationDescription(QStringLiteral(
        "Valence from X-ray absorption spectra: runs a job without a window.\n\n"
        "Exit status: 0 all done, 1 some calculations were refused or found no finite number and "
        "the rest is done, 2 a bad job or an unreadable file and nothing was written, 3 the disk "
        "or a file failed."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption check(QStringLiteral("check"),
                                   QStringLiteral("Only reads the job and its files."));
    const QCommandLineOption list(
        QStringLiteral("list"), QStringLiteral("Prints the targets of the job, one on each line."));
    const QCommandLineOption zero(QStringLiteral("0"),
                                  QStringLiteral("With --list: ends each with NUL."));
    const QCommandLineOption example(
        QStringLiteral("template"),
        QStringLiteral("Prints a job with every key and what it means."));
    const QCommandLineOption threads(
        QStringLiteral("jobs"),
        QStringLiteral("Threads; unless given, the processors that may be used."),
        QStringLiteral("N"));
    const QCommandLineOption quiet(QStringLiteral("quiet"),
                                   QStringLiteral("No progress, no names of written files."));
    const QCommandLineOption verbose(QStringLiteral("verbose"),
                                     QStringLiteral("Tells what becomes of each target."));
    const QCommandLineOption again(
        QStringLiteral("again"), QStringLiteral("Also calculates what is in the record already."));
    const QCommandLineOption shard(
        QStringLiteral("shard"),
        QStringLiteral("Only every N-th of the list, from the K-th, into a record of its own."),
        QStringLiteral("K/N"));
    const QCommandLineOption merge(
        QStringLiteral("merge"),
        QStringLiteral("Joins the records of all shards and writes the results."));
    const QCommandLineOption replay(
        QStringLiteral("replay"),
        QStringLiteral("Calculates what is in a record again and tells what differs."),
        QStringLiteral("RECORD"));
    const QCommandLineOption watch(
        QStringLiteral("watch"),
        QStringLiteral("Goes on with new files of the job, until a signal ends it."));
    const QCommandLineOption rank(
        QStringLiteral("rank"),
        QStringLiteral("Prints which energies to measure, the best first, from the references."));
    parser.addOptions({merge, replay, watch, rank, check, list, zero, example, threads, quiet,
                       verbose, again, shard});
    parser.addPositionalArgument(QStringLiteral("JOB.toml"),
                                 QStringLiteral("Spectra, points and conditions."));
    if (!parser.parse(QCoreApplication::arguments()))
        return parser.errorText();
    options.help = parser.isSet(help);
    options.version = parser.isSet(version);
    options.showTemplate = parser.isSet(example);
    options.rank = parser.isSet(rank);
    options.run.checkOnly = parser.isSet(check);
    options.run.listOnly = parser.isSet(list);
    options.run.listWithNul = parser.isSet(zero);
    options.run.quiet = parser.isSet(quiet);
    if (parser.isSet(threads)) {
        options.run.threads = parser.value(threads).toUInt();
        if (options.run.threads < 1 || options.run.threads > mostThreads)
            return QStringLiteral("--jobs takes a number from 1 to %1.").arg(mostThreads);
    }
    options.run.verbose = parser.isSet(verbose);
    options.run.again = parser.isSet(again);
    options.run.watch = parser.isSet(watch);
    options.merge = parser.isSet(merge);
    options.replay = parser.value(replay);
    if (options.merge + parser.isSet(shard) + parser.isSet(replay) + options.run.watch > 1)
        return QStringLiteral("--shard, --merge, --replay and --watch exclude one another.");
    if (parser.isSet(shard)) {
        const std::optional<Shard> given = Shard::fromText(parser.value(shard));
        if (!given)
            return QStringLiteral("--shard takes K/N, two numbers with 1 <= K <= N <= %1.")
                .arg(Shard::most);
        options.run.shard = *given;
    }
    const QStringList jobs = parser.positionalArguments();
    options.job = jobs.value(0);
    options.names = jobs;
    if (!options.replay.isEmpty())
        return {};
    if (jobs.size() != 1 && !options.help && !options.version && !options.showTemplate)
        return QStringLiteral("One job file is expected: drovik-batch JOB.toml");
    return {};
}

/// @param application  of the program; may be replaced by one that paints
int run(std::unique_ptr<QCoreApplication>& application, int argc, char** argv)
{
    QCommandLineParser parser;
    Options options;
    if (const QString wrong = readOptions(parser, options); !wrong.isEmpty())
        return complain(wrong);
    if (options.help)
        parser.showHelp(0);
    if (options.version)
        parser.showVersion();
    if (options.showTemplate)
        return console::print(jobTemplate())
                   ? static_cast<int>(ExitStatus::Done)
                   : complain(QStringLiteral("The job cannot be written."), ExitStatus::FileFailed);
    if (!options.replay.isEmpty())
        return replayRecord(options.replay, options.names, options.run);
    JobError error;
    const std::optional<QByteArray> text = readJobText(options.job, error);
    const std::optional<Job> job =
        text ? parseJob(*text, QFileInfo(options.job).absolutePath(), error) : std::nullopt;
    if (!job)
        return complain(errorText(options.job, error));
    if (options.rank)
        return rankJob(options.job, *job);
    if (job->paints()) {
        application.reset();
        application = pictureApplication(argc, argv);
    }
    if (options.merge && !job->output.path.isEmpty())
        return mergeShards(options.job, *text, *job, options.run);
    if (!job->output.path.isEmpty())
        return analyseTargets(options.job, *text, *job, options.run);
    if (options.run.listOnly)
        return static_cast<int>(printList({{job->spectra[SpectrumSet::Target]}, {}}, options.run));
    return analyseOne(options.job, *job, options.run.checkOnly);
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
        return run(application, argc, argv);
    } catch (const std::bad_alloc&) {
        return complain(QStringLiteral("There is not enough memory."));
    } catch (const std::exception& failure) {
        return complain(QString::fromLocal8Bit(failure.what()));
    }
}

#include "batch/JobFacts.h"
#include "batch/JobRun.h"
#include "batch/ResultPath.h"
#include "system/Signals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <exception>
#include <new>

namespace
{

enum ExitStatus { Done = 0, Doubtful = 1, Failed = 2 };

void say(const QString& text)
{
    QTextStream stream(stderr);
    stream.setCodec("UTF-8");
    stream << text << '\n';
}

int complain(const QString& text)
{
    say(text);
    return Failed;
}

void warn(const QString& path, const std::vector<JobError>& doubts)
{
    for (const JobError& doubt : doubts)
        say(errorText(path, {doubt.line, QStringLiteral("warning: ") + doubt.reason}));
}

int report(const QString& path, const Job& job, const RunReport& run)
{
    QTextStream stream(stdout);
    stream.setCodec("UTF-8");
    stream << reportText(job, run);
    stream.flush();
    warn(path, doubtsAfter(run.results));
    for (const QString& file : run.written)
        say(QStringLiteral("Written: ") + file);
    if (stream.status() != QTextStream::Ok)
        return complain(QStringLiteral("The report cannot be written."));
    if (run.resultNotWritten)
        return complain(errorText(
            path, {job.mapResult.line, QStringLiteral("cannot write %1").arg(job.mapResult.path)}));
    return run.refused || !areFinite(run.results) ? Doubtful : Done;
}

int analyse(const QString& path)
{
    JobError error;
    const std::optional<Job> job = readJob(path, error);
    if (!job)
        return complain(errorText(path, error));
    if (const std::optional<JobError> wrong = checkResultPath(*job, path))
        return complain(errorText(path, *wrong));
    const std::optional<JobData> data = readJobData(*job, error);
    if (!data)
        return complain(errorText(path, error));
    warn(path, doubtsBefore(factsOf(*job, *data)));
    return report(path, *job, runJob(*job, *data));
}

int run()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Valence from X-ray absorption spectra: runs a job without a window.\n\n"
        "Exit status: 0 done, 1 a calculation was refused or its result is no finite number, 2 a "
        "bad job, an unreadable file, or a report or result file that cannot be written."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("JOB.toml"),
                                 QStringLiteral("Spectra, points and conditions."));
    if (!parser.parse(QCoreApplication::arguments()))
        return complain(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp(Done);
    if (parser.isSet(version))
        parser.showVersion();
    const QStringList jobs = parser.positionalArguments();
    if (jobs.size() != 1)
        return complain(QStringLiteral("One job file is expected: drovik-batch JOB.toml"));
    return analyse(jobs.constFirst());
}

} // namespace

/// Runs a job without a window, in English.
int main(int argc, char* argv[])
{
    reportFailedWrites();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("drovik-batch"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DROVIK_VERSION));
    try {
        return run();
    } catch (const std::bad_alloc&) {
        return complain(QStringLiteral("There is not enough memory."));
    } catch (const std::exception& failure) {
        return complain(QString::fromLocal8Bit(failure.what()));
    }
}

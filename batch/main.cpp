#include "app/FourPs.h"
#include "batch/PanelDriver.h"
#include "system/Signals.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

namespace
{

enum ExitStatus { Done = 0, Refused = 1, BadJob = 2 };

int complain(const QString& text)
{
    QTextStream stream(stderr);
    stream.setCodec("UTF-8");
    stream << text << '\n';
    return BadJob;
}

int analyse(const QString& path)
{
    JobError error;
    const std::optional<Job> job = readJob(path, error);
    if (!job)
        return complain(errorText(path, error));
    FourPs panel;
    if (const std::optional<JobError> unreadable = applyJob(*job, panel))
        return complain(errorText(path, *unreadable));
    const RunReport report = runJob(*job, panel);
    QTextStream stream(stdout);
    stream.setCodec("UTF-8");
    stream << reportText(*job, report);
    stream.flush();
    if (stream.status() != QTextStream::Ok)
        return complain(QStringLiteral("The report cannot be written."));
    return report.refused ? Refused : Done;
}

} // namespace

/// Runs a job in the panel of the main program, without a window and in English.
int main(int argc, char* argv[])
{
    reportFailedWrites();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("drovik-batch"));
    QApplication::setApplicationVersion(QStringLiteral(DROVIK_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Valence from X-ray absorption spectra: runs a job without a window.\n\n"
        "Exit status: 0 done, 1 a calculation was refused, 2 a bad job, an unreadable file or a "
        "report that cannot be written."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("JOB.toml"),
                                 QStringLiteral("Spectra, points and conditions."));
    if (!parser.parse(QApplication::arguments()))
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

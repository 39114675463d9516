#include "batch/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace
{

QCommandLineOption option(const char* name, const char* meaning, const char* value = "")
{
    return {QString::fromLatin1(name), QString::fromLatin1(meaning), QString::fromLatin1(value)};
}

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Valence from X-ray absorption spectra: runs a job without a window.\n\n"
        "Exit status: 0 all done, 1 some calculations were refused or found no finite number and "
        "the rest is done, 2 a bad job or an unreadable file and nothing was written, 3 the disk "
        "or a file failed."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        option("merge", "Joins the records of all shards and writes the results."),
        option("replay", "Calculates what is in a record again and tells what differs.", "RECORD"),
        option("watch", "Goes on with new files of the job, until a signal ends it."),
        option("rank", "Prints which energies to measure, the best first, from the references."),
        option("inspect", "Tells what a file holds: format, energies, size, noise, edge.", "FILE"),
        option("picture", "With --inspect: draws it. With --rank: draws the choice.", "FILE.png"),
        option("convert", "Writes what the job reads as the window reads it, and a job for it."),
        option("to", "With --convert: the folder.", "FOLDER"),
        option("show", "Opens the job in the window."),
        option("check", "Only reads the job and its files."),
        option("list", "Prints the targets of the job, one on each line."),
        option("0", "With --list: ends each with NUL."),
        option("template", "Prints a job with every key and what it means."),
        option("jobs", "Threads; unless given, the processors that may be used.", "N"),
        option("quiet", "No progress, no names of written files."),
        option("verbose", "Tells what becomes of each target."),
        option("again", "Also calculates what is in the record already."),
        option("shard", "Only every N-th of the list, from the K-th, into a record of its own.",
               "K/N"),
    });
    parser.addPositionalArgument(QStringLiteral("JOB.toml"),
                                 QStringLiteral("Spectra, points and conditions."));
}

/// @return why the number of threads or the shard makes no sense
QString readNumbers(const QCommandLineParser& parser, RunOptions& run)
{
    const QString jobs = QStringLiteral("jobs");
    const QString shard = QStringLiteral("shard");
    if (parser.isSet(jobs)) {
        run.threads = parser.value(jobs).toUInt();
        if (run.threads < 1 || run.threads > mostThreads)
            return QStringLiteral("--jobs takes a number from 1 to %1.").arg(mostThreads);
    }
    if (parser.isSet(shard)) {
        const std::optional<Shard> given = Shard::fromText(parser.value(shard));
        if (!given)
            return QStringLiteral("--shard takes K/N, two numbers with 1 <= K <= N <= %1.")
                .arg(Shard::most);
        run.shard = *given;
    }
    return {};
}

} // namespace

QString readCommandLine(QCommandLineParser& parser, CommandLine& asked)
{
    describe(parser);
    if (!parser.parse(QCoreApplication::arguments()))
        return parser.errorText();
    const auto isSet = [&parser](const char* name) {
        return parser.isSet(QString::fromLatin1(name));
    };
    asked.help = isSet("help");
    asked.version = isSet("version");
    asked.showTemplate = isSet("template");
    asked.rank = isSet("rank");
    asked.show = isSet("show");
    asked.merge = isSet("merge");
    asked.replay = parser.value(QStringLiteral("replay"));
    asked.inspect = parser.value(QStringLiteral("inspect"));
    asked.picture = parser.value(QStringLiteral("picture"));
    asked.run.checkOnly = isSet("check");
    asked.run.listOnly = isSet("list");
    asked.run.listWithNul = isSet("0");
    asked.run.quiet = isSet("quiet");
    asked.run.verbose = isSet("verbose");
    asked.run.again = isSet("again");
    asked.run.watch = isSet("watch");
    if (int(asked.merge) + int(isSet("shard")) + int(isSet("replay")) + int(asked.run.watch) > 1)
        return QStringLiteral("--shard, --merge, --replay and --watch exclude one another.");
    if (QString wrong = readNumbers(parser, asked.run); !wrong.isEmpty())
        return wrong;
    asked.convert = isSet("convert");
    asked.to = parser.value(QStringLiteral("to"));
    if (asked.convert == asked.to.isEmpty())
        return QStringLiteral("--convert and --to FOLDER go together.");
    if (isSet("picture") && !isSet("inspect") && !asked.rank)
        return QStringLiteral("--picture goes with --inspect or --rank.");
    asked.names = parser.positionalArguments();
    asked.job = asked.names.value(0);
    if (isSet("inspect"))
        return asked.names.isEmpty() ? QString() : QStringLiteral("--inspect takes one file.");
    const bool needsJob =
        asked.replay.isEmpty() && !asked.help && !asked.version && !asked.showTemplate;
    if (needsJob && asked.names.size() != 1)
        return QStringLiteral("One job file is expected: drovik-batch JOB.toml");
    return {};
}

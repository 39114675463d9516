#include "examples/MixedSampleFiles.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

/// Writes the example spectra: the nickel-like mixture with counting noise and without.
int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Makes spectra of a mixed-valence sample whose composition is known."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("folder"),
                                 QStringLiteral("Where to write; made if it does not exist."));
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    const QDir folder(parser.positionalArguments().constFirst());
    constexpr std::uint_fast64_t seed = 1;
    QString failed = writeSample(folder.filePath(QStringLiteral("nickel")), MixedSample(), seed);
    if (failed.isEmpty())
        failed = writeSample(folder.filePath(QStringLiteral("nickel-noise-free")), MixedSample(),
                             std::nullopt);
    if (failed.isEmpty())
        return 0;
    QTextStream(stderr) << "Cannot write " << failed << '\n';
    return 1;
}

#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "examples/NightSample.h"
#include "examples/StackFiles.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>
#include <QTextStream>

namespace
{

constexpr std::uint_fast64_t seed = 1;

/// The size in "1024x768"; nothing where it is none.
std::optional<MapSample> mapOfSize(const QString& text)
{
    static const QRegularExpression size(QStringLiteral("^([1-9][0-9]*)x([1-9][0-9]*)$"));
    const QRegularExpressionMatch match = size.match(text);
    MapSample map;
    map.columns = match.captured(1).toInt();
    map.rows = match.captured(2).toInt();
    if (map.columns < 1 || map.rows < 1)
        return std::nullopt;
    return map;
}

/// Noise-free spectra and the images of a map.
QString writeMapExample(const QString& folder, const MapSample& map)
{
    const QString failed = writeSample(folder, map.sample, std::nullopt);
    return failed.isEmpty() ? writeMap(folder, map) : failed;
}

/// The nickel-like mixture with counting noise and without, a small map, a night of samples,
/// and a map as stacks of images.
QString writeAll(const QDir& folder)
{
    QString failed = writeSample(folder.filePath(QStringLiteral("nickel")), MixedSample(), seed);
    if (failed.isEmpty())
        failed = writeSample(folder.filePath(QStringLiteral("nickel-noise-free")), MixedSample(),
                             std::nullopt);
    if (failed.isEmpty())
        failed = writeMapExample(folder.filePath(QStringLiteral("nickel-map")), MapSample());
    if (failed.isEmpty())
        failed = night::write(folder.filePath(QStringLiteral("nickel-night")));
    if (failed.isEmpty())
        failed = writeStackExample(folder.filePath(QStringLiteral("nickel-stack")), MapSample());
    return failed;
}

} // namespace

/// Writes the examples, or a map of any size.
int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Makes spectra and maps of mixed-valence samples whose composition is known."));
    parser.addHelpOption();
    const QCommandLineOption mapOption(QStringLiteral("map"),
                                       QStringLiteral("Only a map of this size, with its spectra."),
                                       QStringLiteral("COLUMNSxROWS"));
    parser.addOption(mapOption);
    parser.addPositionalArgument(QStringLiteral("folder"),
                                 QStringLiteral("Where to write; made if it does not exist."));
    parser.process(application);
    const std::optional<MapSample> map = mapOfSize(parser.value(mapOption));
    if (parser.positionalArguments().size() != 1 || parser.isSet(mapOption) != map.has_value())
        parser.showHelp(2);

    const QString folder = parser.positionalArguments().constFirst();
    const QString failed = map ? writeMapExample(folder, *map) : writeAll(QDir(folder));
    if (failed.isEmpty())
        return 0;
    QTextStream(stderr) << "Cannot write " << failed << '\n';
    return 1;
}

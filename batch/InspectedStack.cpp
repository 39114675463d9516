#include "batch/InspectedStack.h"

#include "batch/InspectedSpectrum.h"
#include "formats/CameraFile.h"
#include "formats/CameraIndex.h"
#include "formats/StackOverview.h"
#include "formats/StackProcess.h"
#include "input/MapReader.h"
#include "text/TextBytes.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{

/// A larger frame is not drawn.
constexpr std::int64_t largestImage = std::int64_t{1} << 26;

/// "1 frame", "3 frames".
QString countText(std::size_t count, const char* what)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(what),
                                                    QLatin1String(count == 1 ? "" : "s"));
}

QString sizeText(int columns, int rows)
{
    return QStringLiteral("%1 x %2 pixels").arg(columns).arg(rows);
}

/// Least, mean and largest of an image.
QString spreadText(const MapData& image)
{
    double least = INFINITY;
    double largest = -INFINITY;
    double sum = 0.0;
    std::size_t count = 0;
    for (const double value : image.mut) {
        if (!std::isfinite(value))
            continue;
        least = std::min(least, value);
        largest = std::max(largest, value);
        sum += value;
        ++count;
    }
    if (count == 0)
        return QStringLiteral("no pixel has a value");
    QString text = rangeText(least, largest) +
                   QStringLiteral(", mean %1").arg(sum / static_cast<double>(count), 0, 'g', 6);
    if (count < image.mut.size())
        text += QStringLiteral(", %1 pixels without a value").arg(image.mut.size() - count);
    return text;
}

void takeImage(MapData image, const QString& title, const QString& values, Inspection& inspection)
{
    inspection.add("image", QStringLiteral("%1: %2 %3").arg(title, values, spreadText(image)));
    inspection.imageTitle = title;
    inspection.imageValues = values;
    inspection.image = std::move(image);
}

/// Positions of an image that has none of its own.
SharedPositions countedPositions(int columns, int rows)
{
    MapPositions positions;
    const auto width = static_cast<std::size_t>(columns);
    if (!positions.resize(width * static_cast<std::size_t>(rows)))
        return nullptr;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const std::size_t row = i / width;
        positions[i] = {static_cast<double>(i - row * width), static_cast<double>(row)};
    }
    return std::make_shared<const MapPositions>(std::move(positions));
}

/// The counts of a camera's frame.
std::optional<FileFault> takeFrame(const QString& path, const CameraHeader& header,
                                   const QString& title, Inspection& inspection)
{
    if (std::int64_t{header.columns} * header.rows > largestImage)
        return std::nullopt;
    const Region region{0, 0, header.columns, header.rows};
    const auto pixels =
        static_cast<std::size_t>(header.columns) * static_cast<std::size_t>(header.rows);
    std::vector<char> bytes(pixels * static_cast<std::size_t>(header.bytesPerPixel));
    if (auto fault = readCameraPixels(path, header, region, bytes.data()))
        return fault;
    MapData image;
    image.columns = header.columns;
    image.rows = header.rows;
    image.positions = countedPositions(header.columns, header.rows);
    if (!image.positions || !image.mut.resize(pixels))
        return FileFault{path, 0, QStringLiteral("does not fit in memory")};
    Frame frame; // numbers that are mu-t stay as they are
    frame.frame = {pixelTypeOf(header), bytes.data()};
    addMut(frame, 0, pixels, image.mut.data(), false);
    takeImage(std::move(image), title, QStringLiteral("counts"), inspection);
    inspection.positions = PositionUnit::Pixels;
    return std::nullopt;
}

QString frameName(const QString& index, std::size_t frame, int digits)
{
    return QStringLiteral("%1_%2").arg(index).arg(frame, digits, 10, QLatin1Char('0'));
}

/// The file of a frame, the first one where it was repeated; empty where there is none.
QString frameFile(const QString& index, std::size_t frame, int digits)
{
    const QString stem = frameName(index, frame, digits);
    for (const char* const end : {".img", "_000.img"})
        if (QFile::exists(stem + QLatin1String(end)))
            return stem + QLatin1String(end);
    return {};
}

/// ln(I0 / mean counts) of each frame that is there; none where that takes too long.
SpectrumPoints meansOf(const QString& path, const CameraIndex& index, int digits)
{
    constexpr std::int64_t mostPixels = std::int64_t{1} << 30;
    std::int64_t seen = 0;
    SpectrumPoints points;
    for (std::size_t k = 0; k < index.energies.size(); ++k) {
        const QString name = frameFile(path, k, digits);
        CameraFile file;
        Inspection frame;
        if (name.isEmpty() || readCameraFile(name, file) ||
            takeFrame(name, file.frames.front(), QString(), frame) || !frame.image)
            continue;
        seen += static_cast<std::int64_t>(frame.image->mut.size());
        if (seen > mostPixels)
            return {};
        const PixelArray<double>& counts = frame.image->mut;
        const double sum = std::accumulate(counts.begin(), counts.end(), 0.0);
        const double mut = std::log(index.incident[k] * static_cast<double>(counts.size()) / sum);
        if (std::isfinite(mut))
            points.push_back({0.0, index.energies[k], mut});
    }
    return points;
}

QString valuesText(StackValues values)
{
    switch (values) {
    case StackValues::MuT:
        return QStringLiteral("mu-t");
    case StackValues::Transmission:
        return QStringLiteral("transmission, mu-t = -ln T");
    case StackValues::Counts:
        return QStringLiteral("counts, mu-t = ln((flat - dark) / (frame - dark))");
    case StackValues::Unknown:
        break;
    }
    return QStringLiteral("not said");
}

void addFacts(const StackFacts& facts, Inspection& inspection)
{
    inspection.add("kind", facts.kind);
    inspection.positions = unitOfPixels(facts.pixelWidth);
    addEnergies(facts.energies, inspection);
    inspection.add("size", QStringLiteral("%1, %2, %3")
                               .arg(sizeText(facts.columns, facts.rows),
                                    countText(facts.energies.size(), "frame"),
                                    QLatin1String(nameOf(facts.type))));
    if (facts.pixelWidth > 0.0)
        inspection.add(
            "pixel size",
            QStringLiteral("%1 x %2 micrometres").arg(facts.pixelWidth).arg(facts.pixelHeight));
    inspection.add("assumed", facts.assumed);
    inspection.add("warning", facts.warnings);
}

/// Facts, image and mean spectrum of a stack that opens.
/// @param needed  what a job has to say besides; empty where it opens without more
std::optional<FileFault> inspectOpened(Stack& stack, const QString& path, const QString& needed,
                                       Inspection& inspection)
{
    const StackFacts& facts = stack.facts();
    addFacts(facts, inspection);
    inspection.add("values", valuesText(needed.isEmpty() ? facts.values : StackValues::Unknown));
    inspection.add("needed", needed);
    StackOverview overview;
    if (auto fault = overviewOf(stack, path, overview))
        return fault;
    if (overview.region.width < facts.columns || overview.region.height < facts.rows)
        inspection.add("looked at", QStringLiteral("the middle, ") +
                                        sizeText(overview.region.width, overview.region.height));
    if (overview.frames.size() < facts.energies.size())
        inspection.add("looked at", QStringLiteral("%1 of the frames").arg(overview.frames.size()));
    const QString values = needed.isEmpty() ? QStringLiteral("mu-t") : QStringLiteral("numbers");
    takeImage(std::move(overview.image), QStringLiteral("%1 eV").arg(overview.energy, 0, 'g', 10),
              values, inspection);
    if (overview.spectrum.empty())
        return std::nullopt;
    if (needed.isEmpty())
        addSpectrum(overview.spectrum, QStringLiteral(", means of all pixels"), inspection);
    else
        addNumbers(overview.spectrum, inspection);
    return std::nullopt;
}

/// What is in a file that has no stack by itself.
/// @return the same fault where nothing is
std::optional<FileFault> inspectClosed(const QString& path, FileKind kind, const FileFault& fault,
                                       bool hasSets, Inspection& inspection)
{
    if (kind == FileKind::Hdf5) {
        if (!hasSets)
            return fault;
        inspection.add("needed", fault.reason);
        return std::nullopt;
    }
    StackWords answer;
    if (auto wrong = askStackProcess(
            path, {"describe-tiff", "file=" + QFile::encodeName(path).toStdString()}, nullptr,
            answer))
        return wrong;
    const long type = answer.number("type");
    inspection.add("size", QStringLiteral("%1 x %2 pixels, %3 pages, %4")
                               .arg(answer.number("columns"))
                               .arg(answer.number("rows"))
                               .arg(answer.number("frames"))
                               .arg(QLatin1String(nameOf(static_cast<PixelType>(type)))));
    inspection.add("needed", fault.reason);
    return std::nullopt;
}

bool addSets(const QString& path, Inspection& inspection, std::optional<FileFault>& fault)
{
    StackWords answer;
    fault = askStackProcess(path, {"contents", "file=" + QFile::encodeName(path).toStdString()},
                            nullptr, answer);
    const auto [first, last] = answer.values.equal_range("set");
    for (auto at = first; at != last; ++at)
        inspection.add("data set", textFromUtf8(at->second));
    return first != last;
}

} // namespace

std::optional<FileFault> inspectMapText(const QString& path, Inspection& inspection)
{
    MapData map;
    const MapReadResult result = readMapData(path, map);
    if (result.outcome != ReadOutcome::Read)
        return FileFault{path, 0,
                         result.reason.isEmpty() ? QStringLiteral("cannot be opened")
                         : result.outcome == ReadOutcome::TooLarge
                             ? QStringLiteral("is too large")
                             : QStringLiteral("cannot be read")};
    if (!map.valid)
        return FileFault{path, 0,
                         QStringLiteral("has no 2D data with axes: lines \"# AXIS 0\" and \"# AXIS "
                                        "1\" with their sizes, and rows of x, y, I and I0")};
    for (const QString& energy : result.energies)
        inspection.add("energy", energy + QStringLiteral(" eV"));
    inspection.add("size", sizeText(map.columns, map.rows));
    const auto pixels = std::int64_t{map.columns} * map.rows;
    const auto records = static_cast<std::int64_t>(map.mut.size());
    if (records != pixels)
        inspection.add(
            "warning",
            QStringLiteral("there are %1 records for %2 pixels").arg(records).arg(pixels));
    const QString title = result.energies.isEmpty()
                              ? QFileInfo(path).fileName()
                              : result.energies.last() + QStringLiteral(" eV");
    if (records < pixels || pixels > largestImage)
        inspection.add("mu-t", spreadText(map)); // not drawn
    else
        takeImage(std::move(map), title, QStringLiteral("mu-t"), inspection);
    return std::nullopt;
}

std::optional<FileFault> inspectCameraFile(const QString& path, Inspection& inspection)
{
    CameraFile file;
    if (auto fault = readCameraFile(path, file))
        return fault;
    const CameraHeader& header = file.frames.front();
    const std::size_t middle = file.frames.size() / 2;
    inspection.add("size", QStringLiteral("%1, %2, %3")
                               .arg(sizeText(header.columns, header.rows),
                                    countText(file.frames.size(), "frame"),
                                    QLatin1String(nameOf(pixelTypeOf(header)))));
    inspection.add("needed", file.frames.size() > 1
                                 ? QStringLiteral("energies = \"...\", a text of them, and flat = "
                                                  "\"...\", frames without sample; dark if there "
                                                  "is one")
                                 : QStringLiteral("a [[map]] names the index of the frames, the "
                                                  "beamline's text beside them"));
    return takeFrame(path, file.frames[middle], QStringLiteral("frame %1").arg(middle + 1),
                     inspection);
}

bool hasCameraFrames(const QString& path)
{
    return !frameFile(path, 0, 3).isEmpty() || !frameFile(path, 0, 4).isEmpty();
}

std::optional<FileFault> inspectCameraIndex(const QString& path, Inspection& inspection)
{
    inspection.lines.clear();
    inspection.add("format", QStringLiteral("an index of camera frames (img)"));
    CameraIndex index;
    if (auto fault = readCameraIndex(path, index))
        return fault;
    addEnergies(index.energies, inspection);
    const int digits = frameFile(path, 0, 3).isEmpty() ? 4 : 3;
    std::size_t there = 0;
    for (std::size_t k = 0; k < index.energies.size(); ++k)
        there += frameFile(path, k, digits).isEmpty() ? 0 : 1;
    inspection.add("frames",
                   QStringLiteral("%1 of %2 are there").arg(there).arg(index.energies.size()));
    inspection.add("needed", QStringLiteral("reference = \"...\", the index of the frames without "
                                            "sample"));
    const std::size_t middle = index.energies.size() / 2;
    const QString file = frameFile(path, middle, digits);
    CameraFile frame;
    if (file.isEmpty())
        return FileFault{frameName(path, middle, digits) + QStringLiteral(".img"), 0,
                         QStringLiteral("there is no such file")};
    if (auto fault = readCameraFile(file, frame))
        return fault;
    const CameraHeader& header = frame.frames.front();
    inspection.add("size", sizeText(header.columns, header.rows) + QStringLiteral(", ") +
                               QLatin1String(nameOf(pixelTypeOf(header))));
    const SpectrumPoints means = meansOf(path, index, digits);
    if (!means.empty())
        addSpectrum(means, QStringLiteral(", ln(I0 / mean counts)"), inspection);
    return takeFrame(file, header, QStringLiteral("%1 eV").arg(index.energies[middle], 0, 'g', 10),
                     inspection);
}

std::optional<FileFault> inspectStackFile(const QString& path, FileKind kind,
                                          Inspection& inspection)
{
    bool hasSets = false;
    if (kind == FileKind::Hdf5) {
        std::optional<FileFault> wrong;
        hasSets = addSets(path, inspection, wrong);
        if (wrong)
            return wrong;
    }
    StackSource source;
    source.path = path;
    FileFault fault;
    if (const auto stack = openStack(source, fault))
        return inspectOpened(*stack, path, QString(), inspection);
    // Without a word on what its numbers are, they are shown as they are.
    source.values = StackValues::MuT;
    FileFault other;
    if (const auto stack = openStack(source, other))
        return inspectOpened(*stack, path, fault.reason, inspection);
    return inspectClosed(path, kind, other, hasSets, inspection);
}

#include "formats/CameraStack.h"

#include "formats/CameraFile.h"
#include "formats/CameraIndex.h"
#include "formats/StackEnergies.h"
#include "system/InputFile.h"

#include <QFile>

#include <cmath>

namespace
{

constexpr int mostRepeats = 1000;
constexpr int darkFrames = 10;

/// A frame in a file.
struct Place {
    QString path;
    CameraHeader header;
};

/// The frames of one measurement: some places for each energy, of which the mean counts.
using Places = std::vector<std::vector<Place>>;

std::size_t pixelsOf(const Region& region)
{
    return static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
}

using Memory = std::vector<std::shared_ptr<void>>;

/// Memory of a plane, kept with others.
/// @return null where it is refused
template <class T>
T* newPlane(std::size_t pixels, Memory& kept)
{
    auto memory = std::make_shared<PixelArray<T>>();
    if (!memory->resize(pixels))
        return nullptr;
    kept.push_back(memory);
    return memory->data();
}

FileFault tooLarge(const QString& path)
{
    return {path, 0, QStringLiteral("does not fit in memory")};
}

/// Reads one frame as it is stored, or the mean of several in double precision.
std::optional<FileFault> readMean(const std::vector<Place>& places, const Region& region,
                                  Memory& memory, Plane& plane)
{
    const Place& first = places.front();
    const std::size_t pixels = pixelsOf(region);
    plane.type = pixelTypeOf(first.header);
    auto* const stored = newPlane<char>(pixels * bytesOf(plane.type), memory);
    if (stored == nullptr)
        return tooLarge(first.path);
    plane.pixels = stored;
    if (places.size() == 1)
        return readCameraPixels(first.path, first.header, region, stored);
    auto* const mean = newPlane<double>(pixels, memory);
    if (mean == nullptr)
        return tooLarge(first.path);
    Frame frame;
    frame.frame = plane;
    frame.weight = 1.0 / static_cast<double>(places.size());
    for (std::size_t k = 0; k < places.size(); ++k) {
        if (auto fault = readCameraPixels(places[k].path, places[k].header, region, stored))
            return fault;
        addMut(frame, 0, pixels, mean, k > 0); // numbers that are mu-t stay as they are
    }
    plane = {PixelType::F64, reinterpret_cast<const char*>(mean)};
    return std::nullopt;
}

class CameraStack : public Stack
{
public:
    std::optional<FileFault> read(const std::vector<std::size_t>& indices, const Region& region,
                                  FrameSet& set) override;

    std::optional<FileFault> open(const StackSource& source);

private:
    std::optional<FileFault> openIndexed(const StackSource& source);
    std::optional<FileFault> openReference(const StackSource& source, const CameraIndex& index);
    std::optional<FileFault> openSingle(const StackSource& source);
    std::optional<FileFault> findDark(const StackSource& source);
    std::optional<FileFault> add(const QString& path, std::vector<Place>& places);
    std::optional<FileFault> addIndexed(const QString& index, std::size_t count, Places& places);

    Places m_frames;
    Places m_flats; ///< one for each frame, or one for all
    std::vector<Place> m_dark;
    std::vector<double> m_added; ///< to mu-t of each frame
    double m_darkLevel = 0.0;
};

/// Frames of a file, which are as large as those before.
std::optional<FileFault> CameraStack::add(const QString& path, std::vector<Place>& places)
{
    CameraFile file;
    if (auto fault = readCameraFile(path, file))
        return fault;
    const CameraHeader& header = file.frames.front();
    if (m_facts.columns == 0) {
        m_facts.columns = header.columns;
        m_facts.rows = header.rows;
        m_facts.type = pixelTypeOf(header);
    }
    if (header.columns != m_facts.columns || header.rows != m_facts.rows)
        return FileFault{path, 0,
                         QStringLiteral("has %1 x %2 pixels where the first frame has %3 x %4")
                             .arg(header.columns)
                             .arg(header.rows)
                             .arg(m_facts.columns)
                             .arg(m_facts.rows)};
    for (const CameraHeader& frame : file.frames)
        places.push_back({path, frame});
    return std::nullopt;
}

std::optional<FileFault> CameraStack::addIndexed(const QString& index, std::size_t count,
                                                 Places& places)
{
    constexpr std::size_t mostOfThreeDigits = 999;
    const int digits = count > mostOfThreeDigits ? 4 : 3;
    const auto number = [](int value, int width) {
        return QStringLiteral("_%1").arg(value, width, 10, QLatin1Char('0'));
    };
    places.resize(count);
    for (std::size_t k = 0; k < count; ++k) {
        const QString stem = index + number(static_cast<int>(k), digits);
        const QString single = stem + QStringLiteral(".img");
        const auto repeat = [&](int r) { return stem + number(r, 3) + QStringLiteral(".img"); };
        if (QFile::exists(single) || !QFile::exists(repeat(0))) {
            if (auto fault = add(single, places[k]))
                return fault;
            continue;
        }
        for (int r = 0; r < mostRepeats && QFile::exists(repeat(r)); ++r)
            if (auto fault = add(repeat(r), places[k]))
                return fault;
    }
    return std::nullopt;
}

std::optional<FileFault> CameraStack::openReference(const StackSource& source,
                                                    const CameraIndex& index)
{
    constexpr double sameEnergy = 0.1; // eV
    if (source.reference.isEmpty())
        return FileFault{
            source.path, 0,
            QStringLiteral("has counts and no frames without sample; name their index: "
                           "reference = \"...\"")};
    CameraIndex reference;
    if (auto fault = readCameraIndex(source.reference, reference))
        return fault;
    bool same = reference.energies.size() == index.energies.size();
    for (std::size_t k = 0; same && k < index.energies.size(); ++k)
        same = std::abs(reference.energies[k] - index.energies[k]) <= sameEnergy;
    if (!same)
        return FileFault{source.reference, 0,
                         QStringLiteral("has other energies than ") + source.path};
    for (std::size_t k = 0; k < index.energies.size(); ++k) {
        const double ratio = index.incident[k] / reference.incident[k];
        if (!(ratio > 0.0 && std::isfinite(ratio)))
            return FileFault{source.path, 0,
                             QStringLiteral("I0 of row %1 is not positive here or in %2")
                                 .arg(k + 1)
                                 .arg(source.reference)};
        m_added.push_back(std::log(ratio));
    }
    return addIndexed(source.reference, index.energies.size(), m_flats);
}

std::optional<FileFault> CameraStack::openIndexed(const StackSource& source)
{
    CameraIndex index;
    if (auto fault = readCameraIndex(source.path, index))
        return fault;
    m_facts.energies = index.energies;
    if (auto fault = addIndexed(source.path, index.energies.size(), m_frames))
        return fault;
    if (auto fault = openReference(source, index))
        return fault;
    return findDark(source);
}

/// One file with all frames, its energies in a text.
std::optional<FileFault> CameraStack::openSingle(const StackSource& source)
{
    std::vector<Place> places;
    if (auto fault = add(source.path, places))
        return fault;
    for (const Place& place : places)
        m_frames.push_back({place});
    const auto text = InputFile::open(source.energies);
    if (source.energies.isEmpty() || !text)
        return FileFault{
            source.path, 0,
            QStringLiteral("has no energies; name a text of them: energies = \"...\"")};
    QString reason;
    m_facts.energies = energiesOf(*text, reason);
    if (!reason.isEmpty())
        return FileFault{source.energies, 0, reason};
    if (m_facts.energies.size() != m_frames.size())
        return FileFault{source.energies, 0,
                         QStringLiteral("has %1 energies for %2 frames")
                             .arg(m_facts.energies.size())
                             .arg(m_frames.size())};
    if (source.flat.isEmpty())
        return FileFault{source.path, 0,
                         QStringLiteral("has counts and no frame without sample; name it: flat = "
                                        "\"...\"")};
    std::vector<Place> flats;
    if (auto fault = add(source.flat, flats))
        return fault;
    if (flats.size() == m_frames.size())
        for (const Place& flat : flats)
            m_flats.push_back({flat});
    else
        m_flats.push_back(flats);
    return findDark(source);
}

std::optional<FileFault> CameraStack::findDark(const StackSource& source)
{
    m_darkLevel = source.darkLevel.value_or(0.0);
    if (source.darkLevel)
        return std::nullopt;
    if (!source.dark.isEmpty())
        return add(source.dark, m_dark);
    for (int k = 0; k < darkFrames; ++k) {
        const QString path = source.path + QStringLiteral("_dk%1.img").arg(k);
        if (QFile::exists(path))
            if (auto fault = add(path, m_dark))
                return fault;
    }
    if (m_dark.empty())
        m_facts.warnings += QStringLiteral("there is no dark frame; 0 counts are taken for dark");
    return std::nullopt;
}

std::optional<FileFault> CameraStack::open(const StackSource& source)
{
    int error = 0;
    const auto file = InputFile::open(source.path, &error);
    if (!file)
        return FileFault{source.path, 0,
                         QStringLiteral("cannot be opened: ") + whyNotOpened(error)};
    const bool single = cameraHeaderAt(*file, 0).has_value();
    m_facts.kind = single ? QStringLiteral("his") : QStringLiteral("img");
    m_facts.values = StackValues::Counts;
    m_facts.pixelWidth = m_facts.pixelHeight = source.pixelSize;
    if (auto fault = single ? openSingle(source) : openIndexed(source))
        return fault;
    QString assumed;
    if (auto reason = toElectronVolt(m_facts.energies, QStringLiteral(""), assumed))
        return FileFault{source.path, 0, *reason};
    if (single)
        m_facts.assumed += assumed;
    return std::nullopt;
}

std::optional<FileFault> CameraStack::read(const std::vector<std::size_t>& indices,
                                           const Region& region, FrameSet& set)
{
    Frame& common = set.shared;
    common.values = StackValues::Counts;
    common.darkLevel = m_darkLevel;
    std::optional<FileFault> fault;
    if (!m_dark.empty() && common.dark.pixels == nullptr)
        fault = readMean(m_dark, region, set.sharedMemory, common.dark);
    const bool oneFlat = m_flats.size() == 1;
    if (!fault && oneFlat && common.flat.pixels == nullptr)
        fault = readMean(m_flats.front(), region, set.sharedMemory, common.flat);
    for (std::size_t k = 0; !fault && k < indices.size(); ++k) {
        const std::size_t i = indices[k];
        Frame frame = common;
        frame.added = m_added.empty() ? 0.0 : m_added[i];
        fault = readMean(m_frames[i], region, set.memory, frame.frame);
        if (!fault && !oneFlat)
            fault = readMean(m_flats[i], region, set.memory, frame.flat);
        set.frames.push_back(frame);
    }
    return fault;
}

} // namespace

std::unique_ptr<Stack> openCameraStack(const StackSource& source, FileFault& fault)
{
    auto stack = std::make_unique<CameraStack>();
    if (const auto wrong = stack->open(source)) {
        fault = *wrong;
        return nullptr;
    }
    return stack;
}

#include "formats/Hdf5Stack.h"

#include "formats/RawImages.h"
#include "formats/StackEnergies.h"
#include "formats/StackProcess.h"
#include "system/InputFile.h"
#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <QFile>

#include <algorithm>
#include <sstream>

namespace
{

/// Images of the stack's size that are no frames: flat or dark.
struct Images {
    std::string path;
    PixelType type = PixelType::U16;
    long count = 0;
    std::vector<std::int64_t> places; ///< in the file, where they lie there as in memory
};

/// Planes that are read at once.
struct Part {
    std::string word; ///< path and indices
    Plane Frame::*place;
    PixelType type;
    bool isShared;      ///< one plane, or the mean of several, for all frames
    RawImages raw;      ///< the same, as they may lie in the file
    std::size_t offset; ///< in the memory
};

std::string bytesOf(const QString& text)
{
    return text.toUtf8().toStdString();
}

std::vector<double> numbersIn(const std::string& line)
{
    std::vector<double> numbers;
    std::istringstream words(line);
    for (std::string word; words >> word;)
        numbers.push_back(numberFromToken(word));
    return numbers;
}

std::string listOf(const std::vector<std::size_t>& indices)
{
    std::string list;
    for (const std::size_t i : indices)
        list += (list.empty() ? "" : ",") + std::to_string(i);
    return list;
}

class Hdf5Stack : public Stack
{
public:
    std::optional<FileFault> read(const std::vector<std::size_t>& indices, const Region& region,
                                  FrameSet& set) override;

    std::optional<FileFault> open(const StackSource& source);

private:
    std::optional<FileFault> readEnergyFile(const StackSource& source);
    std::optional<FileFault> take(const StackWords& words, const StackSource& source);
    void takeImages(const StackWords& words, const StackSource& source);
    Images imagesOf(const StackWords& words, const std::string& name) const;
    std::vector<Part> partsOf(const std::vector<std::size_t>& indices) const;
    Part partOf(const Images& images, Plane Frame::*place,
                const std::vector<std::size_t>& indices) const;
    bool readRaw(const std::vector<Part>& parts, const Region& region, PixelArray<char>& memory,
                 const FrameSet& set) const;
    void takeParts(const std::vector<Part>& parts, const std::shared_ptr<PixelArray<char>>& memory,
                   std::size_t frames, std::size_t pixels, FrameSet& set) const;

    QString m_path;
    std::optional<FileState> m_state; ///< of the file, before it is described
    std::string m_dimension;
    Images m_frames;
    std::vector<double> m_givenEnergies;
    Images m_flat;
    Images m_dark;
    double m_darkLevel = 0.0;
};

Images Hdf5Stack::imagesOf(const StackWords& words, const std::string& name) const
{
    const long count = words.number(name + "-images");
    return {words.value(name), static_cast<PixelType>(words.number(name + "-type")), count,
            rawPlaces(words.value(name + "-places"), static_cast<std::size_t>(count))};
}

/// Energies of a text beside the file, where the source names one.
std::optional<FileFault> Hdf5Stack::readEnergyFile(const StackSource& source)
{
    if (source.energies.isEmpty() || !QFile::exists(source.energies))
        return std::nullopt;
    const auto file = InputFile::open(source.energies);
    QString reason = QStringLiteral("cannot be opened");
    if (file) {
        reason.clear();
        m_givenEnergies = energiesOf(*file, reason);
    }
    return reason.isEmpty() ? std::nullopt : std::optional(FileFault{source.energies, 0, reason});
}

std::optional<FileFault> Hdf5Stack::take(const StackWords& words, const StackSource& source)
{
    const auto fault = [this](const QString& reason) { return FileFault{m_path, 0, reason}; };
    m_facts.kind = textFromUtf8(words.value("kind"));
    m_facts.columns = static_cast<int>(words.number("columns"));
    m_facts.rows = static_cast<int>(words.number("rows"));
    m_facts.type = static_cast<PixelType>(words.number("type"));
    m_facts.values = static_cast<StackValues>(words.number("values"));
    constexpr long largestSide = 1 << 20;
    for (const char* const side : {"columns", "rows"})
        if (words.number(side) < 1 || words.number(side) > largestSide)
            return fault(QStringLiteral("has images of a size that makes no sense"));
    m_facts.energies =
        m_givenEnergies.empty() ? numbersIn(words.value("energies")) : m_givenEnergies;
    QString assumed;
    if (auto wrong = toElectronVolt(m_facts.energies, textFromUtf8(words.value("unit")), assumed))
        return fault(*wrong);
    if (!assumed.isEmpty())
        m_facts.assumed += assumed;
    const std::vector<double> sizes =
        numbersIn(words.value("pixel-width") + ' ' + words.value("pixel-height"));
    m_facts.pixelWidth = source.pixelSize > 0.0 ? source.pixelSize : sizes.at(0);
    m_facts.pixelHeight = source.pixelSize > 0.0 ? source.pixelSize : sizes.at(1);
    takeImages(words, source);
    for (auto [at, end] = words.values.equal_range("warning"); at != end; ++at)
        m_facts.warnings += textFromUtf8(at->second);
    const bool counts = m_facts.values == StackValues::Counts;
    if (counts && m_flat.path.empty())
        return fault(QStringLiteral("has counts and no images without sample; name them: flat = "
                                    "\"...\""));
    if (counts && m_dark.path.empty() && !source.darkLevel)
        m_facts.warnings += QStringLiteral("there is no dark image; 0 counts are taken for dark");
    return std::nullopt;
}

void Hdf5Stack::takeImages(const StackWords& words, const StackSource& source)
{
    const long frames = words.number("frames");
    m_frames = {words.value("data"), m_facts.type, frames,
                rawPlaces(words.value("places"), static_cast<std::size_t>(frames))};
    m_dimension = words.value("dimension");
    m_flat = imagesOf(words, "flat");
    m_dark = source.darkLevel ? Images() : imagesOf(words, "dark");
    m_darkLevel = source.darkLevel.value_or(0.0);
}

std::optional<FileFault> Hdf5Stack::open(const StackSource& source)
{
    m_path = source.path;
    if (auto fault = readEnergyFile(source))
        return fault;
    std::vector<std::string> words{"describe",
                                   "file=" + QFile::encodeName(source.path).toStdString(),
                                   "values=" + std::to_string(static_cast<int>(source.values)),
                                   "count=" + std::to_string(m_givenEnergies.size())};
    const auto give = [&words](const char* key, const QString& value) {
        if (!value.isEmpty())
            words.push_back(std::string(key) + '=' + bytesOf(value));
    };
    give("kind", source.kind);
    give("data", source.data);
    if (m_givenEnergies.empty())
        give("energies", source.energies);
    give("flat", source.flat);
    give("dark", source.dark);
    m_state = fileState(QFile::encodeName(m_path));
    StackWords answer;
    if (auto fault = askStackProcess(m_path, std::move(words), nullptr, answer))
        return fault;
    return take(answer, source);
}

/// Images of all frames, or one for all.
Part Hdf5Stack::partOf(const Images& images, Plane Frame::*place,
                       const std::vector<std::size_t>& indices) const
{
    const bool each = images.count == static_cast<long>(m_facts.energies.size());
    const bool mean = !each && images.count != 1;
    const std::string wanted = mean ? "mean" : each ? listOf(indices) : "0";
    Part part{
        images.path + '\t' + wanted, place, mean ? PixelType::F64 : images.type, !each, {}, 0};
    part.raw.type = images.type;
    part.raw.isMean = mean;
    part.raw.way = MeanWay::SumOverCount;
    const auto add = [&](std::size_t image) {
        const std::int64_t offset = image < images.places.size() ? images.places[image] : -1;
        part.raw.images.push_back({m_path, offset, m_state});
    };
    if (each)
        std::for_each(indices.begin(), indices.end(), add);
    else // a count without places is nothing to rely on
        for (std::size_t k = 0; k < std::max<std::size_t>(1, images.places.size()); ++k)
            add(k);
    return part;
}

std::vector<Part> Hdf5Stack::partsOf(const std::vector<std::size_t>& indices) const
{
    std::vector<Part> parts;
    if (m_facts.values == StackValues::Counts && !m_flat.path.empty())
        parts.push_back(partOf(m_flat, &Frame::flat, indices));
    if (m_facts.values == StackValues::Counts && !m_dark.path.empty())
        parts.push_back(partOf(m_dark, &Frame::dark, indices));
    Images frames = m_frames;
    frames.count = static_cast<long>(m_facts.energies.size());
    parts.push_back(partOf(frames, &Frame::frame, indices));
    // Means are doubles, and come first, where they lie evenly.
    std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) {
        return a.type == PixelType::F64 && b.type != PixelType::F64;
    });
    return parts;
}

std::optional<FileFault> Hdf5Stack::read(const std::vector<std::size_t>& indices,
                                         const Region& region, FrameSet& set)
{
    const std::size_t pixels =
        static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
    std::vector<Part> parts = partsOf(indices);
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [&set](const Part& part) {
                                   return part.isShared &&
                                          (set.shared.*part.place).pixels != nullptr;
                               }),
                parts.end());
    std::size_t bytes = 0;
    std::vector<std::string> words{
        "planes", "file=" + QFile::encodeName(m_path).toStdString(), "dimension=" + m_dimension,
        "region=" + listOf({static_cast<std::size_t>(region.x), static_cast<std::size_t>(region.y),
                            static_cast<std::size_t>(region.width),
                            static_cast<std::size_t>(region.height)})};
    for (Part& part : parts) {
        words.push_back("set=" + part.word);
        part.offset = bytes;
        bytes += (part.isShared ? 1 : indices.size()) * pixels * ::bytesOf(part.type);
    }
    const auto memory = pixelsToCome(bytes);
    if (!memory)
        return FileFault{m_path, 0, QStringLiteral("does not fit in memory")};
    StackWords answer;
    if (!readRaw(parts, region, *memory, set))
        if (auto fault = askForPixels(m_path, words, *memory, set.workers, answer))
            return fault;
    takeParts(parts, memory, indices.size(), pixels, set);
    return std::nullopt;
}

/// Reads images that lie in the file as in memory, all or none.
bool Hdf5Stack::readRaw(const std::vector<Part>& parts, const Region& region,
                        PixelArray<char>& memory, const FrameSet& set) const
{
    std::vector<RawImages> all;
    for (const Part& part : parts) {
        all.push_back(part.raw);
        all.back().offset = part.offset;
    }
    return mayReadRaw() && readRawImages(all, m_facts.columns, region, memory.data(), set.workers);
}

void Hdf5Stack::takeParts(const std::vector<Part>& parts,
                          const std::shared_ptr<PixelArray<char>>& memory, std::size_t frames,
                          std::size_t pixels, FrameSet& set) const
{
    set.memory.push_back(memory);
    set.shared.values = m_facts.values;
    set.shared.darkLevel = m_darkLevel;
    for (const Part& part : parts)
        if (part.isShared) {
            set.shared.*part.place = {part.type, memory->data() + part.offset};
            set.sharedMemory.push_back(memory);
        }
    for (std::size_t k = 0; k < frames; ++k) {
        Frame frame = set.shared;
        for (const Part& part : parts)
            if (!part.isShared)
                frame.*part.place = {part.type, memory->data() + part.offset +
                                                    k * pixels * ::bytesOf(part.type)};
        set.frames.push_back(frame);
    }
}

} // namespace

std::unique_ptr<Stack> openHdf5Stack(const StackSource& source, FileFault& fault)
{
    auto stack = std::make_unique<Hdf5Stack>();
    if (const auto wrong = stack->open(source)) {
        fault = *wrong;
        return nullptr;
    }
    return stack;
}

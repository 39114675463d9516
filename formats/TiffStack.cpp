#include "formats/TiffStack.h"

#include "formats/RawImages.h"
#include "formats/StackAnswer.h"
#include "formats/StackEnergies.h"
#include "formats/StackProcess.h"
#include "formats/TextTable.h"
#include "system/InputFile.h"
#include "text/LineTokens.h"
#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <map>
#include <sstream>

namespace
{

/// A page of a file.
struct PageOf {
    QString path;
    long page = 0;
    std::int64_t offset = -1; ///< in the file, where it lies there as in memory
};

using Pages = std::vector<PageOf>;

/// Runs of digits count as numbers, all else as characters.
bool isBefore(const QString& a, const QString& b)
{
    int i = 0;
    int k = 0;
    const auto number = [](const QString& text, int& at) {
        const int begin = at;
        while (at < text.size() && text[at].isDigit())
            ++at;
        return text.mid(begin, at - begin).toULongLong();
    };
    while (i < a.size() && k < b.size()) {
        if (a[i].isDigit() && b[k].isDigit()) {
            const auto left = number(a, i);
            const auto right = number(b, k);
            if (left != right)
                return left < right;
        } else if (a[i] != b[k]) {
            return a[i] < b[k];
        } else {
            ++i;
            ++k;
        }
    }
    return i == a.size() && k < b.size();
}

/// The files of a name, which may be a pattern, as people count: image_2 before image_10.
QStringList filesOf(const QString& path)
{
    if (QFile::exists(path))
        return {path};
    const QFileInfo info(path);
    QStringList names = info.dir().entryList({info.fileName()}, QDir::Files);
    std::sort(names.begin(), names.end(), isBefore);
    for (QString& name : names)
        name = info.dir().filePath(name);
    return names;
}

/// Rows of an energy and a file's name, in either order; empty where the text is none of such.
bool namedEnergies(const QString& path, QStringList& files, std::vector<double>& energies)
{
    QFile file(path);
    constexpr qint64 longest = qint64{1} << 24;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    std::istringstream lines(plainText(file.read(longest).toStdString()));
    for (std::string line; std::getline(lines, line);) {
        if (isComment(line))
            continue;
        LineTokens tokens(line);
        std::string_view first = tokens.next();
        std::string_view second = tokens.next();
        auto energy = decimalFromToken(first.data(), first.data() + first.size());
        if (!energy) {
            std::swap(first, second);
            energy = decimalFromToken(first.data(), first.data() + first.size());
        }
        const bool named =
            !second.empty() && !decimalFromToken(second.data(), second.data() + second.size());
        if (!energy || !named)
            return false;
        files += QFileInfo(path).dir().filePath(textFromUtf8(second));
        energies.push_back(*energy);
    }
    return !files.isEmpty();
}

/// The text that the source names, or that beside the images.
QString energyFileOf(const StackSource& source)
{
    const QFileInfo info(source.path);
    return source.energies.isEmpty()
               ? info.dir().filePath(info.completeBaseName() + QStringLiteral(".txt"))
               : source.energies;
}

/// TiffImages that are read together: the frames, flats or darks.
struct TiffImages {
    Plane Frame::*place = nullptr;
    Pages pages;            ///< one for each frame, or those that make one image for all
    bool isShared = false;  ///< one image for all
    std::size_t offset = 0; ///< in the memory

    bool isMean() const { return isShared && pages.size() > 1; }
};

class TiffStack : public Stack
{
public:
    std::optional<FileFault> read(const std::vector<std::size_t>& indices, const Region& region,
                                  FrameSet& set) override;

    std::optional<FileFault> open(const StackSource& source);

private:
    std::optional<FileFault> readEnergies(const StackSource& source, QStringList& files);
    std::optional<FileFault> describeAll(const StackSource& source, const QStringList& files);
    std::optional<FileFault> takeFrames(const QStringList& files, const StackWords& answer);
    std::optional<FileFault> takePages(const QStringList& files, const StackWords& answer,
                                       std::size_t set, Pages& pages);
    std::vector<TiffImages> imagesOf(const std::vector<std::size_t>& indices,
                                     const FrameSet& set) const;
    bool readRaw(const std::vector<TiffImages>& all, const Region& region, PixelArray<char>& memory,
                 const FrameSet& set) const;
    void takeImages(const std::vector<TiffImages>& all,
                    const std::shared_ptr<PixelArray<char>>& memory, std::size_t pixels,
                    FrameSet& set) const;

    QString m_path;
    std::map<QString, std::optional<FileState>>
        m_states; ///< of all files, before they are described
    Pages m_frames;
    Pages m_flats;
    Pages m_darks;
    double m_darkLevel = 0.0;
};

/// Takes what the process says of the pages of some files.
std::optional<FileFault> TiffStack::takePages(const QStringList& files, const StackWords& answer,
                                              std::size_t set, Pages& pages)
{
    const QString& path = files.front();
    constexpr long largestSide = 1 << 20;
    for (const char* const side : {"columns", "rows"})
        if (answer.number(side, set) < 1 || answer.number(side, set) > largestSide)
            return FileFault{path, 0, QStringLiteral("has images of a size that makes no sense")};
    const int columns = static_cast<int>(answer.number("columns", set));
    const int rows = static_cast<int>(answer.number("rows", set));
    if (m_facts.columns == 0) {
        m_facts.columns = columns;
        m_facts.rows = rows;
        m_facts.type = static_cast<PixelType>(answer.number("type", set));
    }
    if (columns != m_facts.columns || rows != m_facts.rows ||
        answer.number("type", set) != static_cast<long>(m_facts.type))
        return FileFault{
            path, 0,
            QStringLiteral("has other pages than %1: their size or type differs").arg(m_path)};
    const auto all = static_cast<std::size_t>(answer.number("frames", set));
    const std::vector<std::int64_t> places = rawPlaces(answer.value("places", set), all);
    std::istringstream counts(answer.value("pages", set));
    for (const QString& file : files) {
        long count = 0;
        counts >> count;
        for (long page = 0; page < count; ++page)
            pages.push_back({file, page, pages.size() < places.size() ? places[pages.size()] : -1});
    }
    return std::nullopt;
}

std::optional<FileFault> TiffStack::readEnergies(const StackSource& source, QStringList& files)
{
    const QString path = energyFileOf(source);
    const auto text = InputFile::open(path);
    if (!text)
        return FileFault{
            source.path, 0,
            QStringLiteral("has no energies; name a text of them: energies = \"...\"")};
    QStringList named;
    if (namedEnergies(path, named, m_facts.energies)) {
        files = named;
        return std::nullopt;
    }
    QString reason;
    m_facts.energies = energiesOf(*text, reason);
    return reason.isEmpty() ? std::nullopt : std::optional(FileFault{path, 0, reason});
}

std::optional<FileFault> TiffStack::open(const StackSource& source)
{
    m_path = source.path;
    m_facts.kind = QStringLiteral("tiff");
    m_facts.values = source.values;
    m_facts.pixelWidth = m_facts.pixelHeight = source.pixelSize;
    m_darkLevel = source.darkLevel.value_or(0.0);
    QStringList files = filesOf(source.path);
    if (source.values == StackValues::Unknown)
        return FileFault{m_path, 0,
                         QStringLiteral("does not say what its values are: values = \"mu-t\", "
                                        "\"transmission\" or \"counts\"")};
    if (auto fault = readEnergies(source, files))
        return fault;
    if (auto fault = describeAll(source, files))
        return fault;
    if (source.values == StackValues::Counts && source.dark.isEmpty() && !source.darkLevel)
        m_facts.warnings += QStringLiteral("there is no dark image; 0 counts are taken for dark");
    return std::nullopt;
}

std::optional<FileFault> TiffStack::takeFrames(const QStringList& files, const StackWords& answer)
{
    if (auto fault = takePages(files, answer, 0, m_frames))
        return fault;
    if (m_frames.size() != m_facts.energies.size())
        return FileFault{m_path, 0,
                         QStringLiteral("has %1 pages for %2 energies")
                             .arg(m_frames.size())
                             .arg(m_facts.energies.size())};
    QString assumed;
    if (auto wrong = toElectronVolt(m_facts.energies, QString(), assumed))
        return FileFault{m_path, 0, *wrong};
    m_facts.assumed += assumed;
    return std::nullopt;
}

/// Asks once for all sets of files.
/// @param known  sets that are described before there is a fault
std::optional<FileFault> askForSets(const std::vector<QStringList>& sets, StackWords& answer,
                                    std::size_t& known)
{
    std::vector<std::string> words{"describe-tiff"};
    std::size_t asked = 0;
    for (const QStringList& files : sets) {
        if (files.isEmpty()) // is a fault, and nothing behind it is looked at
            break;
        ++asked;
        words.emplace_back("set=");
        for (const QString& file : files)
            words.push_back("file=" + QFile::encodeName(file).toStdString());
    }
    known = 0;
    if (asked == 0)
        return std::nullopt;
    auto fault = askStackProcess(sets.front().front(), std::move(words), nullptr, answer);
    known = std::min(answer.values.count("type"), fault ? asked - 1 : asked);
    if (fault)
        fault->path = sets[known].front();
    return fault;
}

/// The files of frames, flats and darks, as far as the values need them.
std::vector<QStringList> fileSetsOf(const StackSource& source, const QStringList& files)
{
    std::vector<QStringList> sets{files};
    if (source.values != StackValues::Counts)
        return sets;
    sets.push_back(source.flat.isEmpty() ? QStringList() : filesOf(source.flat));
    if (!source.dark.isEmpty() && !source.darkLevel)
        sets.push_back(filesOf(source.dark));
    return sets;
}

/// Frames, flats and darks in this order: what is wrong with one is told before what is wrong with
/// those behind it.
std::optional<FileFault> TiffStack::describeAll(const StackSource& source, const QStringList& files)
{
    const std::vector<QStringList> sets = fileSetsOf(source, files);
    for (const QStringList& set : sets)
        for (const QString& file : set)
            m_states[file] = fileState(QFile::encodeName(file));
    StackWords answer;
    std::size_t known = 0;
    auto fault = askForSets(sets, answer, known);
    for (std::size_t k = 0; k < sets.size(); ++k) {
        if (k == 1 && source.flat.isEmpty())
            return FileFault{m_path, 0,
                             QStringLiteral("has counts and no images without sample; name them: "
                                            "flat = \"...\"")};
        if (sets[k].isEmpty())
            return FileFault{m_path, 0, QStringLiteral("there is no such file")};
        if (k >= known)
            return fault;
        Pages& pages = k == 1 ? m_flats : m_darks;
        if (auto wrong = k == 0 ? takeFrames(files, answer) : takePages(sets[k], answer, k, pages))
            return wrong;
    }
    return std::nullopt;
}

/// What is to be read: an image for each frame, or one for all, which may be there.
std::vector<TiffImages> TiffStack::imagesOf(const std::vector<std::size_t>& indices,
                                            const FrameSet& set) const
{
    std::vector<TiffImages> all;
    const auto add = [&](const Pages& pages, Plane Frame::*place) {
        TiffImages images{place, {}, pages.size() != m_frames.size()};
        if (images.isShared)
            images.pages = pages;
        else
            for (const std::size_t i : indices)
                images.pages.push_back(pages[i]);
        if (!pages.empty() && !(images.isShared && (set.shared.*place).pixels != nullptr))
            all.push_back(std::move(images));
    };
    add(m_frames, &Frame::frame);
    add(m_flats, &Frame::flat);
    add(m_darks, &Frame::dark);
    return all;
}

/// Reads pages that lie in their files as in memory, all or none.
bool TiffStack::readRaw(const std::vector<TiffImages>& all, const Region& region,
                        PixelArray<char>& memory, const FrameSet& set) const
{
    std::vector<RawImages> raw;
    for (const TiffImages& images : all) {
        raw.push_back({{}, m_facts.type, images.isMean(), MeanWay::SumOfParts, images.offset});
        for (const PageOf& page : images.pages)
            raw.back().images.push_back({page.path, page.offset, m_states.at(page.path)});
    }
    return mayReadRaw() && readRawImages(raw, m_facts.columns, region, memory.data(), set.workers);
}

void TiffStack::takeImages(const std::vector<TiffImages>& all,
                           const std::shared_ptr<PixelArray<char>>& memory, std::size_t pixels,
                           FrameSet& set) const
{
    const std::size_t planeBytes = pixels * bytesOf(m_facts.type);
    set.memory.push_back(memory);
    set.shared.values = m_facts.values;
    set.shared.darkLevel = m_darkLevel;
    for (const TiffImages& images : all)
        if (images.isShared) {
            set.shared.*images.place = {images.isMean() ? PixelType::F64 : m_facts.type,
                                        memory->data() + images.offset};
            set.sharedMemory.push_back(memory);
        }
    for (std::size_t k = 0; k < all.front().pages.size(); ++k) {
        Frame frame = set.shared;
        for (const TiffImages& images : all)
            if (!images.isShared)
                frame.*
                    images.place = {m_facts.type, memory->data() + images.offset + k * planeBytes};
        set.frames.push_back(frame);
    }
}

/// Lays images out one behind the other, and names their pages.
/// @return bytes of all
std::size_t layOut(std::vector<TiffImages>& all, std::size_t pixels, PixelType type,
                   std::vector<std::string>& words)
{
    std::size_t bytes = 0;
    for (TiffImages& images : all) {
        words.emplace_back(images.isMean() ? "set=mean" : "set=each");
        for (const PageOf& page : images.pages)
            words.push_back("page=" + QFile::encodeName(page.path).toStdString() + '\t' +
                            std::to_string(page.page));
        images.offset = images.isMean() ? stack_words::evenly(bytes) : bytes;
        bytes = images.offset + (images.isMean() ? pixels * sizeof(double)
                                                 : images.pages.size() * pixels * bytesOf(type));
    }
    return bytes;
}

std::optional<FileFault> TiffStack::read(const std::vector<std::size_t>& indices,
                                         const Region& region, FrameSet& set)
{
    const std::size_t pixels =
        static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
    std::vector<std::string> words{"planes-tiff",
                                   "type=" + std::to_string(static_cast<int>(m_facts.type)),
                                   QStringLiteral("region=%1,%2,%3,%4")
                                       .arg(region.x)
                                       .arg(region.y)
                                       .arg(region.width)
                                       .arg(region.height)
                                       .toStdString()};
    std::vector<TiffImages> all = imagesOf(indices, set);
    const auto memory = pixelsToCome(layOut(all, pixels, m_facts.type, words));
    if (!memory)
        return FileFault{m_path, 0, QStringLiteral("does not fit in memory")};
    if (!readRaw(all, region, *memory, set)) {
        StackWords answer;
        auto fault = askForPixels(m_path, words, *memory, set.workers, answer);
        const std::size_t sets = answer.values.count("set");
        const auto at = static_cast<std::size_t>(answer.number("set", sets > 0 ? sets - 1 : 0));
        const Pages& pages = all[std::min(at, all.size() - 1)].pages;
        if (fault && !pages.empty())
            fault->path = pages.front().path;
        if (fault)
            return fault;
    }
    takeImages(all, memory, pixels, set);
    return std::nullopt;
}

} // namespace

QStringList tiffFilesBeside(const StackSource& source)
{
    QStringList files;
    std::vector<double> energies;
    namedEnergies(energyFileOf(source), files, energies);
    files.prepend(energyFileOf(source));
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const QString& path) { return !QFileInfo(path).isFile(); }),
                files.end());
    return files;
}

std::unique_ptr<Stack> openTiffStack(const StackSource& source, FileFault& fault)
{
    auto stack = std::make_unique<TiffStack>();
    if (const auto wrong = stack->open(source)) {
        fault = *wrong;
        return nullptr;
    }
    return stack;
}

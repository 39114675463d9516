#include "formats/TiffStack.h"

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
#include <sstream>

namespace
{

/// A page of a file.
struct PageOf {
    QString path;
    long page = 0;
};

using Pages = std::vector<PageOf>;

using Memory = std::vector<std::shared_ptr<void>>;

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

class TiffStack : public Stack
{
public:
    std::optional<FileFault> read(const std::vector<std::size_t>& indices, const Region& region,
                                  FrameSet& set) override;

    std::optional<FileFault> open(const StackSource& source);

private:
    std::optional<FileFault> describe(const QStringList& files, Pages& pages);
    std::optional<FileFault> readEnergies(const StackSource& source, QStringList& files);
    std::optional<FileFault> readPages(const Pages& pages, const Region& region, Memory& memory,
                                       std::vector<Plane>& planes);
    std::optional<FileFault> readMean(const Pages& pages, const Region& region, Memory& memory,
                                      Plane& plane);
    std::optional<FileFault> readImages(const Pages& pages, const std::vector<std::size_t>& indices,
                                        const Region& region, FrameSet& set, Plane Frame::*place);

    QString m_path;
    Pages m_frames;
    Pages m_flats;
    Pages m_darks;
    double m_darkLevel = 0.0;
};

std::optional<FileFault> TiffStack::describe(const QStringList& files, Pages& pages)
{
    std::vector<std::string> words{"describe-tiff"};
    for (const QString& file : files)
        words.push_back("file=" + QFile::encodeName(file).toStdString());
    StackWords answer;
    const QString path = files.value(0, m_path);
    if (files.isEmpty())
        return FileFault{path, 0, QStringLiteral("there is no such file")};
    if (auto fault = askStackProcess(path, std::move(words), nullptr, answer))
        return fault;
    constexpr long largestSide = 1 << 20;
    for (const char* const side : {"columns", "rows"})
        if (answer.number(side) < 1 || answer.number(side) > largestSide)
            return FileFault{path, 0, QStringLiteral("has images of a size that makes no sense")};
    const int columns = static_cast<int>(answer.number("columns"));
    const int rows = static_cast<int>(answer.number("rows"));
    if (m_facts.columns == 0) {
        m_facts.columns = columns;
        m_facts.rows = rows;
        m_facts.type = static_cast<PixelType>(answer.number("type"));
    }
    if (columns != m_facts.columns || rows != m_facts.rows ||
        answer.number("type") != static_cast<long>(m_facts.type))
        return FileFault{
            path, 0,
            QStringLiteral("has other pages than %1: their size or type differs").arg(m_path)};
    std::istringstream counts(answer.value("pages"));
    for (const QString& file : files) {
        long count = 0;
        counts >> count;
        for (long page = 0; page < count; ++page)
            pages.push_back({file, page});
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
    if (auto fault = describe(files, m_frames))
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
    if (source.values != StackValues::Counts)
        return std::nullopt;
    if (source.flat.isEmpty())
        return FileFault{m_path, 0,
                         QStringLiteral("has counts and no images without sample; name them: flat "
                                        "= \"...\"")};
    if (auto fault = describe(filesOf(source.flat), m_flats))
        return fault;
    if (!source.dark.isEmpty() && !source.darkLevel)
        return describe(filesOf(source.dark), m_darks);
    if (!source.darkLevel)
        m_facts.warnings += QStringLiteral("there is no dark image; 0 counts are taken for dark");
    return std::nullopt;
}

std::optional<FileFault> TiffStack::readPages(const Pages& pages, const Region& region,
                                              Memory& kept, std::vector<Plane>& planes)
{
    const std::size_t bytes = static_cast<std::size_t>(region.width) *
                              static_cast<std::size_t>(region.height) * bytesOf(m_facts.type);
    const auto memory = std::make_shared<PixelMemory>(bytes * pages.size());
    if (!memory->isThere())
        return FileFault{m_path, 0, QStringLiteral("does not fit in memory")};
    std::vector<std::string> words{"planes-tiff",
                                   "type=" + std::to_string(static_cast<int>(m_facts.type)),
                                   QStringLiteral("region=%1,%2,%3,%4")
                                       .arg(region.x)
                                       .arg(region.y)
                                       .arg(region.width)
                                       .arg(region.height)
                                       .toStdString()};
    for (const PageOf& page : pages)
        words.push_back("page=" + QFile::encodeName(page.path).toStdString() + '\t' +
                        std::to_string(page.page));
    StackWords answer;
    if (auto fault = askStackProcess(pages.front().path, std::move(words), memory.get(), answer))
        return fault;
    kept.push_back(memory);
    for (std::size_t k = 0; k < pages.size(); ++k)
        planes.push_back({m_facts.type, memory->data() + k * bytes});
    return std::nullopt;
}

std::optional<FileFault> TiffStack::readMean(const Pages& pages, const Region& region,
                                             Memory& memory, Plane& plane)
{
    std::vector<Plane> all;
    if (auto fault = readPages(pages, region, memory, all))
        return fault;
    const std::size_t pixels =
        static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
    const auto mean = std::make_shared<PixelArray<double>>();
    if (!mean->resize(pixels))
        return FileFault{m_path, 0, QStringLiteral("does not fit in memory")};
    Frame frame;
    frame.weight = 1.0 / static_cast<double>(all.size());
    for (std::size_t k = 0; k < all.size(); ++k) {
        frame.frame = all[k];
        addMut(frame, 0, pixels, mean->data(), k > 0); // numbers that are mu-t stay as they are
    }
    memory.back() = mean; // the pages are not needed any more
    plane = {PixelType::F64, reinterpret_cast<const char*>(mean->data())};
    return std::nullopt;
}

/// Puts flat or dark images into the frames: one for each, or their mean for all.
std::optional<FileFault> TiffStack::readImages(const Pages& pages,
                                               const std::vector<std::size_t>& indices,
                                               const Region& region, FrameSet& set,
                                               Plane Frame::*place)
{
    if (pages.empty())
        return std::nullopt;
    std::vector<Plane> planes;
    std::optional<FileFault> fault;
    if (pages.size() == m_frames.size()) {
        Pages wanted;
        for (const std::size_t i : indices)
            wanted.push_back(pages[i]);
        fault = readPages(wanted, region, set.memory, planes);
    } else {
        if ((set.shared.*place).pixels == nullptr)
            fault = readMean(pages, region, set.sharedMemory, set.shared.*place);
        planes.assign(indices.size(), set.shared.*place);
    }
    for (std::size_t k = 0; !fault && k < indices.size(); ++k)
        set.frames[k].*place = planes[k];
    return fault;
}

std::optional<FileFault> TiffStack::read(const std::vector<std::size_t>& indices,
                                         const Region& region, FrameSet& set)
{
    std::vector<Plane> frames;
    Pages wanted;
    for (const std::size_t i : indices)
        wanted.push_back(m_frames[i]);
    if (auto fault = readPages(wanted, region, set.memory, frames))
        return fault;
    set.shared.values = m_facts.values;
    set.shared.darkLevel = m_darkLevel;
    for (const Plane& plane : frames) {
        set.frames.push_back(set.shared);
        set.frames.back().frame = plane;
    }
    if (auto fault = readImages(m_flats, indices, region, set, &Frame::flat))
        return fault;
    return readImages(m_darks, indices, region, set, &Frame::dark);
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

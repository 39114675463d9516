#include "formats/TiffReader.h"

#include "formats/PixelSender.h"
#include "formats/PlaneNumbers.h"
#include "formats/StackFault.h"
#include "formats/StackShare.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>

namespace
{

using stack_words::line;

constexpr std::size_t mostPages = 100000;

struct Close {
    void operator()(TIFF* file) const { TIFFClose(file); }
};
using TiffFile = std::unique_ptr<TIFF, Close>;

/// What a page is.
struct Page {
    std::uint32_t columns = 0;
    std::uint32_t rows = 0;
    PixelType type = PixelType::U16;

    bool operator==(const Page& o) const
    {
        return columns == o.columns && rows == o.rows && type == o.type;
    }
};

TiffFile open(const std::string& path)
{
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    TiffFile file(TIFFOpen(path.c_str(), "r"));
    if (!file)
        throw StackFault("is no TIFF file that can be opened");
    return file;
}

PixelType typeOf(std::uint16_t bits, std::uint16_t format)
{
    struct Known {
        std::uint16_t bits;
        std::uint16_t format;
        PixelType type;
    };
    static constexpr std::array<Known, 8> known{{{8, SAMPLEFORMAT_UINT, PixelType::U8},
                                                 {16, SAMPLEFORMAT_UINT, PixelType::U16},
                                                 {32, SAMPLEFORMAT_UINT, PixelType::U32},
                                                 {8, SAMPLEFORMAT_INT, PixelType::I8},
                                                 {16, SAMPLEFORMAT_INT, PixelType::I16},
                                                 {32, SAMPLEFORMAT_INT, PixelType::I32},
                                                 {32, SAMPLEFORMAT_IEEEFP, PixelType::F32},
                                                 {64, SAMPLEFORMAT_IEEEFP, PixelType::F64}}};
    const bool real = format == SAMPLEFORMAT_IEEEFP;
    const std::uint16_t kind =
        real || format == SAMPLEFORMAT_INT ? format : std::uint16_t{SAMPLEFORMAT_UINT};
    for (const Known& k : known)
        if (k.bits == bits && k.format == kind)
            return k.type;
    throw StackFault("has pixels of " + std::to_string(bits) +
                     (real ? " bits of a real number" : " bits") + ", which are not read");
}

Page pageOf(TIFF* file)
{
    Page page;
    std::uint16_t bits = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t samples = 1;
    std::uint16_t colours = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &page.columns);
    TIFFGetField(file, TIFFTAG_IMAGELENGTH, &page.rows);
    TIFFGetFieldDefaulted(file, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLEFORMAT, &format);
    TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetField(file, TIFFTAG_PHOTOMETRIC, &colours);
    if (page.columns == 0 || page.rows == 0)
        throw StackFault("has a page without pixels");
    if (samples != 1 || colours == PHOTOMETRIC_PALETTE)
        throw StackFault("is a picture in colours, and no measurement");
    page.type = typeOf(bits, format);
    return page;
}

struct Cut {
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t width = 0;
    std::size_t height = 0;
};

/// Copies what a block of a page, strip or tile, has of a region.
void copyBlock(const char* block, std::size_t blockX, std::size_t blockY, std::size_t blockWidth,
               std::size_t blockHeight, const Cut& cut, std::size_t bytes, char* to)
{
    const std::size_t left = std::max(blockX, cut.x);
    const std::size_t right = std::min(blockX + blockWidth, cut.x + cut.width);
    const std::size_t top = std::max(blockY, cut.y);
    const std::size_t bottom = std::min(blockY + blockHeight, cut.y + cut.height);
    for (std::size_t y = top; y < bottom && left < right; ++y)
        std::memcpy(to + ((y - cut.y) * cut.width + left - cut.x) * bytes,
                    block + ((y - blockY) * blockWidth + left - blockX) * bytes,
                    (right - left) * bytes);
}

/// Blocks larger than this are no part of an image.
constexpr std::int64_t largestBlock = std::int64_t{1} << 31;

void checkBlock(std::int64_t bytes)
{
    if (bytes <= 0 || bytes > largestBlock)
        throw StackFault("has a strip or tile of a size that makes no sense");
}

std::vector<char> blockMemory(std::int64_t bytes)
{
    checkBlock(bytes);
    return std::vector<char>(static_cast<std::size_t>(bytes));
}

void readTiles(TIFF* file, const Page& page, const Cut& cut, char* to)
{
    const std::size_t bytes = bytesOf(page.type);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(file, TIFFTAG_TILEWIDTH, &width);
    TIFFGetField(file, TIFFTAG_TILELENGTH, &height);
    const std::int64_t size = TIFFTileSize64(file) > static_cast<std::uint64_t>(largestBlock)
                                  ? -1
                                  : static_cast<std::int64_t>(TIFFTileSize64(file));
    std::vector<char> tile = blockMemory(size);
    if (width == 0 || height == 0 || std::uint64_t{width} * height * bytes > tile.size())
        throw StackFault("has a strip or tile of a size that makes no sense");
    for (std::size_t y = cut.y / height * height; y < cut.y + cut.height; y += height)
        for (std::size_t x = cut.x / width * width; x < cut.x + cut.width; x += width) {
            if (TIFFReadTile(file, tile.data(), static_cast<std::uint32_t>(x),
                             static_cast<std::uint32_t>(y), 0, 0) < 0)
                throw StackFault("has a tile that cannot be read");
            copyBlock(tile.data(), x, y, width, height, cut, bytes, to);
        }
}

void readStrips(TIFF* file, const Page& page, const Cut& cut, char* to)
{
    const std::size_t bytes = bytesOf(page.type);
    std::uint32_t stripRows = page.rows;
    TIFFGetFieldDefaulted(file, TIFFTAG_ROWSPERSTRIP, &stripRows);
    const std::size_t rows = std::clamp<std::size_t>(stripRows, 1, page.rows);
    const std::size_t rowBytes = std::size_t{page.columns} * bytes;
    const auto stripBytes = static_cast<std::int64_t>(
        std::min<std::uint64_t>(rows * rowBytes, static_cast<std::uint64_t>(largestBlock) + 1));
    checkBlock(stripBytes);
    std::vector<char> strip;
    for (std::size_t y = cut.y / rows * rows; y < cut.y + cut.height; y += rows) {
        const std::size_t here = std::min(rows, page.rows - y);
        const auto wanted = static_cast<tmsize_t>(here * rowBytes);
        // A strip of which all is wanted goes straight to its place.
        const bool straight =
            cut.width == page.columns && y >= cut.y && y + here <= cut.y + cut.height;
        if (!straight && strip.empty())
            strip = blockMemory(stripBytes);
        char* const place = straight ? to + (y - cut.y) * rowBytes : strip.data();
        const tmsize_t got = TIFFReadEncodedStrip(
            file, TIFFComputeStrip(file, static_cast<std::uint32_t>(y), 0), place, wanted);
        if (got != wanted)
            throw StackFault("has a strip that cannot be read");
        if (!straight)
            copyBlock(strip.data(), 0, y, page.columns, here, cut, bytes, to);
    }
}

/// Files or pages that are asked for together.
struct TiffSet {
    bool mean = false;
    std::vector<std::string> words;
};

/// The values of a key behind each "set", or those of a request without sets.
std::vector<TiffSet> setsOf(const StackRequest& request, const std::string& key)
{
    std::vector<TiffSet> sets;
    for (const std::string& word : request.words) {
        const std::size_t equals = std::min(word.find('='), word.size() - 1);
        const std::string name = word.substr(0, equals);
        const std::string value = word.substr(equals + 1);
        if (name == "set")
            sets.push_back({value == "mean", {}});
        if (name == key && sets.empty())
            sets.emplace_back();
        if (name == key)
            sets.back().words.push_back(value);
    }
    return sets;
}

/// Where a page lies in its file, row after row as in memory; empty where it does not.
std::string pagePlace(TIFF* file, const Page& page)
{
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t fill = FILLORDER_MSB2LSB;
    std::uint32_t stripRows = page.rows;
    TIFFGetFieldDefaulted(file, TIFFTAG_COMPRESSION, &compression);
    TIFFGetFieldDefaulted(file, TIFFTAG_FILLORDER, &fill);
    TIFFGetFieldDefaulted(file, TIFFTAG_ROWSPERSTRIP, &stripRows);
    if (compression != COMPRESSION_NONE || fill != FILLORDER_MSB2LSB || stripRows == 0 ||
        TIFFIsTiled(file) != 0 || TIFFIsByteSwapped(file) != 0)
        return {};
    const std::uint64_t begin = TIFFGetStrileOffset(file, 0);
    const std::uint64_t rowBytes = std::uint64_t{page.columns} * bytesOf(page.type);
    std::uint64_t next = begin;
    for (std::uint32_t strip = 0, left = page.rows; left > 0; ++strip) {
        const std::uint32_t rows = std::min(stripRows, left);
        if (TIFFGetStrileOffset(file, strip) != next ||
            TIFFGetStrileByteCount(file, strip) != rows * rowBytes)
            return {};
        next += rows * rowBytes;
        left -= rows;
    }
    return begin > 0 ? std::to_string(begin) : std::string();
}

/// What is found in some files.
struct Description {
    Page first;
    std::size_t all = 0;
    std::string pages;  ///< how many each file has
    std::string places; ///< of all pages
    bool havePlaces = true;
};

void addFile(const std::string& path, Description& found)
{
    const TiffFile file = open(path);
    std::size_t count = 0;
    do {
        const Page page = pageOf(file.get());
        if (found.all == 0 && count == 0)
            found.first = page;
        if (!(page == found.first))
            throw StackFault("has pages of different sizes or types, as in " + path);
        if (++count > mostPages)
            throw StackFault("has more than 100000 pages");
        const std::string place = found.havePlaces ? pagePlace(file.get(), page) : std::string();
        found.havePlaces = !place.empty();
        found.places += place + ' ';
    } while (TIFFReadDirectory(file.get()) == 1);
    found.pages += std::to_string(count) + ' ';
    found.all += count;
}

std::string descriptionOf(const std::vector<std::string>& paths)
{
    Description found;
    for (const std::string& path : paths)
        addFile(path, found);
    return line("kind", "tiff") + line("columns", std::to_string(found.first.columns)) +
           line("rows", std::to_string(found.first.rows)) +
           line("frames", std::to_string(found.all)) + line("pages", found.pages) +
           line("places", found.havePlaces ? found.places : std::string()) +
           line("type", std::to_string(static_cast<int>(found.first.type)));
}

/// Reads what a region has of pages; a file stays open for those that follow.
class PageReader
{
public:
    PageReader(const Cut& cut, PixelType type) : m_cut(cut), m_type(type) {}

    std::size_t pixels() const { return m_cut.width * m_cut.height; }
    PixelType type() const { return m_type; }

    /// @param word  the path of a file, a tab and the number of a page
    void read(const std::string& word, char* to)
    {
        const std::size_t tab = word.find('\t');
        const std::string path = word.substr(0, tab);
        if (!m_file || path != m_path)
            m_file = open(path);
        m_path = path;
        const auto number = static_cast<tdir_t>(std::atoi(word.substr(tab + 1).c_str()));
        if (TIFFSetDirectory(m_file.get(), number) != 1)
            throw StackFault("has a page that cannot be read");
        const Page page = pageOf(m_file.get());
        if (page.type != m_type || m_cut.x + m_cut.width > page.columns ||
            m_cut.y + m_cut.height > page.rows)
            throw StackFault("is not as large as it was");
        if (TIFFIsTiled(m_file.get()) != 0)
            readTiles(m_file.get(), page, m_cut, to);
        else
            readStrips(m_file.get(), page, m_cut, to);
    }

private:
    Cut m_cut;
    PixelType m_type;
    std::string m_path;
    TiffFile m_file;
};

void readMeanPage(PageReader& reader, const std::vector<std::string>& pages, double* mean)
{
    PixelArray<char> page;
    if (!page.resize(reader.pixels() * bytesOf(reader.type())))
        throw std::bad_alloc();
    for (std::size_t k = 0; k < pages.size(); ++k) {
        reader.read(pages[k], page.data());
        addToMean(MeanWay::SumOfParts, {reader.type(), page.data()}, reader.pixels(), k,
                  pages.size(), mean);
    }
}

/// What is read at once: a page, or all pages of a mean.
struct PagePiece {
    std::size_t set = 0; ///< that it belongs to
    bool mean = false;
    std::vector<std::string> pages;
    std::size_t offset = 0; ///< among all bytes
};

/// @param bytes  of all
std::vector<PagePiece> piecesOf(const std::vector<TiffSet>& sets, const PageReader& reader,
                                std::size_t& bytes)
{
    std::vector<PagePiece> pieces;
    bytes = 0;
    for (std::size_t k = 0; k < sets.size(); ++k) {
        const std::vector<std::string>& pages = sets[k].words;
        if (sets[k].mean) {
            pieces.push_back({k, true, pages, stack_words::evenly(bytes)});
            bytes = pieces.back().offset + reader.pixels() * sizeof(double);
            continue;
        }
        for (const std::string& page : pages) {
            pieces.push_back({k, false, {page}, bytes});
            bytes += reader.pixels() * bytesOf(reader.type());
        }
    }
    return pieces;
}

} // namespace

std::string describeTiff(const StackRequest& request)
{
    for (const TiffSet& set : setsOf(request, "file"))
        stack_words::tell(descriptionOf(set.words));
    return {};
}

std::string planesOfTiff(const StackRequest& request)
{
    Cut cut;
    char comma = ',';
    std::istringstream region(request.value("region"));
    region >> cut.x >> comma >> cut.y >> comma >> cut.width >> comma >> cut.height;
    PageReader reader(cut, static_cast<PixelType>(std::atoi(request.value("type").c_str())));
    std::size_t bytes = 0;
    const std::vector<PagePiece> pieces = piecesOf(setsOf(request, "page"), reader, bytes);
    if (request.value("bytes") != std::to_string(bytes))
        throw StackFault("is not as large as it was");
    PixelSender sender;
    std::vector<std::size_t> work;
    work.reserve(pieces.size());
    for (const PagePiece& piece : pieces)
        work.push_back(piece.pages.size());
    const auto [first, last] = shareOf(work, request.value("share"));
    for (std::size_t k = first; k < last; ++k) {
        const PagePiece& piece = pieces[k];
        if (k == first || piece.set != pieces[k - 1].set)
            stack_words::tell(line("set", std::to_string(piece.set)));
        if (piece.mean)
            readMeanPage(reader, piece.pages, sender.doubles(reader.pixels()));
        else
            reader.read(piece.pages.front(), sender.room(reader.pixels() * bytesOf(reader.type())));
        sender.send(piece.offset);
    }
    return {};
}

#include "formats/TiffReader.h"

#include "formats/Frame.h"
#include "formats/SharedPixels.h"
#include "formats/StackFault.h"

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

std::vector<char> blockMemory(std::int64_t bytes)
{
    if (bytes <= 0 || bytes > largestBlock)
        throw StackFault("has a strip or tile of a size that makes no sense");
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
    std::vector<char> strip = blockMemory(static_cast<std::int64_t>(
        std::min<std::uint64_t>(rows * rowBytes, static_cast<std::uint64_t>(largestBlock) + 1)));
    for (std::size_t y = cut.y / rows * rows; y < cut.y + cut.height; y += rows) {
        const std::size_t here = std::min(rows, page.rows - y);
        const auto wanted = static_cast<tmsize_t>(here * rowBytes);
        const tmsize_t got = TIFFReadEncodedStrip(
            file, TIFFComputeStrip(file, static_cast<std::uint32_t>(y), 0), strip.data(), wanted);
        if (got != wanted)
            throw StackFault("has a strip that cannot be read");
        copyBlock(strip.data(), 0, y, page.columns, here, cut, bytes, to);
    }
}

} // namespace

std::string describeTiff(const StackRequest& request)
{
    Page first;
    std::string pages;
    std::size_t all = 0;
    for (const std::string& path : request.values("file")) {
        const TiffFile file = open(path);
        std::size_t count = 0;
        do {
            const Page page = pageOf(file.get());
            if (all == 0 && count == 0)
                first = page;
            if (!(page == first))
                throw StackFault("has pages of different sizes or types, as in " + path);
            if (++count > mostPages)
                throw StackFault("has more than 100000 pages");
        } while (TIFFReadDirectory(file.get()) == 1);
        pages += std::to_string(count) + ' ';
        all += count;
    }
    return line("kind", "tiff") + line("columns", std::to_string(first.columns)) +
           line("rows", std::to_string(first.rows)) + line("frames", std::to_string(all)) +
           line("pages", pages) + line("type", std::to_string(static_cast<int>(first.type)));
}

std::string planesOfTiff(const StackRequest& request)
{
    Cut cut;
    char comma = ',';
    std::istringstream region(request.value("region"));
    region >> cut.x >> comma >> cut.y >> comma >> cut.width >> comma >> cut.height;
    const auto type = static_cast<PixelType>(std::atoi(request.value("type").c_str()));
    const std::size_t bytes = cut.width * cut.height * bytesOf(type);
    const std::vector<std::string> pages = request.values("page");
    SharedPixels shared(stack_words::sharedMemory, bytes * pages.size());
    char* to = shared.data();
    std::string openPath;
    TiffFile file;
    for (const std::string& word : pages) {
        const std::size_t tab = word.find('\t');
        const std::string path = word.substr(0, tab);
        if (!file || path != openPath)
            file = open(path);
        openPath = path;
        if (TIFFSetDirectory(file.get(),
                             static_cast<tdir_t>(std::atoi(word.substr(tab + 1).c_str()))) != 1)
            throw StackFault("has a page that cannot be read");
        const Page page = pageOf(file.get());
        if (page.type != type || cut.x + cut.width > page.columns || cut.y + cut.height > page.rows)
            throw StackFault("is not as large as it was");
        if (TIFFIsTiled(file.get()) != 0)
            readTiles(file.get(), page, cut, to);
        else
            readStrips(file.get(), page, cut, to);
        to += bytes;
    }
    return {};
}

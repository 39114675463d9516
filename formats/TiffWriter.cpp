#include "formats/TiffWriter.h"

#include "formats/SharedPixels.h"
#include "formats/StackFault.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace
{

constexpr std::uint16_t bits = 32;
constexpr std::uint32_t stripBytes = std::uint32_t{1} << 20;
/// What an ordinary TIFF can hold, less some room for what is not pixels.
constexpr std::size_t mostBytes = 4000000000;

/// In a width of a centimetre.
void setResolution(TIFF* file, double width, double height)
{
    constexpr double centimetre = 10000.0; // micrometres
    if (!(width > 0.0 && height > 0.0))
        return;
    TIFFSetField(file, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
    TIFFSetField(file, TIFFTAG_XRESOLUTION, centimetre / width);
    TIFFSetField(file, TIFFTAG_YRESOLUTION, centimetre / height);
}

std::uint32_t wholeNumber(const StackRequest& request, const char* key)
{
    return static_cast<std::uint32_t>(std::strtoul(request.value(key).c_str(), nullptr, 10));
}

void writePage(TIFF* file, const StackRequest& request, char* pixels)
{
    const std::uint32_t columns = wholeNumber(request, "columns");
    const std::uint32_t rows = wholeNumber(request, "rows");
    const std::uint32_t row = columns * static_cast<std::uint32_t>(sizeof(float));
    const std::uint32_t stripRows = std::clamp(stripBytes / row, 1U, rows);
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, columns);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, rows);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, stripRows);
    TIFFSetField(file, TIFFTAG_IMAGEDESCRIPTION, request.value("description").c_str());
    setResolution(file, std::strtod(request.value("pixel-width").c_str(), nullptr),
                  std::strtod(request.value("pixel-height").c_str(), nullptr));
    std::uint32_t strip = 0;
    for (std::uint32_t y = 0; y < rows; y += stripRows) {
        const tmsize_t bytes = static_cast<tmsize_t>(std::min(stripRows, rows - y)) * row;
        if (TIFFWriteRawStrip(file, strip++, pixels, bytes) != bytes)
            throw StackFault("cannot be written");
        pixels += bytes;
    }
    if (TIFFWriteDirectory(file) != 1 || TIFFFlush(file) != 1)
        throw StackFault("cannot be written");
}

} // namespace

std::string writeTiff(const StackRequest& request)
{
    const std::size_t bytes =
        std::size_t{wholeNumber(request, "columns")} * wholeNumber(request, "rows") * sizeof(float);
    if (bytes == 0)
        throw StackFault("is asked for without pixels");
    SharedPixels shared(stack_words::sharedMemory, bytes);
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    TIFF* const file = TIFFOpen(request.value("file").c_str(), bytes > mostBytes ? "w8" : "w");
    if (file == nullptr)
        throw StackFault("cannot be written");
    try {
        writePage(file, request, shared.data());
    } catch (...) {
        TIFFClose(file);
        throw;
    }
    TIFFClose(file);
    return {};
}

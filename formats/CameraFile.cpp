#include "formats/CameraFile.h"

#include "system/InputFile.h"

namespace
{

constexpr std::int64_t mostFrames = 100000;

FileFault cannotOpen(const QString& path, int error)
{
    return {path, 0, QStringLiteral("cannot be opened: ") + whyNotOpened(error)};
}

} // namespace

PixelType pixelTypeOf(const CameraHeader& header)
{
    return header.bytesPerPixel == 1   ? PixelType::U8
           : header.bytesPerPixel == 2 ? PixelType::U16
                                       : PixelType::U32;
}

std::optional<FileFault> readCameraFile(const QString& path, CameraFile& file)
{
    int error = 0;
    const auto bytes = InputFile::open(path, &error);
    if (!bytes)
        return cannotOpen(path, error);
    const auto fault = [&path](const QString& reason) { return FileFault{path, 0, reason}; };
    std::int64_t offset = 0;
    std::int64_t frames = 1;
    for (std::int64_t k = 0; k < frames; ++k) {
        const auto header = cameraHeaderAt(*bytes, offset);
        const QString number = QString::number(k + 1);
        if (!header)
            return fault(QStringLiteral("frame %1 has no header of a camera frame").arg(number));
        if (header->bytesPerPixel == 0)
            return fault(QStringLiteral("frame %1 is compressed, which is not read").arg(number));
        if (header->end() > bytes->size())
            return fault(QStringLiteral("frame %1 is cut off").arg(number));
        if (k == 0)
            frames = std::min(header->frames, mostFrames);
        else if (header->columns != file.frames[0].columns || header->rows != file.frames[0].rows ||
                 header->bytesPerPixel != file.frames[0].bytesPerPixel)
            return fault(QStringLiteral("frame %1 is of another size").arg(number));
        file.frames.push_back(*header);
        offset = header->end();
    }
    return std::nullopt;
}

std::optional<FileFault> readCameraPixels(const QString& path, const CameraHeader& header,
                                          const Region& region, char* to)
{
    int error = 0;
    const auto bytes = InputFile::open(path, &error);
    if (!bytes)
        return cannotOpen(path, error);
    const std::int64_t pixel = header.bytesPerPixel;
    const bool whole = region.width == header.columns;
    const int lines = whole ? 1 : region.height; // rows that follow one another are read at once
    const std::int64_t count = std::int64_t{region.width} * (whole ? region.height : 1) * pixel;
    for (int k = 0; k < lines; ++k, to += count) {
        const std::int64_t row = region.y + k;
        const std::int64_t at = header.begin + (row * header.columns + region.x) * pixel;
        if (at + count > bytes->size() || !bytes->read(to, static_cast<std::size_t>(count), at))
            return FileFault{path, 0, QStringLiteral("cannot be read")};
    }
    return std::nullopt;
}

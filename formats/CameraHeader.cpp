#include "formats/CameraHeader.h"

#include "system/ByteSource.h"

#include <QtEndian>

#include <array>

namespace
{

constexpr std::int64_t headerBytes = 64;

/// Bytes of a pixel by the type in the header. Type 1 is a compressed frame, unless its length is
/// that of one byte a pixel.
int pixelBytes(int type, const CameraHeader& header, std::int64_t size)
{
    switch (type) {
    case 0:
        return 1;
    case 1:
        return header.begin + std::int64_t{header.columns} * header.rows == size ? 1 : 0;
    case 2:
        return 2;
    case 3:
        return 4;
    default:
        return 0;
    }
}

} // namespace

std::optional<CameraHeader> cameraHeaderAt(const ByteSource& file, std::int64_t offset)
{
    std::array<char, headerBytes> bytes{};
    if (offset < 0 || file.size() < headerBytes || offset > file.size() - headerBytes ||
        !file.read(bytes.data(), bytes.size(), offset))
        return std::nullopt;
    const auto word = [&bytes](std::size_t at) {
        return int{qFromLittleEndian<quint16>(bytes.data() + at)};
    };
    CameraHeader header;
    header.columns = word(4);
    header.rows = word(6);
    constexpr int lastType = 3;
    if (bytes[0] != 'I' || bytes[1] != 'M' || header.columns == 0 || header.rows == 0 ||
        word(12) > lastType)
        return std::nullopt;
    header.begin = offset + headerBytes + word(2);
    header.bytesPerPixel = pixelBytes(word(12), header, file.size());
    const std::int64_t frames = qFromLittleEndian<quint32>(bytes.data() + 14);
    const std::int64_t frameBytes = header.end() - offset;
    if (frames > 1 && frames <= (file.size() - offset) / frameBytes)
        header.frames = frames;
    return header;
}

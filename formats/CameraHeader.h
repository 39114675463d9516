#pragma once

#include <cstdint>
#include <optional>

class ByteSource;

/// The header of a camera frame: ITEX, which HiPic and its kin write (.img, .his). A frame is the
/// header, a comment, and the rows from the top, in little endian.
struct CameraHeader {
    int columns = 0;
    int rows = 0;
    int bytesPerPixel = 0;   ///< 1, 2 or 4, unsigned; 0 for a type that is not known
    std::int64_t begin = 0;  ///< of the pixels, in the file
    std::int64_t frames = 1; ///< of a sequence

    std::int64_t end() const { return begin + std::int64_t{columns} * rows * bytesPerPixel; }
};

/// The header that begins at an offset. Whether the pixels are there is not looked at, except that
/// a sequence needs as many bytes as its frames say.
/// @return nothing where there is none
std::optional<CameraHeader> cameraHeaderAt(const ByteSource& file, std::int64_t offset);

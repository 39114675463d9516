#pragma once

#include "formats/CameraHeader.h"
#include "formats/FileFault.h"
#include "formats/Stack.h"

/// Frames of a camera file, .img or .his.
struct CameraFile {
    std::vector<CameraHeader> frames;
};

/// Reads the headers of all frames of a file.
/// @return why it is none: no header, a type of pixels that is not known, a frame that is cut, or
///         frames of different sizes
std::optional<FileFault> readCameraFile(const QString& path, CameraFile& file);

/// Reads a region of a frame.
/// @param header  of that frame
/// @param to      [region.width * region.height], of the header's type
std::optional<FileFault> readCameraPixels(const QString& path, const CameraHeader& header,
                                          const Region& region, char* to);

/// Type of a frame's pixels.
PixelType pixelTypeOf(const CameraHeader& header);

#pragma once

#include "formats/PlaneNumbers.h"
#include "formats/Stack.h"
#include "system/FileState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// An image that lies in a file as it is in memory, row after row: no library is needed for it, and
/// several threads read it straight to its place.
struct RawImage {
    QString path;
    std::int64_t offset = -1;       ///< negative where it does not lie so
    std::optional<FileState> state; ///< of the file when it was seen that it does
};

/// Images that are read together: each, or their mean.
struct RawImages {
    std::vector<RawImage> images;
    PixelType type = PixelType::U16;
    bool isMean = false;
    MeanWay way = MeanWay::SumOverCount;
    std::size_t offset = 0; ///< in the memory that they are put into, one behind the other
};

/// The places of images in a file, as its reader tells them; none unless there is one for each.
std::vector<std::int64_t> rawPlaces(const std::string& text, std::size_t images);

/// Reads a region of images.
/// @param columns  of each image
/// @param memory   for all of them
/// @param workers  that take part; null for none
/// @return false where one does not lie so, cannot be read, or has a file that changed: its library
/// knows more
bool readRawImages(const std::vector<RawImages>& all, int columns, const Region& region,
                   char* memory, Workers* workers);

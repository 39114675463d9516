#pragma once

#include "formats/Frame.h"

#include <cstddef>

/// Pixels that are taken at once; their numbers stay in the core's first cache.
constexpr std::size_t pixelBlock = 512;

/// Numbers of some pixels of an image, in double precision.
/// @param to  [count]
void loadNumbers(const Plane& plane, std::size_t first, std::size_t count, double* to);

/// How a mean of images is formed. Either way has last digits of its own.
enum class MeanWay {
    SumOverCount,
    SumOfParts, ///< each over the count; a number that is not finite has none
};

/// Adds one of several images to their mean, which is whole behind the last one.
/// @param image  which of them, from 0; they come in this order
/// @param of     how many there are
/// @param mean   [count]
void addToMean(MeanWay way, const Plane& plane, std::size_t count, std::size_t image,
               std::size_t of, double* mean);

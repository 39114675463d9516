#pragma once

#include "formats/Frame.h"

#include <cstddef>

/// Numbers of some pixels of an image, in double precision.
/// @param to  [count]
void loadNumbers(const Plane& plane, std::size_t first, std::size_t count, double* to);

#pragma once

#include <cmath>

/// The outermost pixel coordinate that is ever handed to a painter. A quarter of the integers, so
/// that a rectangle that starts and is as wide as the limit still fits into them.
constexpr int pixelLimit = (1 << 30) - 1;

/// A coordinate in pixels as an integer, toward zero. Beyond the limit the nearest end counts, so
/// that a line far off the canvas keeps its direction; not-a-number lies far off at the left (top).
inline int truncToInt(double v)
{
    if (v >= pixelLimit)
        return pixelLimit;
    return v > -pixelLimit ? static_cast<int>(v) : -pixelLimit;
}

/// A coordinate rounded to the nearest pixel, halves upward (also below zero).
inline int roundToInt(double v)
{
    return truncToInt(std::floor(v + 0.5));
}

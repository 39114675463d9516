#pragma once

#include <cmath>

/// Equal to the last bit; any not-a-number equals any other.
inline bool sameNumber(double a, double b)
{
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

#pragma once

/// Part of the way from the first of n places to the last one; 0 where there is one only.
constexpr double wayTo(int i, int n)
{
    return n > 1 ? static_cast<double>(i) / (n - 1) : 0.0;
}

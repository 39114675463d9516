#pragma once

#include <cmath>
#include <random>

/// Noise of counted photons that is the same on every machine: it uses only additions of the
/// generator's bits and a square root, no library's distribution and no transcendental function.
class CountingNoise
{
public:
    explicit CountingNoise(std::uint_fast64_t seed) : m_bits(seed) {}

    /// Counts with the scatter of the square root of their number.
    double counted(double expected) { return expected + std::sqrt(expected) * normal(); }

private:
    /// A normal deviate to good approximation: the sum of twelve uniform ones, whose variance is 1.
    double normal()
    {
        double sum = 0.0;
        for (int i = 0; i < 12; ++i)
            sum += static_cast<double>(m_bits() >> 11) * 0x1p-53;
        return sum - 6.0;
    }

    std::mt19937_64 m_bits;
};

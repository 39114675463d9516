#pragma once

#include <cmath>
#include <cstdint>
#include <random>

/// Normal deviates of variance 1 that are the same on every machine and in every run: G. Marsaglia
/// and T. A. Bray's polar method (SIAM Rev. 6 (1964) 260) on the standard generator's bits.
class NormalNoise
{
public:
    explicit NormalNoise(std::uint_fast64_t seed) : m_bits(seed) {}

    double next()
    {
        if (m_hasSpare) {
            m_hasSpare = false;
            return m_spare;
        }
        double x = 0.0;
        double y = 0.0;
        double square = 0.0;
        do {
            x = uniform();
            y = uniform();
            square = x * x + y * y;
        } while (square >= 1.0 || square == 0.0);
        const double factor = std::sqrt(-2.0 * std::log(square) / square);
        m_spare = y * factor;
        m_hasSpare = true;
        return x * factor;
    }

private:
    /// -1 to 1.
    double uniform() { return static_cast<double>(m_bits() >> 11) * 0x1p-52 - 1.0; }

    std::mt19937_64 m_bits;
    double m_spare = 0.0;
    bool m_hasSpare = false;
};

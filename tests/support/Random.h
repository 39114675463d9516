#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cmath>
#include <cstdint>
#include <random>

/// Random numbers of a randomized test. The seed is printed; with DROVIK_TEST_SEED in the
/// environment a run is repeated or varied.
class Random
{
public:
    Random() : m_seed(seed()), m_engine(m_seed) { qInfo("seed %llu", m_seed); }

    /// 0 to n - 1.
    int below(int n) { return static_cast<int>(m_engine() % static_cast<std::uint64_t>(n)); }
    bool oneIn(int n) { return below(n) == 0; }
    /// Uniform from low to high.
    double uniform(double low, double high)
    {
        return low + (high - low) * static_cast<double>(m_engine() >> 11) * 0x1p-53;
    }
    /// Of any magnitude that a double can have, small whole numbers and zero among them.
    double anyNumber()
    {
        switch (below(4)) {
        case 0:
            return below(7) - 3;
        case 1:
            return uniform(-1.0, 1.0);
        case 2:
            return uniform(-100.0, 100.0);
        default:
            return std::ldexp(uniform(-1.0, 1.0), below(2000) - 1000);
        }
    }
    std::uint64_t bits() { return m_engine(); }

    /// The seed of all randomized tests of a run.
    static unsigned long long seed()
    {
        const QByteArray text = qgetenv("DROVIK_TEST_SEED");
        return text.isEmpty() ? 20180917ULL : text.toULongLong();
    }

private:
    unsigned long long m_seed;
    std::mt19937_64 m_engine;
};

#pragma once

#include <cmath>
#include <limits>

/// A variance of independent parts, each known with degrees of freedom of its own, and those of the
/// sum (F. E. Satterthwaite, Biometrics Bull. 2 (1946) 110).
class PooledVariance
{
public:
    void add(double variance, double degrees)
    {
        m_sum += variance;
        m_overDegrees += variance * variance / degrees;
    }
    /// Infinite where there is no variance at all.
    double degrees() const
    {
        const double degrees = m_sum * m_sum / m_overDegrees;
        return std::isnan(degrees) ? std::numeric_limits<double>::infinity() : degrees;
    }

private:
    double m_sum = 0.0;
    double m_overDegrees = 0.0;
};

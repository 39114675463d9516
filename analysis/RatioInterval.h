#pragma once

#include <optional>

/// A range of values.
struct Interval {
    double low;
    double high;
};

/// Variances and the covariance of the two parts of a quotient L1 / L2.
struct RatioVariance {
    double v11 = 0.0;
    double v12 = 0.0;
    double v22 = 0.0;

    RatioVariance& operator+=(const RatioVariance& other);
    /// Of L1 - a L2.
    double at(double a) const { return v11 - 2.0 * a * v12 + a * a * v22; }
};

/// All a that L1 - a L2 does not tell from 0: (L1 - a L2)^2 <= t^2 var(L1 - a L2) (E. C. Fieller,
/// J. R. Stat. Soc. B 16 (1954) 175). Unlike a standard deviation about L1 / L2 it also holds where
/// the denominator is poorly known, and is not symmetric then.
/// @param t  quantile of Student's distribution
/// @return nothing where the range has no bounds, since L2 is not told from 0
std::optional<Interval> ratioInterval(double l1, double l2, const RatioVariance& variance,
                                      double t);

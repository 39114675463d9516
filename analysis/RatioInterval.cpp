#include "analysis/RatioInterval.h"

#include <algorithm>
#include <cmath>

RatioVariance& RatioVariance::operator+=(const RatioVariance& other)
{
    v11 += other.v11;
    v12 += other.v12;
    v22 += other.v22;
    return *this;
}

std::optional<Interval> ratioInterval(double l1, double l2, const RatioVariance& variance, double t)
{
    const double square = l2 * l2 - t * t * variance.v22;
    const double half = l1 * l2 - t * t * variance.v12;
    const double constant = l1 * l1 - t * t * variance.v11;
    if (!(square > 0.0))
        return std::nullopt;
    // Without noise the two solutions are one, whatever rounding makes of the root.
    const double root = std::sqrt(std::max(half * half - square * constant, 0.0));
    const Interval interval{(half - root) / square, (half + root) / square};
    if (!std::isfinite(interval.low) || !std::isfinite(interval.high))
        return std::nullopt;
    return interval;
}

#pragma once

#include "analysis/PointRow.h"

/// Three-point method: every spectrum is scaled to 0 at the first and 1 at the second normalization
/// point; at the V point the target's scaled value is then a mixture of the references'.
///
/// The parts that do not depend on the target are formed once; the same object serves one target
/// spectrum and each pixel of a map.
class ThreePoint
{
public:
    /// @param rows    the point table
    /// @param choice  a V point and at least two normalization points; the first two count.
    ///                With fewer all results are not-a-number.
    ThreePoint(const PointRows& rows, const PointChoice& choice);

    /// Fraction of Ref 1 from the target's mu-t at the two normalization points and the V point.
    /// Infinite or not-a-number where a denominator vanishes.
    double fraction(double t0, double t1, double tV) const
    {
        return ((tV - t0) / (t1 - t0) - m_reference2) / m_contrast;
    }

    /// Thickness ratio for a map: the target's step against a mean of reference steps whose second
    /// term is Ref 1 at the second point against Ref 2 at the first. The mixed term is the
    /// definition.
    double thickness(double t0, double t1) const { return (t1 - t0) / m_step; }

private:
    double m_reference2; ///< scaled Ref 2 at the V point
    double m_contrast;   ///< scaled Ref 1 minus scaled Ref 2 at the V point
    double m_step;       ///< mean reference step
};

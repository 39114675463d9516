#pragma once

#include "analysis/Method.h"
#include "analysis/TableCovariance.h"
#include "analysis/ThicknessRatio.h"

/// The thickness ratio of the references with its derivatives by the entries.
struct RatioGradient {
    double rho = 0.0;
    EntryGradient by{};
};

/// @return not-a-number or infinities where the ratio itself has none
RatioGradient ratioGradient(const PointRows& rows, ThicknessType type, double edgeJump1,
                            double edgeJump2);

/// The fraction of Ref 1 as a quotient L1 / L2, and the thickness ratio, with their derivatives by
/// the entries. With fixed references L1 and L2 are linear in the target's mu-t (in least squares
/// nearly so), which is what Fieller's interval needs.
///
/// Three points: L2 is the target's step times the contrast of the scaled references at the V
/// point. Four points: L1 = c (rho + 1) R2 + B - T and L2 = c (rho + 1) (R2 - R1 / rho) at the V
/// point, with c and the straight line B from T = c S + B at the normalization points.
struct PointRatio {
    double l1 = 0.0;
    double l2 = 0.0;
    double thickness = 0.0; ///< t/ts; for three points that of a map
    EntryGradient by1{};    ///< derivatives of l1
    EntryGradient by2{};    ///< of l2
    EntryGradient byThickness{};

    double fraction() const { return l1 / l2; }
    /// Derivatives of the fraction of Ref 1.
    EntryGradient fractionGradient() const;
};

/// @param rows    the point table with mu-t; at most pointTableRows
/// @param choice  with a V point and as many normalization points as the method needs
/// @param ratio   for the four-point methods
/// @return not-a-number or infinities where the method's results are
PointRatio pointRatio(const PointRows& rows, const PointChoice& choice, Method method,
                      const RatioGradient& ratio);

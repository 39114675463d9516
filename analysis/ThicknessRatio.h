#pragma once

#include "analysis/PointRow.h"

/// How the thickness ratio rho of Ref 1 to Ref 2 is obtained.
enum class ThicknessType {
    SumBySum,
    Mean,
    LeastSquares,
    LeastSquaresNoBlank,
    EdgeJumps,
};

/// The seven candidate figures, all formed at every run.
struct ThicknessRatios {
    double trSbyS;  ///< sum of Ref 1 over sum of Ref 2
    double trMean;  ///< mean of the ratios row by row
    double trLsA;   ///< slope of the least-squares line Ref 1 = A Ref 2 + B
    double trLsB;   ///< its intercept
    double trLsANB; ///< slope and intercept without the blank's subtraction
    double trLsBNB;
    double trVic2; ///< edge jump of Ref 1 over that of Ref 2

    double selected(ThicknessType type) const;
};

/// Rows marked for the thickness ratio are used; where none is marked, the rows in use. The V point
/// is never used. The references lose the blank unless a Victreen line was subtracted from them.
/// @param edgeJump1, edgeJump2  of the two references, 0 for a missing spectrum
/// @return not-a-number or infinities where rows are missing or sums vanish
ThicknessRatios thicknessRatios(const PointRows& rows, double edgeJump1, double edgeJump2);

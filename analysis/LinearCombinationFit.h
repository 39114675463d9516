#pragma once

#include "analysis/TargetResult.h"

#include <optional>
#include <variant>

/// Energies between which spectra are fitted (eV, ends included).
struct LcfRange {
    double min;
    double max;

    bool contains(double energy) const { return min <= energy && energy <= max; }
};

/// The range that the rows marked for the thickness ratio span; the other rows do not count.
/// @return nothing for fewer than two marked rows or where their energies span no range
std::optional<LcfRange> lcfRange(const PointRows& rows);

/// Normalized target as p1 times Ref 1 plus p2 times Ref 2 plus the constant p3.
struct LinearCombination {
    double p1;
    double p2;
    double p3;
    SpectrumPoints curve; ///< the fitted points: angle and energy of the target, fitted value
    /// Sum of (target - fit)^2 over the sum of target^2, over the fitted points.
    double rFactor = 0.0;

    /// Fraction a of valence state 1, and 1 - a. Infinite or not-a-number for p1 + p2 = 0.
    double share1() const { return p1 / (p1 + p2); }
    double share2() const { return p2 / (p1 + p2); }
    /// Mean valence from the valences of the two references.
    double valence(const ReferenceValences& valences) const
    {
        return valences.ref1 * p1 / (p1 + p2) + valences.ref2 * p2 / (p1 + p2);
    }
};

/// Least-squares fit of the normalized target by the two normalized references and a constant, over
/// the target's points in the range. The weights are free: p1 + p2 need not be 1. Where a reference
/// does not reach an energy it counts as 0 there.
/// @return not-a-number or infinities where points are missing or the references are alike
LinearCombination fitLinearCombination(const FittedSpectrum& ref1, const FittedSpectrum& ref2,
                                       const FittedSpectrum& target, const LcfRange& range);

/// The fit over the range that the table marks, or the reason against it. A spectrum that is
/// missing has no points.
std::variant<LinearCombination, RunRefusal> lcfResult(const AnalysisInput& input);

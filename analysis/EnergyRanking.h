#pragma once

#include "analysis/PointTable.h"
#include "analysis/TargetResult.h"

#include <array>
#include <cstddef>
#include <vector>

/// What a choice of energies is to be good for.
struct RankedTarget {
    double counts = 1e8;    ///< photons before the sample at each energy
    double thickness = 1.0; ///< t/ts of the target
};

/// A V point with its normalization points, and what it does to the fraction of Ref 1.
struct RankedChoice {
    double vPoint = 0.0;            ///< eV
    std::vector<double> points;     ///< normalization points, eV, rising
    std::array<double, 3> sigmaA{}; ///< by counting, of targets with a = 0, 1/2 and 1
    double shift = 0.0;             ///< change of `a` for +0.1 eV of the target, at a = 1/2
    double closure1 = 0.0;          ///< Ref 1 as the target; should be 1
    double closure2 = 0.0;          ///< Ref 2 as the target; should be 0
    double sigmaT = 0.0;            ///< of t/ts, at a = 1/2
    double robust = 0.0; ///< largest change of `a` for +-0.5 eV of one energy, at a = 1/2
    /// Standard deviation at a = 1/2 over that with the best crossing added; 1 where none is left.
    double gainOfOneMore = 1.0;
    bool front = false; ///< no other choice is better in both sigmaA at 1/2 and shift

    /// Both ends close well enough to be believed.
    bool closes() const;
};

/// Energies above the edge at which both states absorb alike, rising: where R1 / rho - R2 changes
/// its sign by more than noise, with the rho at which the states agree below the edge, where
/// nothing depends on the valence.
std::vector<double> crossings(const FittedSpectrum& ref1, const FittedSpectrum& ref2,
                              const FittedSpectrum* blank);

/// Every promising choice of one V point, one energy below the edge and two crossings, the best
/// first: those that close, by the standard deviation at a = 1/2. One number is wanted, so that the
/// design is c-optimal and not best for all parameters alike.
/// @param input  its references, blank and conditions count, and not its table
/// @param most   so many are judged in full and come back, with all of the front
/// @return none where a reference is missing, or too few energies are found
std::vector<RankedChoice> rankEnergies(const AnalysisInput& input, const RankedTarget& target,
                                       std::size_t most = 100);

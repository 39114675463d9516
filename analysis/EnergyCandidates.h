#pragma once

#include "analysis/FittedSpectrum.h"

#include <vector>

/// The difference of two states, R1 / rho - R2, at the energies of Ref 1.
struct StateDifference {
    std::vector<double> energies; ///< eV, rising
    std::vector<double> values;
    double noise = 0.0; ///< standard deviation of a value, from the scatter below the edge
    double rho = 0.0;   ///< at which the states agree below the edge

    bool isEmpty() const { return values.empty(); }
};

/// @param blank  null for none
/// @return empty where the references have no common energies below and above the edge
StateDifference stateDifference(const FittedSpectrum& ref1, const FittedSpectrum& ref2,
                                const FittedSpectrum* blank);

/// Where the difference changes its sign above an energy by more than noise, eV, rising.
std::vector<double> crossingsOf(const StateDifference& difference, double above);

/// Extremes of the difference above an energy, and the flanks beside them at half their height.
std::vector<double> vPointsOf(const StateDifference& difference, double above);

/// Energies below a limit at which the states are alike, some near it and some far.
std::vector<double> preEdgePointsOf(const StateDifference& difference, double limit);

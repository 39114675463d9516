#pragma once

#include "analysis/Spectrum.h"
#include "tests/support/Random.h"

#include <vector>

/// What of a spectrum the lines are fitted to.
struct FitRanges {
    double shortest; ///< length of each range, as a part of the edge's energy
    double longest;
    double preEdgeEnd;    ///< relative to the edge, eV
    double postEdgeStart; ///< relative to the edge, eV
};

/// Two references, a target that is mixed of them, and a blank, on the same energies: K edges from
/// 5 to 25 keV, 65 to 600 steps. Closed forms of sums, products and roots only, so that the numbers
/// are the same on every machine.
struct RandomSample {
    double edge;                          ///< eV
    double noise;                         ///< largest error of a mu-t; may be 0
    std::vector<SpectrumPoints> measured; ///< Ref 1, Ref 2, target, blank
    std::vector<SpectrumPoints> smooth;   ///< the same without the noise
};

RandomSample randomSample(const FitRanges& ranges, Random& random);

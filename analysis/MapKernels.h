#pragma once

#include "analysis/FourPoint.h"
#include "analysis/ThreePoint.h"

#include <cstddef>
#include <vector>

/// Pixels that a kernel takes at once. Its intermediate sums stay in the core's first cache.
constexpr std::size_t kernelBlock = 1024;

/// Target values of a block of pixels, one array [count] for each point.
struct BlockInputs {
    std::vector<const double*> t; ///< at the normalization points
    const double* tV = nullptr;   ///< at the V point
    bool mayMiss = true;          ///< an image may not have all of the pixels
};

/// Where the results of a block go.
struct BlockResults {
    double* a; ///< fraction of Ref 1 [count]
    double* t; ///< thickness ratio [count]
    std::size_t count;
};

/// The point methods for many pixels at once; bit by bit what ThreePoint, FourPointExact,
/// FourPointLeastSquares and VPointFraction give for each of them.

void threePointBlock(const ThreePoint& method, const BlockInputs& in, const BlockResults& out);
void exactBlock(const FourPointExact& method, const VPointFraction& fraction, const BlockInputs& in,
                const BlockResults& out);
/// @param out  at most kernelBlock pixels
void leastSquaresBlock(const FourPointLeastSquares& method, const VPointFraction& fraction,
                       const BlockInputs& in, const BlockResults& out);

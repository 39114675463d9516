#pragma once

#include "analysis/FittedSpectrum.h"

#include <optional>

/// By how much the energies of a scan are off, as a foil shows that was measured along with it.
struct FoundShift {
    double shift; ///< eV, to be added to the energies of the scan
    double sigma; ///< its standard deviation by the noise of both foils
};

/// Energies against the edge between which foils are compared, and how far they may be apart, eV.
constexpr double foilFrom = -40.0;
constexpr double foilTo = 60.0;
constexpr double largestShift = 5.0;

/// Least squares of one foil against the other's spline, with a scale, an offset and a slope of its
/// own, so that a foil's thickness and the detectors' gains do not matter.
/// @param foil       of the scan, with its bounds
/// @param reference  of the scan that sets the scale
/// @return nothing where too few points are common, or no shift up to the largest fits best
std::optional<FoundShift> foundShift(const FittedSpectrum& foil, const FittedSpectrum& reference);

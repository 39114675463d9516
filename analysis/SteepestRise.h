#pragma once

#include "analysis/Spectrum.h"

#include <optional>

/// Where a spectrum rises most, which is at or near its edge: the point with the largest slope
/// between the mean of the points up to 2 eV below it and of those up to 2 eV above it, at least
/// one on each side, so that noise hardly counts. The order of the points does not matter.
/// @return eV; nothing where three energies and a rise are not there
std::optional<double> steepestRise(SpectrumPoints points);

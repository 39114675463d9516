#pragma once

#include "analysis/FittedSpectrum.h"

/// A spectrum as it would have been measured under a fault, with its lines fitted anew within the
/// same bounds.

/// Adds to every energy of a spectrum, and fits its lines anew.
/// @param shift  eV
void shiftEnergies(FittedSpectrum& spectrum, double shift);

/// @param shift  eV, added to every energy
FittedSpectrum withShift(const FittedSpectrum& spectrum, double shift);

/// A part of the light goes past the sample, or is of a harmonic that the sample lets through: mu-t
/// becomes -ln((1 - f) exp(-mu-t) + f). This takes mu-t for absolute; an offset changes it.
/// @param part  f, 0 to 1
FittedSpectrum withLeakage(const FittedSpectrum& spectrum, double part);

/// The thickness under the beam is spread normally: mu-t loses (mu-t s)^2 / 2. Absolute mu-t as
/// above.
/// @param spread  s: standard deviation of the thickness over its mean
FittedSpectrum withUnevenThickness(const FittedSpectrum& spectrum, double spread);

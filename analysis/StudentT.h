#pragma once

/// Student's t distribution (W. S. Gosset, Biometrika 6 (1908) 1): how far an estimate lies from
/// the truth in units of its standard deviation where that is estimated as well.

/// The t below which |T| stays with the probability `level`: 1 for 0.683 and a known deviation.
/// @param level    0 to 1, ends excluded
/// @param degrees  of freedom, not necessarily whole; infinite where the deviation is known
/// @return not-a-number for a level or degrees out of range
double studentQuantile(double level, double degrees);

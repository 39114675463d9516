#pragma once

#include "examples/MixedSample.h"

/// Errors of the four-point methods on a known sample, to first order, from the model alone: what
/// docs/numerics.md derives. They hold for the form's default points, three normalization points
/// at 8313, 8381 and 8404.5 eV and the V point at 8390 eV.

/// Errors under the form's default conditions, without noise. Each has one assumption of the
/// method behind it that the data break.
struct DefaultErrors {
    double lineCurved;  ///< in a: the mean of the subtracted post-edge lines is no straight line
    double linesDiffer; ///< in a: the lines of the two references are no multiples of each other
    double blankTwice;  ///< in a: the subtracted line holds the blank, which is then lost again
    double ratio;       ///< in a: the ratio of the edge jumps is not that of the thicknesses
    double thickness;   ///< in t/ts: of the first and the third

    double a() const { return lineCurved + linesDiffer + blankTwice + ratio; }
};
DefaultErrors defaultErrors(const MixedSample& sample);

/// Standard deviations of a and t/ts by the counting noise at the points.
struct NoiseErrors {
    double a;
    double thickness;
};

/// With nothing but the blank taken from the spectra and the thickness ratio sum by sum.
NoiseErrors noiseOfJob(const MixedSample& sample);

/// Under the form's default conditions; the noise of the fitted lines, each of hundreds of points,
/// is left out.
NoiseErrors noiseOfDefaults(const MixedSample& sample);

#pragma once

#include "analysis/Constants.h"
#include "analysis/Spectrum.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

/// Random errors of the measured mu-t of a spectrum; those of different points are independent.
struct SpectrumNoise {
    double sigma = 0.0; ///< standard deviation of mu-t before the edge
    /// Of freedom that the estimate has; infinite where the deviation is known.
    double degrees = std::numeric_limits<double>::infinity();
    std::vector<double> variance; ///< of each point's mu-t; empty where it is that of sigma

    double varianceAt(std::size_t i) const
    {
        return variance.empty() ? sigma * sigma : variance[i];
    }
};

/// The noise from the scatter of the points below a limit, taken for that of all points: the mean
/// square of the differences from the straight line through both neighbours, scaled to the variance
/// of one point (T. Gasser, L. Sroka, C. Jennen-Steinmetz, Biometrika 73 (1986) 625). A smooth line
/// does not contribute, and none is fitted.
///
/// One glitch would double the mean square. A difference beyond five times the median estimate is
/// left out with those beside it, which hold the same point; of normal noise this takes one in a
/// million, of few points some more.
/// @param limit  eV; points strictly below count
/// @return nothing where no three points of rising or falling energy follow one another there
std::optional<SpectrumNoise> scatterNoise(const SpectrumPoints& points, double limit);

/// What the detectors read at a point.
struct Readings {
    double incident;    ///< before the sample
    double transmitted; ///< behind it
};

/// Variance of a detector's reading over the reading: 1 for counted photons.
struct DetectorGains {
    double incident = 1.0;
    double transmitted = 1.0;
};

/// Variance of ln(I0 / I) by counting, g0 / I0 + g / I; not-a-number where a reading is not
/// positive.
double countingVariance(const Readings& readings, const DetectorGains& gains);

/// The noise of counted photons.
/// @param readings  of each of the points
/// @param limit     eV; sigma is the root of the mean variance of the points strictly below
/// @return nothing where a reading is not positive, or no point lies below the limit
std::optional<SpectrumNoise> countingNoise(const SpectrumPoints& points,
                                           const std::vector<Readings>& readings,
                                           const DetectorGains& gains, double limit);

/// A gain beyond these says that the readings are no photons.
constexpr double smallestGain = 0.25;
constexpr double largestGain = 4.0;

/// Variance found in the scatter below a limit over that of as many counted photons.
/// @return nothing where either is not known
std::optional<double> gainFound(const SpectrumPoints& points, const std::vector<Readings>& readings,
                                double limit);

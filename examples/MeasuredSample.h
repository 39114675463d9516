#pragma once

#include "examples/MixedSample.h"
#include "jobs/JobFile.h"

#include <QString>

#include <optional>

/// How a sample is analysed.
struct Measuring {
    Job job;
    bool blankNamed = true; ///< otherwise there is no blank
};

/// What the program finds on a sample.
struct Found {
    double a;
    double thickness; ///< t/ts; not-a-number in the three-point method
};

/// The conditions of the example's job, which the four-point methods ask for: nothing but the blank
/// taken from the spectra, the thickness ratio sum by sum.
Measuring exampleConditions();

/// The form's default conditions.
Measuring defaultConditions();

/// Writes the sample's spectra into a folder, reads them and analyses the target.
/// @param seed  of the counting noise; without one the spectra have none
/// @return nothing where the files cannot be written or the analysis is refused
std::optional<Found> measure(Measuring conditions, const MixedSample& sample, const QString& folder,
                             std::optional<std::uint_fast64_t> seed);

#pragma once

#include "batch/JobFile.h"
#include "examples/MixedSample.h"

#include <QString>

#include <optional>

/// Conditions and which spectra are named.
struct Conditions {
    Job job;
    bool blankNamed = true; ///< otherwise the Blank selector stays empty
};

/// What the program finds on a sample, by the texts that it shows.
struct Found {
    double a;
    double thickness; ///< t/ts; not-a-number in the three-point method
};

/// The conditions of the example's job, which the four-point methods ask for: nothing but the blank
/// taken from the spectra, the thickness ratio sum by sum.
Conditions exampleConditions();

/// The form's default conditions.
Conditions defaultConditions();

/// Writes the sample's spectra into a folder, runs them in a panel, and reads the result field.
/// @param seed  of the counting noise; without one the spectra have none
/// @return nothing where the files cannot be written or the panel refuses
std::optional<Found> measure(Conditions conditions, const MixedSample& sample,
                             const QString& folder, std::optional<std::uint_fast64_t> seed);

#pragma once

#include "analysis/FittedSpectrum.h"
#include "analysis/TargetResult.h"

#include <optional>

/// Faults that no scatter shows. Each is calculated again with the changed spectrum: they are not
/// small enough for derivatives, and not the same in both directions.

/// Fractions of Ref 1 that the point method and the linear combination fit find; or their changes.
struct Fractions {
    std::optional<double> point; ///< nothing where the method is refused
    std::optional<double> fit;

    /// Changes of both from an earlier finding.
    Fractions operator-(const Fractions& other) const;
};

/// The results from the spectra themselves, without the six digits of the point table, so that a
/// small change is no rounding.
/// @param input  of whose table only the chosen energies are taken
Fractions fractionsOf(const AnalysisInput& input);

/// The same with another spectrum in one place.
Fractions fractionsWith(const AnalysisInput& input, SpectrumSet::Index place,
                        const FittedSpectrum& spectrum);

constexpr double usualShift = 0.1;    ///< eV, by which two scans often differ
constexpr double usualLeakage = 0.01; ///< part of the light

/// What an error of one spectrum does to the fractions.
struct SystematicErrors {
    Fractions targetShift; ///< target shifted by usualShift
    Fractions ref1Shift;
    Fractions ref2Shift;
    Fractions leakage;   ///< usualLeakage in the target
    Fractions thickness; ///< the target's thickness uneven; none for a spread of 0
};

/// @param spread  of the target's thickness over its mean
SystematicErrors systematicErrors(const AnalysisInput& input, double spread = 0.0);

/// What the table of many targets tells of each: the point method alone, and faults of the target.
struct TargetChanges {
    std::optional<double> shift;   ///< change of the fraction for usualShift
    std::optional<double> leakage; ///< for usualLeakage
};

TargetChanges targetChanges(const AnalysisInput& input);

/// Each reference in the target's place: a method whose assumptions hold finds 1 and 0. It finds
/// wrong crossings and thickness ratios; an error of the target alone it cannot see.
struct Closure {
    Fractions ref1;
    Fractions ref2;

    /// By how much the point method is then off at a fraction, where it is off evenly between its
    /// ends.
    std::optional<double> errorAt(double a) const;
    /// Either end is farther off than a physicist would accept.
    bool isDoubtful() const;
};

Closure closureOf(const AnalysisInput& input);

/// By how many standard deviations a fraction lies outside 0 to 1; 0 within.
double sigmasOutside(double a, double sigma);

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

/// References whose energies are usualShift higher: they serve all targets of a table.
struct ShiftedReferences {
    std::optional<FittedSpectrum> ref1;
    std::optional<FittedSpectrum> ref2;
};

ShiftedReferences shiftedReferences(const SpectrumSet& spectra);

/// What is told of each of many targets: changes of the fraction that the point method finds.
struct TargetChanges {
    std::optional<double> shift;      ///< target shifted by usualShift
    std::optional<double> ref1Shift;  ///< Ref 1 shifted by usualShift
    std::optional<double> ref2Shift;  ///< Ref 2, likewise
    std::optional<double> leakage;    ///< usualLeakage in the target
    std::optional<double> thickness;  ///< the target's thickness uneven; none for a spread of 0
    std::optional<double> threePoint; ///< by three of more points: V point and the first two others
    std::optional<double> fourPoint;  ///< by four of more points, exactly
};

/// @param shifted  of the references of the input
/// @param spread   of the target's thickness over its mean
TargetChanges targetChanges(const AnalysisInput& input, const ShiftedReferences& shifted,
                            double spread = 0.0);

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

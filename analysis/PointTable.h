#pragma once

#include "analysis/FittedSpectrum.h"
#include "analysis/PointRow.h"
#include "analysis/ThicknessRatio.h"

#include <array>
#include <optional>
#include <vector>

/// How the calculations are to be done.
struct Conditions {
    ThicknessType thickness = ThicknessType::EdgeJumps;
    bool referencesMinusVictreen = true; ///< the references lose a Victreen line
    bool targetMinusVictreen = false;    ///< the target loses one
    bool victreenIsPre = false;          ///< the line is the one below the edge
    bool exact = false;                  ///< exact four points
    bool leastSquares = true;            ///< least squares
};

/// Rows of the point table.
constexpr std::size_t pointTableRows = 8;

/// A row of the point table as it is chosen; its mu-t come from the spectra.
struct ChosenPoint {
    std::optional<double> energy; ///< eV; a row without one has no mu-t
    bool use = false;
    bool tRatio = false;
    bool vPoint = false;
};

/// The spectra of an analysis; null where there is none.
struct SpectrumSet {
    enum Index { Ref1, Ref2, Target, Blank };
    static constexpr std::size_t count = 4;
    std::array<const FittedSpectrum*, count> all{};

    const FittedSpectrum* operator[](Index i) const { return all.at(i); }
    bool isValid(Index i) const { return all[i] != nullptr && !all[i]->points.empty(); }
    /// Edge jump, 0 without a spectrum.
    double edgeJump(Index i) const { return all[i] != nullptr ? all[i]->edgeJump() : 0.0; }
};

/// The line that a spectrum loses before its mu-t is used; the blank loses none.
SubtractedLine subtractedLine(SpectrumSet::Index spectrum, const Conditions& conditions);

/// The point table as the window's fields show it: mu-t to six significant digits, which decide
/// here as they do there; 0 where a spectrum does not reach an energy or is missing.
PointRows pointTable(const std::vector<ChosenPoint>& points, const SpectrumSet& spectra,
                     const Conditions& conditions);

/// The same energies with the mu-t of spectra as they are, not to six digits.
/// @param chosen  of which everything but the mu-t is taken
PointRows unroundedTable(const PointRows& chosen, const SpectrumSet& spectra,
                         const Conditions& conditions);

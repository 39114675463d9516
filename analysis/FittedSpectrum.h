#pragma once

#include "analysis/Constants.h"
#include "analysis/Spectrum.h"
#include "analysis/Victreen.h"

#include <optional>

/// Energies that bound the fits of a spectrum, eV.
struct FitBounds {
    double preEdgeEnd = 8000.0;    ///< points strictly below belong to the pre-edge fit
    double edge = 0.0;             ///< where the edge jump is taken
    double postEdgeStart = 8500.0; ///< points strictly above belong to the post-edge fit
};

/// A spectrum: the points in file order, their ranges, the energies that bound the Victreen fits,
/// and the fitted lines. As a constant it can be used by several threads at once.
struct FittedSpectrum : FitBounds {
    double angleMin = beyondAll; ///< degrees
    double angleMax = -beyondAll;
    double energyMin = beyondAll; ///< eV
    double energyMax = -beyondAll;
    double mutMin = beyondAll;
    double mutMax = -beyondAll;
    SpectrumPoints points;

    VictreenLineNoC preVicNoC;
    VictreenLineNoC postVicNoC;
    VictreenLine preVic;
    VictreenLine postVic;

    /// Takes points and their ranges; the bounds and the lines stay.
    void setPoints(SpectrumPoints found);
    /// Takes bounds; the lines stay.
    void setBounds(const FitBounds& bounds) { static_cast<FitBounds&>(*this) = bounds; }

    /// Refits the four lines from the points and the bounds; nothing happens without points.
    void fitVictreens();

    double preVicAt(double energy) const { return preVic.at(energy); }
    double postVicAt(double energy) const { return postVic.at(energy); }
    double preVicNoCAt(double energy) const { return preVicNoC.at(energy); }
    double postVicNoCAt(double energy) const { return postVicNoC.at(energy); }
    double vicDiffAt(double energy) const { return postVicAt(energy) - preVicAt(energy); }
    double vicNoCDiffAt(double energy) const { return postVicNoCAt(energy) - preVicNoCAt(energy); }
    double edgeJump() const { return vicDiffAt(edge); }
    double edgeJumpNoC() const { return vicNoCDiffAt(edge); }

    /// Widens [min, max] by the mu-t of the points between two energies (eV, bounds included).
    void muTRange(double energy1, double energy2, double& min, double& max) const
    {
        widenMutRange(points, energy1, energy2, min, max);
    }

    /// Normalized absorption at an energy (eV), 0 outside the points.
    double normalizedAt(double energy) const
    {
        return ::normalizedAt(points, preVic, postVic, energy);
    }
};

/// A Victreen line that is subtracted from a spectrum before its mu-t is used.
enum class SubtractedLine { None, Pre, Post };

/// mu-t of a spectrum at an energy (eV) by interpolation, less the three-term line at that energy.
/// @return nothing where no point lies at or above the energy
std::optional<double> mutLess(const FittedSpectrum& spectrum, SubtractedLine line, double energy);

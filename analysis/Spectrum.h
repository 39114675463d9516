#pragma once

#include <optional>
#include <vector>

/// One step of the monochromator.
struct SpectrumPoint {
    double angle;  ///< Bragg angle, degrees
    double energy; ///< photon energy, eV
    double mut;    ///< mu-t = ln(I0 / I), no unit
};

/// Points in the order of the file; usually, but not always, of rising energy.
using SpectrumPoints = std::vector<SpectrumPoint>;

/// mu-t at an energy by linear interpolation between the first point at or above it and the one
/// before. Below the first point the line runs through the origin (0 eV, 0).
/// @param energy  eV
/// @return nothing where no point lies at or above the energy
std::optional<double> interpolateMut(const SpectrumPoints& points, double energy);

/// Widens [min, max] by the mu-t of every point between the two energies (eV, either order, bounds
/// included).
void widenMutRange(const SpectrumPoints& points, double energy1, double energy2, double& min,
                   double& max);

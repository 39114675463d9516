#pragma once

#include "analysis/Constants.h"

#include <cmath>

/// Photon energy by Bragg's law.
/// @param angle    degrees
/// @param spacing  of the lattice planes, angstrom
/// @return eV
inline double photonEnergy(double angle, double spacing)
{
    return hcKiloElectronVoltAngstrom / (2.0 * spacing * std::sin(angle * piOfAngles / 180.0)) *
           1000.0;
}

/// Bragg angle in degrees of an energy in eV; not-a-number where the planes are too close for it.
inline double braggAngle(double energy, double spacing)
{
    return std::asin(hcElectronVoltAngstrom / energy / (2.0 * spacing)) * 180.0 / piOfAngles;
}

#pragma once

#include <limits>

/// The constants of the program, each with its unit. The digits are part of the results: energies
/// and mu-t are defined by them, so that more digits would be other results.

/// Planck's constant times the speed of light, eV times angstrom.
constexpr double hcElectronVoltAngstrom = 12398.424360387684;

/// The same in keV times angstrom, as Bragg's law has it where a spectrum is read.
constexpr double hcKiloElectronVoltAngstrom = hcElectronVoltAngstrom / 1000.0;

/// Pi to ten decimals, with which the degrees of a monochromator become an energy.
constexpr double piOfAngles = 3.1415926535;

/// Distance of the (111) planes of silicon, angstrom, for a spectrum whose header names none: the
/// lattice constant, 5.4309 angstrom, over the root of three.
constexpr double silicon111Spacing = 3.1355316;

/// A number larger than all that are measured: where the search for a smallest value begins. The
/// search for a largest one begins at its negative. A range without values keeps the two.
constexpr double beyondAll = 1e300;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

#pragma once

/// A model of a metal's K-edge absorption in two valence states, nickel-like: an edge near 8350 eV
/// whose steepest point, white line and fine structure differ from state to state, on the smooth
/// fall of Victreen's law. It is closed-form, so that what an analysis should find is known.
///
/// Energies are in eV. Absorptions are per thickness, in units in which a thickness of 1 has an
/// edge jump of 1 at 8350 eV.
namespace absorption
{

enum class State { Two, Three };

/// Energies at which both states absorb exactly alike, besides all energies well below the edge.
constexpr double isosbestic[] = {8381.0, 8404.5, 8460.0, 8475.0};

/// The energy of the example's V point, and the difference of the states over the height of the
/// step there.
constexpr double contrastEnergy = 8390.0;
constexpr double contrast = 0.2;

/// Absorption of a pure state.
double ofState(State state, double energy);

/// mu-t of an empty measurement: the gain ratio of the detectors, and the air and the windows that
/// every other measurement contains as well.
double ofBlank(double energy);

} // namespace absorption

#pragma once

#include "analysis/Constants.h"
#include "analysis/Spectrum.h"

/// Victreen lines: the smooth fall of the absorption away from an edge, c + a lambda^3 + b lambda^4
/// (J. A. Victoreen, J. Appl. Phys. 14 (1943) 95; J. A. Victoreen, J. Appl. Phys. 19 (1948) 855).

/// Wavelength in angstrom of a photon of the given energy (eV).
inline double wavelength(double energy)
{
    return hcElectronVoltAngstrom / energy;
}

/// c + a lambda^3 + b lambda^4, lambda in angstrom.
struct VictreenLine {
    double c = 0.0;
    double a = 0.0;
    double b = 0.0;

    /// Value at an energy in eV, in units of mu-t.
    double at(double energy) const
    {
        const double l = wavelength(energy);
        return l * l * l * (a + b * l) + c;
    }
};

/// a lambda^3 + b lambda^4, lambda in angstrom.
struct VictreenLineNoC {
    double a = 0.0;
    double b = 0.0;

    /// Value at an energy in eV, in units of mu-t.
    double at(double energy) const
    {
        const double l = wavelength(energy);
        return l * l * l * (a + b * l);
    }
};

/// Both forms of the line, fitted to the same points.
struct VictreenFit {
    VictreenLine full;
    VictreenLineNoC noC;
};

/// Least-squares Victreen lines through the points with an energy strictly below the limit.
/// @param limit  eV
/// @return not-a-number or infinities where too few distinct energies are selected
VictreenFit fitVictreenBelow(const SpectrumPoints& points, double limit);

/// The same through the points strictly above the limit.
VictreenFit fitVictreenAbove(const SpectrumPoints& points, double limit);

/// Normalized absorption of one point: 0 on the pre-edge line, 1 on the post-edge line.
double normalizedPoint(const SpectrumPoint& point, const VictreenLine& pre,
                       const VictreenLine& post);

/// Linear between the normalized values of two points, at an energy in eV.
double normalizedBetween(const SpectrumPoint& left, const SpectrumPoint& right,
                         const VictreenLine& pre, const VictreenLine& post, double energy);

/// Normalized absorption at an energy (eV), linear between the first two neighbours that enclose
/// it. 0 for fewer than two points, an energy outside the first and the last point, or where no two
/// neighbours enclose it. Walks through the points: NormalizedSpectrum serves many energies.
double normalizedAt(const SpectrumPoints& points, const VictreenLine& pre, const VictreenLine& post,
                    double energy);

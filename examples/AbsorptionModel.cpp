#include "examples/AbsorptionModel.h"

#include <cmath>

namespace absorption
{
namespace
{

// The sample's physics is the example's own: nothing of the program's analysis goes into it.
constexpr double pi = 3.14159265358979323846;
constexpr double edge = 8350.0;
constexpr double threshold = 8345.0; ///< where photoelectrons start, eV

/// What the states do not share: the edge's midpoint, the white line, and the small peak before
/// the edge; heights per thickness, energies and widths in eV.
struct EdgeShape {
    double midpoint;
    double whiteLine, whiteLineEnergy, whiteLineWidth;
    double prePeak, prePeakEnergy;
};
constexpr EdgeShape edgeTwo{8346.0, 0.55, 8350.0, 2.6, 0.03, 8333.0};
constexpr EdgeShape edgeThree{8347.8, 0.40, 8352.2, 3.2, 0.04, 8334.2};
constexpr double midpointWidth = 2.2;
constexpr double prePeakWidth = 1.2;

/// Photoelectron wave number, 1/angstrom; 0 below the threshold.
double waveNumber(double energy)
{
    constexpr double perElectronVolt = 0.2624683; // 2 m / hbar^2
    return energy > threshold ? std::sqrt(perElectronVolt * (energy - threshold)) : 0.0;
}

double peak(double energy, double height, double center, double width)
{
    const double x = (energy - center) / width;
    return height * std::exp(-0.5 * x * x);
}

/// Rises from 0 at the threshold to 1 some 30 eV above it.
double onset(double energy)
{
    const double x = energy > threshold ? (energy - threshold) / 15.0 : 0.0;
    return 1.0 - std::exp(-x * x);
}

/// Fine structure that both states share.
double sharedStructure(double energy)
{
    const double k = waveNumber(energy);
    return onset(energy) * 0.16 * std::exp(-0.03 * k * k) * std::sin(3.9 * k - 1.0);
}

/// Two beating oscillations, damped. The phase is a multiple of pi at the first three isosbestic
/// energies (a parabola through 0, 1 and 3), the beat has its node at the fourth.
double beating(double energy)
{
    const double k = waveNumber(energy);
    const double k0 = waveNumber(isosbestic[0]);
    const double k1 = waveNumber(isosbestic[1]);
    const double k2 = waveNumber(isosbestic[2]);
    const double slope = 1.0 / (k1 - k0);
    const double bend = (2.0 / (k2 - k1) - slope) / (k2 - k0);
    const double phase = pi * ((k - k0) * slope + (k - k0) * (k - k1) * bend);
    const double beat = 0.63 * (waveNumber(isosbestic[3]) - k);
    return onset(energy) * std::exp(-0.06 * k * k) * std::sin(phase) * std::sin(beat);
}

/// Difference of the states' fine structures.
double difference(double energy)
{
    return contrast * beating(energy) / beating(contrastEnergy);
}

} // namespace

double ofState(State state, double energy)
{
    const bool two = state == State::Two;
    const EdgeShape& shape = two ? edgeTwo : edgeThree;
    const double l = edge / energy; // wavelength over that of the edge
    const double below = 0.25 * l * l * l;
    const double height = l * l * l * (1.3 - 0.3 * l);
    const double step = 0.5 * (1.0 + std::erf((energy - shape.midpoint) / midpointWidth));
    const double structure = sharedStructure(energy) + (two ? 0.5 : -0.5) * difference(energy);
    return below + height * step * (1.0 + structure) +
           peak(energy, shape.whiteLine, shape.whiteLineEnergy, shape.whiteLineWidth) +
           peak(energy, shape.prePeak, shape.prePeakEnergy, prePeakWidth);
}

double ofBlank(double energy)
{
    const double l = edge / energy;
    return 0.03 + 0.04 * l * l * l;
}

} // namespace absorption

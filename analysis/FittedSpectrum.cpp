#include "analysis/FittedSpectrum.h"

#include <utility>

namespace
{

void widen(double value, double& min, double& max)
{
    if (value < min)
        min = value;
    if (value > max)
        max = value;
}

} // namespace

void FittedSpectrum::setPoints(SpectrumPoints found)
{
    points = std::move(found);
    angleMin = energyMin = mutMin = beyondAll;
    angleMax = energyMax = mutMax = -beyondAll;
    for (const SpectrumPoint& point : points) {
        widen(point.angle, angleMin, angleMax);
        widen(point.energy, energyMin, energyMax);
        widen(point.mut, mutMin, mutMax);
    }
}

void FittedSpectrum::fitVictreens()
{
    if (points.empty())
        return;
    const VictreenFit pre = fitVictreenBelow(points, preEdgeEnd);
    const VictreenFit post = fitVictreenAbove(points, postEdgeStart);
    preVicNoC = pre.noC;
    preVic = pre.full;
    postVicNoC = post.noC;
    postVic = post.full;
}

std::optional<double> mutLess(const FittedSpectrum& spectrum, SubtractedLine line, double energy)
{
    std::optional<double> mut = interpolateMut(spectrum.points, energy);
    if (mut && line != SubtractedLine::None)
        *mut -=
            line == SubtractedLine::Pre ? spectrum.preVicAt(energy) : spectrum.postVicAt(energy);
    return mut;
}

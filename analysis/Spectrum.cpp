#include "analysis/Spectrum.h"

std::optional<double> interpolateMut(const SpectrumPoints& points, double energy)
{
    SpectrumPoint previous{0.0, 0.0, 0.0};
    for (const SpectrumPoint& point : points) {
        if (point.energy >= energy)
            return previous.mut + (point.mut - previous.mut) / (point.energy - previous.energy) *
                                      (energy - previous.energy);
        previous = point;
    }
    return std::nullopt;
}

void widenMutRange(const SpectrumPoints& points, double energy1, double energy2, double& min,
                   double& max)
{
    for (const SpectrumPoint& point : points) {
        const double e = point.energy;
        if (!(energy1 <= e && e <= energy2) && !(energy2 <= e && e <= energy1))
            continue;
        if (point.mut < min)
            min = point.mut;
        if (point.mut > max)
            max = point.mut;
    }
}

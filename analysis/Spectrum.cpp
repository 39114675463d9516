#include "analysis/Spectrum.h"

#include <algorithm>

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
    const double low = std::min(energy1, energy2);
    const double high = std::max(energy1, energy2);
    for (const SpectrumPoint& point : points) {
        if (!(point.energy >= low && point.energy <= high))
            continue;
        if (point.mut < min)
            min = point.mut;
        if (point.mut > max)
            max = point.mut;
    }
}

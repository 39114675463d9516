#include "analysis/SpectrumChange.h"

#include <cmath>

namespace
{

template <class Change>
FittedSpectrum changed(const FittedSpectrum& spectrum, const Change& change)
{
    SpectrumPoints points = spectrum.points;
    for (SpectrumPoint& point : points)
        change(point);
    FittedSpectrum result;
    result.setBounds(spectrum);
    result.setPoints(std::move(points));
    result.fitVictreens();
    return result;
}

} // namespace

void shiftEnergies(FittedSpectrum& spectrum, double shift)
{
    SpectrumPoints points = std::move(spectrum.points);
    for (SpectrumPoint& point : points)
        point.energy += shift;
    spectrum.setPoints(std::move(points));
    spectrum.fitVictreens();
}

FittedSpectrum withShift(const FittedSpectrum& spectrum, double shift)
{
    return changed(spectrum, [shift](SpectrumPoint& point) { point.energy += shift; });
}

FittedSpectrum withLeakage(const FittedSpectrum& spectrum, double part)
{
    return changed(spectrum, [part](SpectrumPoint& point) {
        point.mut = -std::log((1.0 - part) * std::exp(-point.mut) + part);
    });
}

FittedSpectrum withUnevenThickness(const FittedSpectrum& spectrum, double spread)
{
    return changed(spectrum, [spread](SpectrumPoint& point) {
        const double scattered = point.mut * spread;
        point.mut -= 0.5 * scattered * scattered;
    });
}

#pragma once

#include "analysis/MapSigma.h"
#include "results/MapCells.h"

#include <memory>
#include <vector>

/// The standard deviations of a map as its pictures see them: that of the valence in the place of
/// the valence, that of t/ts in the place of t/ts.
class SigmaPixels
{
public:
    /// @param pixels  of the results; their positions and missing pixels must live as long
    SigmaPixels(const MapPixels& pixels, const MapSigmas& sigmas);

    const MapPixels& pixels() const { return m_pixels; }
    const bool* meaningless() const { return m_meaningless.get(); } ///< [pixels().size()]

    /// From 0 to the round number that 95 % of the pixels do not reach whose valence means
    /// something.
    const MapRanges& ranges() const { return m_ranges; }

private:
    MapPixels m_pixels;
    std::vector<double> m_valence;
    std::vector<double> m_thickness;
    std::unique_ptr<bool[]> m_meaningless;
    MapRanges m_ranges;
};

#pragma once

#include "analysis/Victreen.h"

#include <cstddef>
#include <vector>

/// normalizedAt() for one spectrum at many energies: the same values, found without a walk through
/// the points for each of them, whatever the order of the points.
class NormalizedSpectrum
{
public:
    /// @param points  eV and mu-t, in any order; kept by reference
    NormalizedSpectrum(const SpectrumPoints& points, const VictreenLine& pre,
                       const VictreenLine& post);

    /// Normalized absorption at an energy (eV); 0 where no two neighbours enclose it.
    double at(double energy) const;

    /// Index of the right one of the two neighbours between which at() interpolates; 0 where there
    /// are none.
    std::size_t rightNeighbour(double energy) const;

private:
    void assign(std::size_t right, std::vector<std::size_t>& nextFree);

    const SpectrumPoints& m_points;
    VictreenLine m_pre;
    VictreenLine m_post;
    std::vector<double> m_energies; ///< all energies once, rising
    /// For each energy (even places) and each gap between two of them (odd places) the right one of
    /// the first two neighbours in the file that enclose it; 0 where there are none.
    std::vector<std::size_t> m_right;
};

#pragma once

#include "analysis/MapRun.h"

/// The energy over the height of a beam behind a double-crystal monochromator: a row's energy is
/// that of the image, plus evPerRow * (row - row0).
struct EnergyTilt {
    double evPerRow = 0.0; ///< eV
    double row0 = 0.0;     ///< the row, 0 for the first, whose energy is that of the image
};

/// A map whose rows have energies of their own: the references and the blank are taken at those
/// energies, row by row; the thickness ratio of the references is not a row's, and stays. Without a
/// tilt it is what mapResult() gives.
/// @param points   of the table, from which the rows' tables are made
/// @param sources  [points.size()], their images with one row for each of the grid's
/// @param sigmas   to be filled along with the results; null for none
MapRun tiltedMapResult(const AnalysisInput& input, const std::vector<ChosenPoint>& points,
                       const std::vector<MapSource>& sources, const EnergyTilt& tilt,
                       MapResults& results, const MapHistograms& histograms,
                       Workers& workers = Workers::shared(), MapSigmas* sigmas = nullptr);

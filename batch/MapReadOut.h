#pragma once

#include "results/MapGrid.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// Values of a map under the pointer, for the report: places, valences and t/ts of the cells of its
/// grid, or of one cell out of each block where there are many.
struct MapReadOut {
    int columns = 0;
    int rows = 0;
    int block = 1; ///< cells along the side of a block
    bool inPositionUnits = true;
    std::vector<double> xEdges;   ///< [columns + 1], rising
    std::vector<double> yEdges;   ///< [rows + 1], rising
    std::vector<float> valence;   ///< [columns * rows]; not-a-number where there is none
    std::vector<float> thickness; ///< [columns * rows]; empty where the method has none

    /// The read-out of blocks of blocks: of each the middle one, or one without value if there is
    /// one.
    /// @param factor  at least 1
    MapReadOut reduced(int factor) const;

    std::size_t bytes() const { return (valence.size() + thickness.size()) * sizeof(float); }
};

/// At most 256 x 256 values, so that a map of that size has all.
MapReadOut mapReadOut(const MapPixels& pixels, const MapGrid& grid, bool hasThickness);

/// As bytes, the same on every machine, to be kept in the record of a run.
QByteArray readOutBytes(const MapReadOut& readOut);
/// @return nothing for bytes that are no read-out
std::optional<MapReadOut> readOutFromBytes(const QByteArray& bytes);

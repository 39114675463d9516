#pragma once

#include "results/MapGrid.h"

#include <QRectF>

#include <cstddef>
#include <optional>
#include <vector>

/// Mean and standard deviation (n - 1) of a region's values.
struct RegionMean {
    std::size_t count = 0;
    std::optional<double> mean;
    std::optional<double> deviation; ///< there is none of a single value
};

/// Pixels with a result whose cells meet a rectangle in data units, each once, in rising order.
std::vector<std::size_t> pixelsIn(const MapPixels& pixels, const MapGrid& grid, const QRectF& area);

/// Pixels with a result whose valence and thickness ratio lie in a rectangle of "t/a".
std::vector<std::size_t> pixelsBetween(const MapPixels& pixels, const QRectF& valenceAndThickness);

RegionMean valenceOf(const MapPixels& pixels, const std::vector<std::size_t>& region);
/// Of those that have a thickness ratio.
RegionMean thicknessOf(const MapPixels& pixels, const std::vector<std::size_t>& region);

#pragma once

#include "analysis/MapSigma.h"
#include "analysis/Method.h"
#include "analysis/PointRow.h"
#include "system/PixelArray.h"
#include "system/Workers.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

/// Where a pixel was measured, in the units of the beamline's stages.
struct MapPosition {
    double first = 0.0;
    double second = 0.0;
};

using MapPositions = PixelArray<MapPosition>;

/// Maps of one scan have equal positions; they are kept once and never change.
using SharedPositions = std::shared_ptr<const MapPositions>;

/// Results of a map calculation, pixel (column x, row y) at index y * columns + x.
struct MapResults {
    int columns = 0;
    int rows = 0;
    PixelArray<double> a; ///< fraction of Ref 1
    PixelArray<double> t; ///< thickness ratio
    SharedPositions positions;

    std::size_t size() const { return a.size(); }
    /// Position of a pixel; (0, 0) outside the image that owns the grid.
    MapPosition position(std::size_t i) const
    {
        return positions && i < positions->size() ? (*positions)[i] : MapPosition{};
    }
};

/// The target's mu-t at one energy.
struct MapImage {
    const double* mut = nullptr; ///< [size]
    std::size_t size = 0;
    int columns = 0; ///< of this image, whatever the grid has
};

/// What a map calculation starts from.
struct MapTask {
    Method method = Method::ThreePoint;
    PointRows points;
    PointChoice choice;           ///< of all rows in use, with data or without
    std::vector<MapImage> images; ///< [points.size()]; empty images for rows without data
    int columns = 0;              ///< grid of the V point's image
    int rows = 0;
    SharedPositions positions;   ///< of the V point's image
    double rho = 0.0;            ///< thickness ratio of Ref 1 to Ref 2, for the four-point methods
    MapSigmas* sigmas = nullptr; ///< to be filled along with the results; null for none
};

/// Pixels that have just been calculated: a and t [count]. Called from all threads, for blocks in
/// any order; worker numbers the thread, from 0 to Workers::size() - 1.
using MapBlockSink =
    std::function<void(unsigned worker, const double* a, const double* t, std::size_t count)>;

/// True if the results of a grid fit in memory, where they may take the place of earlier ones. The
/// grid's size is only what a file says: it may not be out of all proportion to the pixels that
/// were measured, though a scan may have been stopped early.
/// @param measured  records of the image that owns the grid
bool mapFits(int columns, int rows, std::size_t measured, const MapResults& earlier);

/// Bytes that the results of a grid which fits take beside those of the earlier ones.
std::size_t mapBytes(int columns, int rows, const MapResults& earlier);

/// Fills the results with a and t of every pixel of the grid.
///
/// The target's value at a used row is the row's image at index y * (columns of that image) + x,
/// and -1 where the image has no such pixel. Map values keep the blank. The results are the same
/// for any number of threads, bit by bit.
/// @return false, and the results as they were, where the grid does not fit in memory; they also
/// are where memory for the calculation itself is refused, with an exception
bool calculatePixels(const MapTask& task, MapResults& results, const MapBlockSink& sink = {},
                     Workers& workers = Workers::shared());

#pragma once

#include "analysis/MapCalculation.h"

#include <QByteArray>
#include <vector>

/// What a piece of a 2D data file holds, in the order of the file.
struct MapChunk {
    PixelArray<double> mut;
    MapPositions positions;
    std::vector<QByteArray> header; ///< lines beginning with "#", without line end

    void clear()
    {
        mut.clear();
        positions.clear();
        header.clear();
    }
};

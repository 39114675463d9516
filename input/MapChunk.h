#pragma once

#include "analysis/MapCalculation.h"
#include "analysis/SpectrumNoise.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// What a piece of a 2D data file holds, in the order of the file.
struct MapChunk {
    PixelArray<double> mut;
    MapPositions positions;
    std::vector<QByteArray> header;     ///< lines beginning with "#", without line end
    std::optional<DetectorGains> gains; ///< where the variances are wanted
    PixelArray<float> variance;         ///< of mut; empty where they are not wanted
    bool hasReadings = false;           ///< some record has two intensities

    void clear()
    {
        mut.clear();
        positions.clear();
        header.clear();
        variance.clear();
        hasReadings = false;
    }
};

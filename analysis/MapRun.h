#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"

#include <optional>
#include <vector>

/// The histograms of a map and what is typed for them.
struct MapHistograms {
    HistogramCounts& valence;
    HistogramCounts& thickness;
    HistogramSettings valenceSettings;
    HistogramSettings thicknessSettings;
    ReferenceValences valences;
};

/// What a calculation would come to, found out without one.
/// @return MapTooLarge, TooManyBoxes, or nothing against it
std::optional<Refusal> checkMap(const MapTask& task, const MapResults& earlier,
                                const MapHistograms& histograms);

/// Calculates a map and counts the valence and the thickness ratio of every pixel in the
/// histograms, which take the settings. The counts are the same for any number of threads.
/// @return why not; then results and histograms are as they were
std::optional<Refusal> calculateMap(const MapTask& task, MapResults& results,
                                    const MapHistograms& histograms,
                                    Workers& workers = Workers::shared());

/// The 2D data of a row.
struct MapSource {
    bool valid = false;        ///< there are some, and the size of their grid is known
    MapImage image;            ///< mu-t of each pixel
    int columns = 0;           ///< of the grid
    int rows = 0;              ///< of the grid
    SharedPositions positions; ///< of each pixel
};

/// What a map's calculation came to.
struct MapRun {
    std::optional<ThicknessRatios> ratios; ///< formed by the four-point methods
    std::optional<RunRefusal> refusal;     ///< then results and histograms are as they were
    std::optional<Method> method;          ///< where nothing is refused
    std::size_t gridRow = 0;               ///< the V point's row, whose 2D data own the grid
};

/// The point methods for every pixel. The checks count rows with data; the calculation takes every
/// row in use, and pixels of those without data count as missing.
/// @param sources  [input.table.size()]
/// @param sigmas   to be filled along with the results; null for none
MapRun mapResult(const AnalysisInput& input, const std::vector<MapSource>& sources,
                 MapResults& results, const MapHistograms& histograms,
                 Workers& workers = Workers::shared(), MapSigmas* sigmas = nullptr);

#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/MapCalculation.h"

/// The histograms of a map and what is typed for them.
struct MapHistograms {
    HistogramCounts& valence;
    HistogramCounts& thickness;
    HistogramSettings valenceSettings;
    HistogramSettings thicknessSettings;
    double valence1 = 0.0; ///< of Ref 1
    double valence2 = 0.0; ///< of Ref 2
};

enum class MapOutcome {
    Calculated,
    GridTooLarge, ///< the results do not fit in memory, or hardly any pixel was measured
    TooManyBoxes, ///< a histogram's number of bins is refused, or its bins do not fit in memory
};

/// What a calculation would come to, found out without one.
MapOutcome checkMap(const MapTask& task, const MapResults& earlier,
                    const MapHistograms& histograms);

/// Calculates a map and counts the valence and the thickness ratio of every pixel in the
/// histograms, which take the settings. The counts are the same for any number of threads. Refusals
/// leave results and histograms as they were.
MapOutcome calculateMap(const MapTask& task, MapResults& results, const MapHistograms& histograms,
                        Workers& workers = Workers::shared());

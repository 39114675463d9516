#pragma once

#include "analysis/MapRun.h"

#include <cstddef>
#include <optional>
#include <vector>

/// Which pixels of a map have no result of their own: an image in use does not have them, as when a
/// scan was stopped early, or what was calculated is no finite number.
class MissingPixels
{
public:
    /// @param rows     the point table; only the images of its rows in use count
    /// @param sources  [rows.size()]; their pixels are not looked at
    /// @param results  must live as long
    MissingPixels(const PointRows& rows, const std::vector<MapSource>& sources,
                  const MapResults& results);

    bool operator()(std::size_t i) const;

private:
    struct ImageSize {
        std::size_t pixels;
        int columns;
    };
    bool isMeasured(std::size_t i) const;

    const MapResults& m_results;
    std::vector<ImageSize> m_sizes;
    std::size_t m_whole; ///< all images have the pixels before this one
};

/// Mean, median and standard deviation (the sum of squares over n - 1) of n values.
struct Spread {
    std::optional<double> mean; ///< there are none without values
    std::optional<double> median;
    std::optional<double> deviation; ///< there is none of a single value
};

/// What is to be said of a map in a line. Missing pixels are only counted.
struct MapSummary {
    std::size_t pixels = 0;
    std::size_t missing = 0;
    std::size_t below = 0; ///< valence below the lower edge of its histogram's first box
    std::size_t above = 0; ///< valence at the upper edge of the last box, or above
    Spread valence;
    Spread thickness; ///< t/ts
};

/// The same for any number of threads, bit by bit.
/// @param histogram  of the valence, reset with its settings
/// @return nothing where the memory is refused: one number a pixel
std::optional<MapSummary> summaryOf(const MapResults& results, const MissingPixels& missing,
                                    const ReferenceValences& valences,
                                    const HistogramCounts& histogram,
                                    Workers& workers = Workers::shared());

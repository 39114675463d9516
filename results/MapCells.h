#pragma once

#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "display/GraphFrame.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Results of a map as its pictures see them; the arrays belong to the map. Pixel (column x, row y)
/// is at y * columns + x.
struct MapPixels {
    int columns = 0;
    int rows = 0;
    const double* a = nullptr; ///< fraction of Ref 1 [columns * rows]
    const double* t = nullptr; ///< thickness ratio [columns * rows]; null where the method has none
    SharedPositions positions; ///< pixels beyond their number were not measured
    ReferenceValences valences;
    std::uint64_t revision = 0; ///< another number whenever the results are others

    std::size_t size() const
    {
        return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    }
    /// Whether a pixel was measured and has a finite valence; "missing" counts those that have not.
    bool hasResult(std::size_t i) const;
};

/// What a picture shows in colours.
enum class MapQuantity {
    Valence,
    Thickness,
    ValenceByThickness, ///< valence as colour, thickness as its strength
};

/// What the ends of the colours stand for.
struct MapRanges {
    AxisEnds valence{2.0, 3.0};
    AxisEnds thickness{0.0, 1.0};
};

#pragma once

#include "display/ColourMap.h"
#include "display/GraphFrame.h"
#include "results/MapGrid.h"

#include <cstdint>
#include <optional>
#include <vector>

class Workers;

/// What a picture shows in colours.
enum class MapQuantity {
    Valence,
    Thickness,
    ValenceByThickness, ///< valence as colour, thickness as its strength
};

/// What the ends of the colours stand for; values at the ends have a colour.
struct MapRanges {
    AxisEnds valence{2.0, 3.0};
    AxisEnds thickness{0.0, 1.0};
};

/// Pixels whose colour says less than their value.
struct MapCounts {
    std::size_t missing = 0; ///< not measured, or the value is no finite number
    std::size_t below = 0;   ///< the range of the colours
    std::size_t above = 0;
    std::size_t thinner = 0; ///< than the range of the strengths, shown as its end
    std::size_t thicker = 0;
    std::optional<std::size_t> meaningless; ///< the valence means nothing; where that is known
};

/// Colours of a picture, as codes of 16 bits: 256 colours of the map at 64 strengths, and codes of
/// their own for what is not in the range. Strength fades to white.
namespace MapColours
{
using Code = std::uint16_t;

constexpr int strengths = 64;
constexpr Code meaningless = 0xfffb;
constexpr Code below = 0xfffc;
constexpr Code above = 0xfffd;
constexpr Code nothing = 0xfffe; ///< no pixel lies there
constexpr Code missing = 0xffff; ///< above all others

/// A colour of the map at a strength from 0 to 63.
constexpr Code code(int colour, int strength)
{
    return static_cast<Code>(strength * 256 + colour);
}

/// Of all codes [65536]. Without result is a light grey, where colours fade a darker one.
const std::vector<QRgb>& table(MapQuantity quantity);
QRgb missingColour(MapQuantity quantity);
} // namespace MapColours

/// Place of a value in a range cut into equal steps: 0 at its lower end, steps - 1 at its upper end
/// and below it by less than a step. A range without width is one around its only value.
int stepOf(double value, const AxisEnds& range, int steps);

/// The codes of a map's cells, row by row from the lowest position, and what is counted in its
/// legend: pixels, each once, whether a cell shows them or not.
struct MapCells {
    int columns = 0;
    int rows = 0;
    std::vector<MapColours::Code> codes; ///< [columns * rows]
    MapCounts counts;
};

/// @param workers  share the pixels out; null for the calling thread alone. The cells are the same.
MapCells mapCells(const MapPixels& pixels, const MapGrid& grid, MapQuantity quantity,
                  const MapRanges& ranges, Workers* workers = nullptr);

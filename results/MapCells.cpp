#include "results/MapCells.h"

#include <algorithm>
#include <cmath>

namespace
{

using MapColours::Code;

// Neither in the colour map nor in its fadings: told apart from them, and from one another, by
// normal eyes and by those that lack a pigment.
constexpr QRgb belowColour = 0xff5ac8ff;       // light blue
constexpr QRgb aboveColour = 0xffff3b1f;       // red
constexpr QRgb meaninglessColour = 0xff660000; // dark red
constexpr QRgb paperColour = 0xffffffff;
constexpr QRgb lightGrey = 0xffc8c8c8;
constexpr QRgb darkGrey = 0xff7f7f7f;

int faded(int colour, int strength)
{
    constexpr int full = MapColours::strengths - 1;
    return 255 + ((colour - 255) * strength - full / 2) / full;
}

std::vector<QRgb> makeTable(MapQuantity quantity)
{
    std::vector<QRgb> colours(65536, paperColour);
    for (int strength = 0; strength < MapColours::strengths; ++strength)
        for (int i = 0; i < 256; ++i) {
            const QRgb full = viridis()[static_cast<std::size_t>(i)];
            colours[MapColours::code(i, strength)] =
                qRgb(faded(qRed(full), strength), faded(qGreen(full), strength),
                     faded(qBlue(full), strength));
        }
    colours[MapColours::meaningless] = meaninglessColour;
    colours[MapColours::below] = belowColour;
    colours[MapColours::above] = aboveColour;
    colours[MapColours::missing] = MapColours::missingColour(quantity);
    return colours;
}

/// A range with its ends in order.
AxisEnds ordered(const AxisEnds& range)
{
    return {std::min(range.from, range.to), std::max(range.from, range.to)};
}

/// Gives pixels their codes and counts them.
class Coder
{
public:
    Coder(const MapPixels& pixels, MapQuantity quantity, const MapRanges& ranges)
        : m_pixels(pixels), m_quantity(quantity),
          m_colours(
              ordered(quantity == MapQuantity::Thickness ? ranges.thickness : ranges.valence)),
          m_strengths(ordered(ranges.thickness))
    {
        if (pixels.meaningless != nullptr)
            counts.meaningless = 0;
    }

    Code operator()(std::size_t i)
    {
        const double t = m_pixels.t[i];
        const double value = m_quantity == MapQuantity::Thickness ? t : m_pixels.valence(i);
        const bool fades = m_quantity == MapQuantity::ValenceByThickness;
        if (counts.meaningless && m_pixels.isMeasured(i) && m_pixels.meaningless[i])
            return counted(MapColours::meaningless, *counts.meaningless);
        if (!m_pixels.isMeasured(i) || !std::isfinite(value) || (fades && !std::isfinite(t)))
            return counted(MapColours::missing, counts.missing);
        if (value < m_colours.from)
            return counted(MapColours::below, counts.below);
        if (value > m_colours.to)
            return counted(MapColours::above, counts.above);
        const int colour = stepOf(value, m_colours, 256);
        return MapColours::code(colour, fades ? strength(t) : MapColours::strengths - 1);
    }

    MapCounts counts;

private:
    static Code counted(Code code, std::size_t& count)
    {
        ++count;
        return code;
    }

    int strength(double t)
    {
        counts.thinner += t < m_strengths.from ? 1 : 0;
        counts.thicker += t > m_strengths.to ? 1 : 0;
        return stepOf(t, m_strengths, MapColours::strengths);
    }

    const MapPixels& m_pixels;
    MapQuantity m_quantity;
    AxisEnds m_colours;
    AxisEnds m_strengths;
};

} // namespace

const std::vector<QRgb>& MapColours::table(MapQuantity quantity)
{
    static const std::vector<QRgb> plain = makeTable(MapQuantity::Valence);
    static const std::vector<QRgb> fading = makeTable(MapQuantity::ValenceByThickness);
    return quantity == MapQuantity::ValenceByThickness ? fading : plain;
}

QRgb MapColours::missingColour(MapQuantity quantity)
{
    return quantity == MapQuantity::ValenceByThickness ? darkGrey : lightGrey;
}

int stepOf(double value, const AxisEnds& range, int steps)
{
    const double length = range.to - range.from;
    if (!(length > 0.0))
        return steps / 2;
    const double place = (value - range.from) / length * steps;
    return static_cast<int>(std::clamp(place, 0.0, steps - 1.0));
}

MapCells mapCells(const MapPixels& pixels, const MapGrid& grid, MapQuantity quantity,
                  const MapRanges& ranges)
{
    MapCells cells;
    cells.columns = grid.columns();
    cells.rows = grid.rows();
    Coder code(pixels, quantity, ranges);
    std::vector<Code> ofPixels(pixels.size());
    for (std::size_t i = 0; i < ofPixels.size(); ++i)
        ofPixels[i] = code(i);
    cells.counts = code.counts;
    cells.codes.reserve(static_cast<std::size_t>(cells.columns) *
                        static_cast<std::size_t>(cells.rows));
    for (int row = 0; row < cells.rows; ++row)
        for (int column = 0; column < cells.columns; ++column) {
            const std::ptrdiff_t pixel = grid.pixel(column, row);
            cells.codes.push_back(pixel == MapGrid::none
                                      ? MapColours::nothing
                                      : ofPixels[static_cast<std::size_t>(pixel)]);
        }
    return cells;
}

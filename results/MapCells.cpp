#include "results/MapCells.h"

#include "system/Workers.h"

#include <algorithm>
#include <cmath>
#include <functional>

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

constexpr std::size_t blockSize = std::size_t{1} << 14;

/// Calls `work` for every block of so many of [0, count), on the workers' threads if there are any.
void inBlocks(std::size_t count, std::size_t size, Workers* workers,
              const std::function<void(std::size_t begin, std::size_t end)>& work)
{
    const std::size_t blocks = (count + size - 1) / size;
    const auto block = [&](std::size_t number) {
        const std::size_t begin = number * size;
        work(begin, std::min(begin + size, count));
    };
    if (workers != nullptr)
        return workers->run(blocks, [&](std::size_t number, unsigned) { block(number); });
    for (std::size_t number = 0; number < blocks; ++number)
        block(number);
}

void add(const MapCounts& part, MapCounts& sum)
{
    sum.missing += part.missing;
    sum.below += part.below;
    sum.above += part.above;
    sum.thinner += part.thinner;
    sum.thicker += part.thicker;
}

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
                  const MapRanges& ranges, Workers* workers)
{
    MapCells cells;
    cells.columns = grid.columns();
    cells.rows = grid.rows();
    std::vector<Code> ofPixels(pixels.size());
    std::vector<MapCounts> counts((ofPixels.size() + blockSize - 1) / blockSize);
    inBlocks(ofPixels.size(), blockSize, workers, [&](std::size_t begin, std::size_t end) {
        Coder code(pixels, quantity, ranges);
        for (std::size_t i = begin; i < end; ++i)
            ofPixels[i] = code(i);
        counts[begin / blockSize] = code.counts;
    });
    for (const MapCounts& part : counts)
        add(part, cells.counts);
    const auto columns = static_cast<std::size_t>(cells.columns);
    const auto rows = static_cast<std::size_t>(cells.rows);
    cells.codes.resize(columns * rows);
    const std::size_t rowsAtOnce = 1 + blockSize / std::max<std::size_t>(columns, 1);
    inBlocks(rows, rowsAtOnce, workers, [&](std::size_t begin, std::size_t end) {
        std::size_t cell = begin * columns;
        for (std::size_t row = begin; row < end; ++row)
            for (int column = 0; column < cells.columns; ++column) {
                const std::ptrdiff_t pixel = grid.pixel(column, static_cast<int>(row));
                cells.codes[cell++] = pixel == MapGrid::none
                                          ? MapColours::nothing
                                          : ofPixels[static_cast<std::size_t>(pixel)];
            }
    });
    return cells;
}

#include "batch/MapReadOut.h"

#include "analysis/Constants.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <cmath>

namespace
{

constexpr quint32 mark = 0x64725231; // "drR1"
constexpr int longestSide = 256;

int blocks(int cells, int factor)
{
    return cells / factor + (cells % factor != 0 ? 1 : 0);
}

std::vector<double> blockEdges(const std::vector<double>& edges, int factor)
{
    std::vector<double> found;
    for (std::size_t i = 0; i + 1 < edges.size(); i += static_cast<std::size_t>(factor))
        found.push_back(edges[i]);
    found.push_back(edges.back());
    return found;
}

/// Of each block of values the middle one, or one that is not a number.
/// @param value  of a column and row
template <class Value>
std::vector<float> blockValues(int columns, int rows, int factor, const Value& value)
{
    std::vector<float> found;
    for (int y = 0; y < rows; y += factor)
        for (int x = 0; x < columns; x += factor) {
            const int xEnd = std::min(columns, x + factor);
            const int yEnd = std::min(rows, y + factor);
            float shown = value(x + (xEnd - x) / 2, y + (yEnd - y) / 2);
            for (int v = y; v < yEnd; ++v)
                for (int u = x; u < xEnd; ++u)
                    shown = std::isnan(value(u, v)) ? value(u, v) : shown;
            found.push_back(shown);
        }
    return found;
}

template <class Number>
void writeAll(QDataStream& stream, const std::vector<Number>& numbers)
{
    for (const Number number : numbers)
        stream << number;
}

template <class Number>
void readAll(QDataStream& stream, std::vector<Number>& numbers, std::size_t count)
{
    numbers.resize(count);
    for (Number& number : numbers)
        stream >> number;
}

} // namespace

MapReadOut MapReadOut::reduced(int factor) const
{
    MapReadOut less;
    less.columns = blocks(columns, factor);
    less.rows = blocks(rows, factor);
    less.block = block * factor;
    less.inPositionUnits = inPositionUnits;
    less.xEdges = blockEdges(xEdges, factor);
    less.yEdges = blockEdges(yEdges, factor);
    const auto of = [this](const std::vector<float>& values) {
        return [this, &values](int x, int y) {
            return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) +
                          static_cast<std::size_t>(x)];
        };
    };
    less.valence = blockValues(columns, rows, factor, of(valence));
    if (!thickness.empty())
        less.thickness = blockValues(columns, rows, factor, of(thickness));
    return less;
}

MapReadOut mapReadOut(const MapPixels& pixels, const MapGrid& grid, bool hasThickness)
{
    MapReadOut all;
    const int longest = std::max(grid.columns(), grid.rows());
    if (longest == 0)
        return all;
    all.block = blocks(longest, longestSide);
    all.columns = blocks(grid.columns(), all.block);
    all.rows = blocks(grid.rows(), all.block);
    all.inPositionUnits = grid.inPositionUnits;
    all.xEdges = blockEdges(grid.xEdges, all.block);
    all.yEdges = blockEdges(grid.yEdges, all.block);
    const auto of = [&](auto quantity) {
        return [&pixels, &grid, quantity](int x, int y) {
            const std::ptrdiff_t pixel = grid.pixel(x, y);
            if (pixel == MapGrid::none || !pixels.isMeasured(static_cast<std::size_t>(pixel)))
                return static_cast<float>(notANumber);
            return static_cast<float>(quantity(static_cast<std::size_t>(pixel)));
        };
    };
    all.valence = blockValues(grid.columns(), grid.rows(), all.block,
                              of([&](std::size_t i) { return pixels.valence(i); }));
    if (hasThickness)
        all.thickness = blockValues(grid.columns(), grid.rows(), all.block,
                                    of([&](std::size_t i) { return pixels.t[i]; }));
    return all;
}

QByteArray readOutBytes(const MapReadOut& readOut)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << mark << qint32(readOut.columns) << qint32(readOut.rows) << qint32(readOut.block)
           << readOut.inPositionUnits << !readOut.thickness.empty();
    writeAll(stream, readOut.xEdges);
    writeAll(stream, readOut.yEdges);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    writeAll(stream, readOut.valence);
    writeAll(stream, readOut.thickness);
    return bytes;
}

std::optional<MapReadOut> readOutFromBytes(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    quint32 begin = 0;
    qint32 columns = 0;
    qint32 rows = 0;
    qint32 block = 0;
    bool positions = false;
    bool thickness = false;
    stream >> begin >> columns >> rows >> block >> positions >> thickness;
    const bool possible = begin == mark && columns > 0 && rows > 0 && block > 0 &&
                          columns <= longestSide && rows <= longestSide;
    if (stream.status() != QDataStream::Ok || !possible)
        return std::nullopt;
    MapReadOut readOut;
    readOut.columns = columns;
    readOut.rows = rows;
    readOut.block = block;
    readOut.inPositionUnits = positions;
    readAll(stream, readOut.xEdges, static_cast<std::size_t>(columns) + 1);
    readAll(stream, readOut.yEdges, static_cast<std::size_t>(rows) + 1);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    const std::size_t cells = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    readAll(stream, readOut.valence, cells);
    readAll(stream, readOut.thickness, thickness ? cells : 0);
    if (stream.status() != QDataStream::Ok || !stream.atEnd())
        return std::nullopt;
    return readOut;
}

#pragma once

#include "analysis/MapSummary.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Results of a map as its pictures see them; the arrays belong to the map. Pixel (column x, row y)
/// is at y * columns + x.
struct MapPixels {
    int columns = 0;
    int rows = 0;
    const double* a = nullptr; ///< fraction of Ref 1 [columns * rows]
    const double* t = nullptr; ///< thickness ratio [columns * rows]
    SharedPositions positions; ///< pixels beyond their number were not measured
    ReferenceValences valences;
    /// Which pixels have no result, where more is known than by the positions and the numbers.
    const MissingPixels* missing = nullptr;
    /// Which pixels have a valence that means nothing [columns * rows]; null where nobody knows.
    const bool* meaningless = nullptr;

    std::size_t size() const
    {
        return a == nullptr ? 0
                            : static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    }
    bool isMeasured(std::size_t i) const
    {
        return positions && i < positions->size() && (missing == nullptr || !(*missing)(i));
    }
    double valence(std::size_t i) const { return valences.mean(a[i]); }
};

/// Where the pixels of a map lie: cells between rising edges, in position units, from the lowest
/// position up.
///
/// Where the positions of a column, and those of a row, lie within half a step of their mean, a
/// cell is a pixel, its edges half-way between neighbours. Other positions (a stage that went
/// astray, a turned grid) are laid on a finer grid, each of whose cells belongs to the nearest
/// pixel that is no more than three quarters of a step off, or to none. Positions that say nothing,
/// since they are all the same or no numbers, give columns and rows counted from 1.
class MapGrid
{
public:
    explicit MapGrid(const MapPixels& pixels);

    static constexpr std::int32_t none = -1;

    int columns() const { return static_cast<int>(xEdges.size()) - 1; }
    int rows() const { return static_cast<int>(yEdges.size()) - 1; }
    /// The pixel of a cell, or none.
    std::ptrdiff_t pixel(int column, int row) const
    {
        if (!m_nearest.empty())
            return m_nearest[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns()) +
                             static_cast<std::size_t>(column)];
        const int x = m_xFalls ? columns() - 1 - column : column;
        const int y = m_yFalls ? rows() - 1 - row : row;
        return static_cast<std::ptrdiff_t>(y) * columns() + x;
    }
    /// The pixel at a place, or none.
    std::ptrdiff_t pixelAt(double x, double y) const;

    bool isRegular() const { return m_nearest.empty(); } ///< a cell is a pixel

    std::vector<double> xEdges; ///< [columns + 1]
    std::vector<double> yEdges; ///< [rows + 1]
    bool inPositionUnits = true;
    std::size_t hidden = 0; ///< pixels to which no cell belongs, as others cover them

private:
    bool layRegular(const MapPixels& pixels);
    void layScattered(const MapPixels& pixels);
    void layCounted(const MapPixels& pixels);

    bool m_xFalls = false;
    bool m_yFalls = false;
    std::vector<std::int32_t> m_nearest; ///< pixel of each cell; empty where a cell is a pixel
};

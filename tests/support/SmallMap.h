#pragma once

#include "results/MapGrid.h"

#include <QPointF>

#include <functional>
#include <memory>
#include <vector>

/// A map whose pixels are given one by one. Valences are those of the references 2 and 3, so that
/// the fraction of a pixel is 3 less its valence.
class SmallMap
{
public:
    /// @param place  of the pixel in a column and row, position units
    SmallMap(
        int columns, int rows,
        const std::function<QPointF(int, int)>& place = [](int x, int y) { return QPointF(x, y); })
        : m_columns(columns), m_rows(rows),
          m_fractions(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)),
          m_thicknesses(m_fractions.size(), 1.0), m_positions(std::make_shared<MapPositions>())
    {
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < columns; ++x) {
                const MapPosition position{place(x, y).x(), place(x, y).y()};
                m_positions->append(&position, 1);
            }
    }

    void set(int x, int y, double valence, double thickness = 1.0)
    {
        const std::size_t i = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_columns) +
                              static_cast<std::size_t>(x);
        m_fractions[i] = 3.0 - valence;
        m_thicknesses[i] = thickness;
    }

    /// The scan ended after so many pixels.
    void stopAfter(std::size_t pixels)
    {
        auto measured = std::make_shared<MapPositions>();
        measured->append(m_positions->begin(), pixels);
        m_positions = measured;
    }

    MapPixels pixels() const
    {
        return {m_columns,  m_rows, m_fractions.data(), m_thicknesses.data(), m_positions,
                {2.0, 3.0}, nullptr};
    }

private:
    int m_columns;
    int m_rows;
    std::vector<double> m_fractions;
    std::vector<double> m_thicknesses;
    std::shared_ptr<MapPositions> m_positions;
};

#include "results/MapView.h"

#include "display/Pixel.h"

#include <algorithm>
#include <cmath>

namespace
{

using MapColours::Code;

/// The cells of a dot along one axis.
struct DotCells {
    int shown = -1; ///< -1 beside the map
    int first = 0;  ///< of those whose middle lies in the dot
    int end = 0;
};

/// The cells of each dot along one axis.
/// @param place  data units at a dot's lower end [dots + 1], rising
std::vector<DotCells> dotCells(const std::vector<double>& edges, const std::vector<double>& place)
{
    const int cells = static_cast<int>(edges.size()) - 1;
    const auto middle = [&edges](int i) {
        const auto k = static_cast<std::size_t>(i);
        return edges[k] + (edges[k + 1] - edges[k]) / 2.0;
    };
    std::vector<DotCells> found(place.size() - 1);
    int next = 0;  // cell whose middle is not yet passed
    int under = 0; // cell that a dot's centre lies in
    while (next < cells && middle(next) < place.front())
        ++next;
    for (std::size_t i = 0; i < found.size(); ++i) {
        DotCells& dot = found[i];
        dot.first = next;
        while (next < cells && middle(next) < place[i + 1])
            ++next;
        dot.end = next;
        const double centre = place[i] + (place[i + 1] - place[i]) / 2.0;
        while (under < cells && edges[static_cast<std::size_t>(under) + 1] <= centre)
            ++under;
        if (dot.end > dot.first)
            dot.shown = dot.first + (dot.end - dot.first) / 2;
        else if (under < cells && edges.front() <= centre)
            dot.shown = under;
    }
    return found;
}

int most(const std::vector<DotCells>& dots)
{
    int found = 1;
    for (const DotCells& dot : dots)
        found = std::max(found, dot.end - dot.first);
    return found;
}

/// The largest code of each column over some rows; that of a missing cell is above all others.
void largestOfRows(const MapCells& cells, const DotCells& rows, std::vector<Code>& largest)
{
    std::fill(largest.begin(), largest.end(), Code{0});
    const auto columns = static_cast<std::size_t>(cells.columns);
    Code* to = largest.data();
    for (int row = rows.first; row < rows.end; ++row) {
        const Code* from = cells.codes.data() + static_cast<std::size_t>(row) * columns;
        for (std::size_t i = 0; i < columns; ++i)
            to[i] = std::max(to[i], from[i]);
    }
}

class Painter
{
public:
    Painter(const MapCells& cells, std::vector<DotCells> columns, const std::vector<QRgb>& colours)
        : m_cells(cells), m_columns(std::move(columns)), m_colours(colours),
          m_largest(static_cast<std::size_t>(cells.columns)), m_severalColumns(most(m_columns) > 1)
    {
    }

    /// Fills a line of the image.
    void line(const DotCells& rows, QRgb* dots)
    {
        if (rows.shown < 0)
            return;
        const Code* own = m_cells.codes.data() + static_cast<std::size_t>(rows.shown) *
                                                     static_cast<std::size_t>(m_cells.columns);
        for (std::size_t i = 0; i < m_columns.size(); ++i)
            if (m_columns[i].shown >= 0)
                dots[i] = m_colours[own[m_columns[i].shown]];
        const bool several = m_severalColumns || rows.end - rows.first > 1;
        if (several && m_cells.counts.missing > 0)
            showMissing(rows, dots);
    }

private:
    void showMissing(const DotCells& rows, QRgb* dots)
    {
        largestOfRows(m_cells, rows, m_largest);
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const auto first = m_largest.begin() + m_columns[i].first;
            const auto end = m_largest.begin() + m_columns[i].end;
            if (std::find(first, end, MapColours::missing) != end)
                dots[i] = m_colours[MapColours::missing];
        }
    }

    const MapCells& m_cells;
    std::vector<DotCells> m_columns;
    const std::vector<QRgb>& m_colours;
    std::vector<Code> m_largest;
    bool m_severalColumns;
};

/// Data units at the ends of so many pixels.
template <class ToData>
std::vector<double> places(int count, const ToData& toData)
{
    std::vector<double> found;
    for (int i = 0; i <= count; ++i)
        found.push_back(toData(i));
    return found;
}

} // namespace

MapView mapView(const ChCoord& coord, const MapGrid& grid, const MapCells& cells,
                MapQuantity quantity)
{
    MapView view;
    const int width = truncToInt(coord.px1 - coord.px0);
    const int height = truncToInt(coord.py0 - coord.py1);
    if (width <= 0 || height <= 0 || cells.codes.empty())
        return view;
    view.image = QImage(width, height, QImage::Format_RGB32);
    if (view.image.isNull())
        return view;
    view.image.fill(Qt::white);
    std::vector<DotCells> columns =
        dotCells(grid.xEdges, places(width, [&](int i) { return coord.screenToX(coord.px0 + i); }));
    const std::vector<DotCells> rows = dotCells(
        grid.yEdges, places(height, [&](int i) { return coord.screenToY(coord.py0 - i); }));
    view.columnsInDot = most(columns);
    view.rowsInDot = most(rows);
    Painter painter(cells, std::move(columns), MapColours::table(quantity));
    for (int i = 0; i < height; ++i)
        painter.line(rows[static_cast<std::size_t>(i)],
                     reinterpret_cast<QRgb*>(view.image.scanLine(height - 1 - i)));
    return view;
}

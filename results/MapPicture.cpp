#include "results/MapPicture.h"

#include "display/FramePainter.h"
#include "display/Pixel.h"
#include "results/MapAxes.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace
{

/// Around a map no more than 512 pixels long its pixels are squares that fill about so much; up to
/// twice as many are shown one by one, and more are reduced to no more than that.
constexpr int usualLength = 512;
constexpr int longest = 1024;

/// A line of pixels would not be seen at a true scale.
constexpr int thinnest = 24;

/// Texts of the legend and the bar's title need so much.
constexpr int narrowestCanvas = 460;
constexpr int lowestPlot = 120; // room for the marks of the colour bar

constexpr int partGap = 8;

double length(const std::vector<double>& edges)
{
    return edges.back() - edges.front();
}

/// Units in a pixel of each axis at which a map fits into a plot area.
struct UnitsInPixel {
    double x;
    double y;
};

UnitsInPixel fitting(const MapGrid& grid, QSizeF plot)
{
    const double units =
        std::max(length(grid.xEdges) / plot.width(), length(grid.yEdges) / plot.height());
    const auto thick = [units](double extent, double room) {
        return extent / std::min<double>(thinnest, room) < units
                   ? extent / std::min<double>(thinnest, room)
                   : units;
    };
    return {thick(length(grid.xEdges), plot.width()), thick(length(grid.yEdges), plot.height())};
}

/// Pixels of a picture for so many cells.
int pixelsFor(int cells)
{
    if (cells == 1)
        return usualLength / 2;
    if (cells <= usualLength)
        return usualLength / cells * cells;
    return cells <= longest ? cells : cells / ((cells + longest - 1) / longest);
}

} // namespace

bool MapPicture::ViewKey::operator==(const ViewKey& other) const
{
    return std::tie(rx0, rx1, ry0, ry1, plot) ==
           std::tie(other.rx0, other.rx1, other.ry0, other.ry1, other.plot);
}

void MapPicture::setMap(const MapPixels& pixels, std::shared_ptr<const MapGrid> grid,
                        MapQuantity quantity, const MapRanges& ranges, Workers* workers)
{
    m_pixels = pixels;
    m_grid = std::move(grid);
    m_quantity = quantity;
    m_ranges = ranges;
    m_cells = mapCells(m_pixels, *m_grid, m_quantity, m_ranges, workers);
    m_key.reset();
    m_view = MapView();
}

MapPicture::Margins MapPicture::margins(const QFont& font, const MapCaptions& captions,
                                        int canvasWidth, const AxisEnds& yRange) const
{
    const QFontMetrics metrics(font);
    const int line = metrics.lineSpacing();
    const int legend =
        legendHeight(font, entries(captions, false), canvasWidth - 2 * partGap) + line;
    const QString& barTitle =
        m_quantity == MapQuantity::Thickness ? captions.thickness : captions.valence;
    const int bar = std::max(colourBarWidth(font, m_quantity, m_ranges, usualLength),
                             metrics.horizontalAdvance(barTitle));
    return {mapAxisWidth(font, yRange.from, yRange.to, usualLength) + partGap / 2,
            bar + 3 * partGap, (captions.title.isEmpty() ? 1 : 2) * line + partGap,
            mapAxisHeight(font) + partGap + legend};
}

QVector<LegendEntry> MapPicture::entries(const MapCaptions& captions, bool withView) const
{
    if (!withView)
        return countEntries(captions, m_cells.counts, m_quantity, m_ranges);
    QVector<LegendEntry> notes;
    if (m_view.columnsInDot > 1 || m_view.rowsInDot > 1)
        notes.append({captions.reduced.arg(m_view.columnsInDot).arg(m_view.rowsInDot)});
    if (m_stretch != 1.0 && m_grid->inPositionUnits)
        notes.append({captions.stretched});
    if (m_grid->hidden > 0)
        notes.append({captions.hidden.arg(m_grid->hidden)});
    return notes;
}

// The range of the second axis keeps the scale: after a change of the canvas's width and back the
// range is what it was.
void MapPicture::placeRange(GraphFrame& frame)
{
    ChCoord& coord = frame.coord;
    const QSizeF plot(coord.px1 - coord.px0, coord.py0 - coord.py1);
    const UnitsInPixel units = fitting(*m_grid, plot);
    m_stretch = units.x / units.y;
    const double x = (m_grid->xEdges.front() + m_grid->xEdges.back()) / 2.0;
    const double y = (m_grid->yEdges.front() + m_grid->yEdges.back()) / 2.0;
    const double halfX = units.x * plot.width() / 2.0;
    const double halfY = units.y * plot.height() / 2.0;
    if (!frame.rangeSet)
        return frame.setRangeOnce(x - halfX, y - halfY, x + halfX, y + halfY);
    const double middle = (coord.rx0 + coord.rx1) / 2.0;
    const double half = (coord.ry1 - coord.ry0) / plot.height() * m_stretch * plot.width() / 2.0;
    coord.setXRange(middle - half, middle + half);
}

void MapPicture::formView(const ChCoord& coord)
{
    const QRect plot(QPoint(truncToInt(coord.px0), truncToInt(coord.py1)),
                     QPoint(truncToInt(coord.px1), truncToInt(coord.py0)));
    const ViewKey key{coord.rx0, coord.rx1, coord.ry0, coord.ry1, plot};
    if (m_key && *m_key == key)
        return;
    m_view = mapView(coord, *m_grid, m_cells, m_quantity);
    m_key = key;
}

void MapPicture::draw(QPainter& painter, GraphFrame& frame, const MapCaptions& captions)
{
    ChCoord& coord = frame.coord;
    if (!beginGraph(painter, frame, !m_cells.codes.empty()))
        return;
    const QSize canvas = coord.canvasSize();
    const QFont font = painter.font();
    const AxisEnds yRange = frame.rangeSet
                                ? AxisEnds{coord.ry0, coord.ry1}
                                : AxisEnds{m_grid->yEdges.front(), m_grid->yEdges.back()};
    const Margins room = margins(font, captions, canvas.width(), yRange);
    coord.setPlotArea(room.left, std::max(room.top + 1, canvas.height() - room.bottom),
                      std::max(room.left + 1, canvas.width() - room.right), room.top);
    placeRange(frame);
    formView(coord);
    painter.drawImage(QPointF(coord.px0, coord.py1), m_view.image);
    const bool positions = m_grid->inPositionUnits;
    drawMapAxes(painter, coord, positions ? captions.first : captions.column,
                positions ? captions.second : captions.row);
    if (positions)
        drawScaleBar(painter, coord);
    const int line = painter.fontMetrics().lineSpacing();
    const int plotHeight = truncToInt(coord.py0 - coord.py1);
    drawColourBar(painter,
                  QRect(truncToInt(coord.px1) + 2 * partGap, truncToInt(coord.py1),
                        room.right - 2 * partGap, plotHeight),
                  m_quantity, m_ranges, captions);
    painter.drawText(partGap, partGap / 2 + painter.fontMetrics().ascent(), captions.title);
    const int legendTop = truncToInt(coord.py0) + mapAxisHeight(font) + partGap / 2;
    const QRect legend(partGap, legendTop, canvas.width() - 2 * partGap, room.bottom);
    drawLegend(painter, legend, entries(captions, false));
    drawLegend(painter, QRect(partGap, canvas.height() - line - partGap / 2, legend.width(), line),
               entries(captions, true));
}

QSize MapPicture::goodSize(const QFont& font, const MapCaptions& captions) const
{
    if (m_cells.codes.empty())
        return {narrowestCanvas, narrowestCanvas / 2};
    const double width = length(m_grid->xEdges);
    const double height = length(m_grid->yEdges);
    const bool wide = width >= height;
    const int along = pixelsFor(wide ? m_grid->columns() : m_grid->rows());
    const double across = wide ? height / width : width / height;
    const int other = std::max(thinnest, qRound(along * across));
    QSize plot = wide ? QSize(along, other) : QSize(other, along);
    const AxisEnds yRange{m_grid->yEdges.front(), m_grid->yEdges.back()};
    const Margins sides = margins(font, captions, narrowestCanvas, yRange);
    const int canvas = std::max(narrowestCanvas, plot.width() + sides.left + sides.right);
    const Margins room = margins(font, captions, canvas, yRange);
    return {canvas, std::max(lowestPlot, plot.height()) + room.top + room.bottom};
}

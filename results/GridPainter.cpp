#include "results/GridPainter.h"

#include "display/PlotLines.h"

#include <QColor>
#include <QPen>

namespace
{
const QColor gridColor(200, 200, 255);
} // namespace

void drawGridColumns(QPainter& painter, const ChCoord& coord, const std::vector<int>& columns)
{
    const int height = coord.canvasSize().height();
    PlotLines lines(coord);
    for (const int column : columns)
        lines.addPixels(QLine(column, 0, column, height));
    lines.draw(painter, gridColor);
}

void drawGridRows(QPainter& painter, const ChCoord& coord, const std::vector<int>& rows)
{
    const int width = coord.canvasSize().width();
    PlotLines lines(coord);
    for (const int row : rows)
        lines.addPixels(QLine(0, row, width, row));
    lines.draw(painter, gridColor);
}

void drawGridAtX(QPainter& painter, const ChCoord& coord, const std::vector<double>& values)
{
    PlotLines lines(coord);
    for (const double x : values)
        lines.addVertical(x);
    lines.draw(painter, gridColor);
}

void drawGridAtY(QPainter& painter, const ChCoord& coord, const std::vector<double>& values)
{
    PlotLines lines(coord);
    for (const double y : values)
        lines.addHorizontal(y);
    lines.draw(painter, gridColor);
}

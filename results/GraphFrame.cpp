#include "results/GraphFrame.h"

#include "display/DispABase.h"
#include "display/Pixel.h"
#include "display/PlotLines.h"

#include <cmath>

namespace
{
const QColor gridColor(200, 200, 255);
} // namespace

bool beginGraph(DispABase* panel, QPainter* painter, const AxisTitles& titles, bool hasData)
{
    ChCoord& coord = panel->DispA->coord;
    coord.applyMargins();
    panel->setXYTitle(titles.x, titles.y);
    painter->fillRect(0, 0, truncToInt(std::fabs(coord.wx1 - coord.wx0)),
                      truncToInt(std::fabs(coord.wy1 - coord.wy0)), Qt::white);
    if (!hasData)
        coord.valid = 0;
    return hasData;
}

void drawGridColumns(const ChCoord& coord, QPainter* painter, const std::vector<int>& columns)
{
    const int height = truncToInt(std::fabs(coord.wy1 - coord.wy0));
    PlotLines lines(coord);
    for (const int column : columns)
        lines.addPixels(QLine(column, 0, column, height));
    lines.draw(painter, gridColor);
}

void drawGridRows(const ChCoord& coord, QPainter* painter, const std::vector<int>& rows)
{
    const int width = truncToInt(std::fabs(coord.wx1 - coord.wx0));
    PlotLines lines(coord);
    for (const int row : rows)
        lines.addPixels(QLine(0, row, width, row));
    lines.draw(painter, gridColor);
}

void drawGridAtX(const ChCoord& coord, QPainter* painter, const std::vector<double>& values)
{
    PlotLines lines(coord);
    for (const double x : values)
        lines.addVertical(x);
    lines.draw(painter, gridColor);
}

void drawGridAtY(const ChCoord& coord, QPainter* painter, const std::vector<double>& values)
{
    PlotLines lines(coord);
    for (const double y : values)
        lines.addHorizontal(y);
    lines.draw(painter, gridColor);
}

#pragma once

#include "display/ChCoord.h"

#include <QLine>
#include <QRect>
#include <QSize>
#include <QVector>

#include <optional>

class QPainter;
class QPen;

/// The part of a line that can matter inside a rectangle: the line itself if it is of ordinary
/// length, else shortened to the rectangle; nothing where it passes by on one side.
std::optional<QLine> reachingLine(const QLine& line, const QRect& rect);

/// Lines of one pen on a graph, given in data units and drawn on whole pixels.
///
/// The picture is that of one line drawn after another. What cannot be seen is left out: lines
/// beside the canvas, lines with an end that is not a number, and vertical pieces that cover one
/// another, so that a spectrum of any length costs about a line for each column of pixels.
class PlotLines
{
public:
    /// @param penWidth  pixels by which lines beside the canvas may still show
    explicit PlotLines(const ChCoord& coord, int penWidth = 1);

    /// A line between two data points.
    void add(double x1, double y1, double x2, double y2);
    /// A line between two positions in pixels.
    void addPixels(const QLine& line);
    /// A line over the whole height of the canvas at a data value.
    void addVertical(double x);
    /// A line over its whole width.
    void addHorizontal(double y);

    const QVector<QLine>& lines() const { return m_lines; }
    void draw(QPainter& painter, const QPen& pen) const;

private:
    bool extendsLast(const QLine& line);

    const ChCoord& m_coord;
    QSize m_canvas;
    QRect m_reach; ///< the canvas and what a pen's width adds
    QVector<QLine> m_lines;
};

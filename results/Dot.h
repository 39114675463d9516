#pragma once

#include <QPoint>

class ChCoord;
class QColor;
class QPainter;

/// Pixel of a data point; far off the canvas where a coordinate is not a number.
QPoint dotPixel(const ChCoord& coord, double x, double y);

/// A dot in the painter's pen: the outline of an ellipse two pixels wide at the pixel.
void drawDot(QPainter& painter, QPoint pixel);

/// The outline of an ellipse four pixels wide around the pixel.
void drawRing(QPainter& painter, QPoint pixel);

/// A disc of the given colour, seven pixels wide, around the pixel.
void drawDisc(QPainter& painter, QPoint pixel, const QColor& color);

/// Pixels by which a dot reaches beyond its own; more than it does.
constexpr int dotReach = 2;

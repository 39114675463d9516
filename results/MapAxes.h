#pragma once

#include "display/ChCoord.h"

#include <QString>

class QFont;
class QFontMetrics;
class QPainter;

/// What the axes around a map need at the left and under the plot area, pixels.
int mapAxisWidth(const QFont& font, double from, double to, int height);
int mapAxisHeight(const QFont& font);

/// A border around the plot area, marks with numbers and the titles of both axes.
void drawMapAxes(QPainter& painter, const ChCoord& coord, const QString& xTitle,
                 const QString& yTitle);

/// A bar of a round length over the right end of the plot area, its length beside it.
void drawScaleBar(QPainter& painter, const ChCoord& coord);

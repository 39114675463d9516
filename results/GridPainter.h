#pragma once

#include "results/GridLines.h"

class QPainter;

/// Light blue grid lines at columns or rows of pixels.
void drawGridColumns(QPainter& painter, const ChCoord& coord, const std::vector<int>& columns);
void drawGridRows(QPainter& painter, const ChCoord& coord, const std::vector<int>& rows);
/// The same at data values.
void drawGridAtX(QPainter& painter, const ChCoord& coord, const std::vector<double>& values);
void drawGridAtY(QPainter& painter, const ChCoord& coord, const std::vector<double>& values);

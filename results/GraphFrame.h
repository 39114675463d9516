#pragma once

#include "analysis/TargetResult.h"
#include "results/GridLines.h"

#include <QString>

class DispABase;
class QPainter;

/// Axis titles, translated by the owner.
struct AxisTitles {
    QString x;
    QString y;
};

/// Ends of an axis in data units, as they are typed.
struct AxisEnds {
    double from;
    double to;
};

/// What all result graphs start with: margins, titles, a white canvas. A graph without data is left
/// at that, and its titles are not painted.
/// @return hasData
bool beginGraph(DispABase* panel, QPainter* painter, const AxisTitles& titles, bool hasData);

/// Light blue grid lines at columns or rows of pixels.
void drawGridColumns(const ChCoord& coord, QPainter* painter, const std::vector<int>& columns);
void drawGridRows(const ChCoord& coord, QPainter* painter, const std::vector<int>& rows);
/// The same at data values.
void drawGridAtX(const ChCoord& coord, QPainter* painter, const std::vector<double>& values);
void drawGridAtY(const ChCoord& coord, QPainter* painter, const std::vector<double>& values);

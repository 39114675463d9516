#pragma once

#include "display/GraphFrame.h"

class QPainter;

/// What all graphs start with: margins and a white canvas. A graph without data is left at that,
/// and its titles are not painted.
/// @return hasData
bool beginGraph(QPainter& painter, GraphFrame& frame, bool hasData);

/// What all graphs end with: white margins on request, a grey border around the plot area and the
/// ends of both ranges.
void drawGraphFrame(QPainter& painter, const ChCoord& coord, bool clearMargins);

/// The titles that belong into the graph, one under the plot area, the other upward beside it.
void drawAxisTitles(QPainter& painter, const GraphFrame& frame);

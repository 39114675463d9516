#pragma once

#include "display/ChCoord.h"

#include <QString>

/// Ends of an axis in data units, as they are typed.
struct AxisEnds {
    double from;
    double to;
};

/// What a graph shows around its data, whatever shows it: a canvas, a picture, a page.
///
/// Whoever owns a painter calls begin(), the painter of the graph, and drawAxisTitles(). Between
/// two paintings a frame keeps its range, so that a view that was zoomed or moved stays. A unit of
/// the painter is a pixel; a device of another measure, as a page, is set to 96 of them an inch.
struct GraphFrame {
    ChCoord coord;
    bool rangeSet = false; ///< coord has the range of the data, or what was zoomed out of it
    QString xTitle;
    QString yTitle;
    bool xTitleInGraph = false; ///< the title is painted in the graph
    bool yTitleInGraph = false;

    /// Begins a painting on a canvas of so many pixels: from its top left corner on, without
    /// margins, and from 0 to 1 as long as no range is set.
    void begin(int width, int height);
    /// The data range unless there is one.
    void setRangeOnce(double x0, double y0, double x1, double y1);
};

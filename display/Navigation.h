#pragma once

#include <vector>

class ChCoord;

/// What the mouse does to a graph, as arithmetic.

/// Factor by which one wheel event widens the range: below zero the view zooms out, else in (a
/// delta of zero too).
/// @param delta  the event's angle, 120 for a notch
double wheelFactor(int delta);

/// Widens the range by a factor about the data point under a pixel. Over the strips along the left
/// and right ends of the plot area only y changes, along the top and bottom only x, in the corners
/// and in the middle both.
void zoomAt(ChCoord& coord, int x, int y, double factor);

/// Moves the range so that what was under the first pixel is under the second.
void panBetween(ChCoord& coord, int fromX, int fromY, int toX, int toY);

/// A marker line as it stands on a graph.
struct MarkPosition {
    bool isXLine;    ///< vertical at an x value, else horizontal at a y value
    double position; ///< data units
};

/// Nearest line within 10 pixels of a pixel; the first of equally near ones.
/// @return its place, -1 without one
int pickMark(const ChCoord& coord, const std::vector<MarkPosition>& marks, int x, int y);

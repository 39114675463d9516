#pragma once

#include "display/ChCoord.h"

#include <vector>

/// Grid lines of a graph: first, first + step, first + 2 step, ... up to a limit, each the sum of
/// the one before and the step.
struct GridSteps {
    double first;
    double step; ///< above 0
    double limit;
    bool withLimit; ///< a line at the limit itself is drawn too

    bool contains(double v) const { return withLimit ? limit >= v : limit > v; }
};

/// A line for each tenth of a valence between those of the references, with half a step of room for
/// rounding. None where valence 1 lies above valence 2 by more than that.
GridSteps valenceSteps(double valence1, double valence2);

/// Counts 0, 10, 20, ... up to the largest.
GridSteps countSteps(int maxCount);

/// 0.0, 0.1, ..., 1.0.
std::vector<double> tenths();

/// Columns of pixels, from 0 to the canvas's width, that hold a vertical grid line, rising. However
/// many lines there are, the work is bounded: beyond some thousand lines each column is asked
/// whether it holds one.
std::vector<int> gridColumns(const ChCoord& coord, const GridSteps& steps);

/// The same for rows of pixels and horizontal lines, from 0 to the canvas's height.
std::vector<int> gridRows(const ChCoord& coord, const GridSteps& steps);

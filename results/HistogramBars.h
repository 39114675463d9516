#pragma once

#include "analysis/HistogramCounts.h"
#include "display/ChCoord.h"

#include <QRect>

#include <vector>

/// The filled rectangles of a histogram's bars on a graph, in pixels: one for each bin, and one on
/// either side for the values below and above. The pixel at a bar's left is left free. Bars without
/// a pixel are left out, and of bars over the same columns only the highest is given. Where bins
/// are narrower than pixels the time is that of the canvas's columns, not that of the bins.
std::vector<QRect> barRects(const ChCoord& coord, const HistogramCounts& histogram);

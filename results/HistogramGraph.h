#pragma once

#include "results/GraphFrame.h"
#include "results/HistogramCounts.h"

#include <QRect>

/// The filled rectangles of a histogram's bars on a graph, in pixels: one for each bin, and one on
/// either side for the values below and above. The pixel at a bar's left is left free. Bars without
/// a pixel are left out, and of bars over the same columns only the highest is given.
std::vector<QRect> barRects(const ChCoord& coord, const HistogramCounts& histogram);

/// "Histgram of a": counts of valences.
void drawValenceHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                          const HistogramCounts& histogram, const AxisEnds& xRange,
                          const ReferenceValences& valences);

/// "Histgram of t": counts of thickness ratios.
void drawThicknessHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                            const HistogramCounts& histogram, const AxisEnds& xRange);

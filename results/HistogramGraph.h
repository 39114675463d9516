#pragma once

#include "analysis/HistogramCounts.h"
#include "results/GraphFrame.h"

/// "Histgram of a": counts of valences.
void drawValenceHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                          const HistogramCounts& histogram, const AxisEnds& xRange,
                          const ReferenceValences& valences);

/// "Histgram of t": counts of thickness ratios.
void drawThicknessHistogram(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                            const HistogramCounts& histogram, const AxisEnds& xRange);

#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/TargetResult.h"
#include "display/GraphFrame.h"

class QPainter;

/// "Histgram of a": counts of valences.
void drawValenceHistogram(QPainter& painter, GraphFrame& frame, const HistogramCounts& histogram,
                          const AxisEnds& xRange, const ReferenceValences& valences);

/// "Histgram of t": counts of thickness ratios.
void drawThicknessHistogram(QPainter& painter, GraphFrame& frame, const HistogramCounts& histogram,
                            const AxisEnds& xRange);

#pragma once

#include "analysis/TargetResult.h"
#include "display/GraphFrame.h"
#include "results/DotCloud.h"

/// "t/a": thickness ratio against valence, a dot for each point of a map. Keeps the picture of the
/// dots between repaints.
class ThicknessGraph
{
public:
    /// @param xRange  valences, @param yRange  thickness ratios, both as typed for the histograms
    void draw(QPainter& painter, GraphFrame& frame, const MapPoints& points,
              const ReferenceValences& valences, const AxisEnds& xRange, const AxisEnds& yRange);

private:
    DotCloud m_dots;
};

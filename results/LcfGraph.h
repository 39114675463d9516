#pragma once

#include "analysis/LcfPoint.h"
#include "results/GraphFrame.h"

/// "LCF vs 4PS": valence of the point methods against that of the linear combination fit, one dot
/// for each fit, the newest one circled.
void drawLcfGraph(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                  const std::vector<LCFvs4PSPoint>& points, const ReferenceValences& valences);

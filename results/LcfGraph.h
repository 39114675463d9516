#pragma once

#include "analysis/LcfPoint.h"
#include "analysis/TargetResult.h"
#include "display/GraphFrame.h"

class QPainter;

/// "LCF vs 4PS": valence of the point methods against that of the linear combination fit, one dot
/// for each fit, the newest one circled.
void drawLcfGraph(QPainter& painter, GraphFrame& frame, const std::vector<LCFvs4PSPoint>& points,
                  const ReferenceValences& valences);

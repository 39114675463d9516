#pragma once

#include "batch/OutputWords.h"
#include "batch/Report.h"

/// The valences of the targets in the job's order, those of the point method as dots and those of
/// the linear combination fit as crosses, as a picture (SVG) and the words under it. Of many
/// targets a stroke from the lowest to the highest value stands for neighbours. Values far from all
/// others lie at the edge and are counted.
/// @return empty where no target has a valence
QByteArray trendFigure(const std::vector<ReportTargets::Point>& points, const OutputWords& words);

#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/TargetResult.h"

#include <vector>

/// What is set for an analysis, apart from its files; at first what the window shows at its start.
struct Settings {
    double edge = 8350.0;         ///< eV
    double preEdgeEnd = -50.0;    ///< eV, against the edge
    double postEdgeStart = 100.0; ///< eV, against the edge
    ReferenceValences valences;
    /// All rows of the point table.
    std::vector<ChosenPoint> points = {{8313.0, true, false, false},
                                       {8381.0, true, false, false},
                                       {8390.0, true, false, true},
                                       {8404.5, true, false, false},
                                       {8460.0, false, false, false},
                                       {8475.0, false, false, false},
                                       {},
                                       {}};
    Conditions conditions;
    HistogramSettings valenceHistogram{1.5, 3.5, 41.0, false};
    HistogramSettings thicknessHistogram{-0.2, 1.2, 41.0, false};

    /// The energies that bound the fits of every spectrum.
    FitBounds bounds() const { return {edge + preEdgeEnd, edge, edge + postEdgeStart}; }
};

#pragma once

#include "analysis/PointTable.h"

#include <QString>

#include <array>
#include <vector>

/// The files of an analysis; an empty path where there is none.
struct AnalysisFiles {
    std::array<QString, SpectrumSet::count> spectra;
    std::vector<QString> maps; ///< 2D data of the rows of the point table
};

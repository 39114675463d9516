#pragma once

#include "analysis/MapSigma.h"
#include "analysis/TargetUncertainty.h"

/// The mean over the pixels of a map or of a region whose valence means something.
struct MapMean {
    double a = 0.0;     ///< fraction of Ref 1, without the bias that noise leaves in a mean
    double t = 0.0;     ///< thickness ratio, likewise
    double biasA = 0.0; ///< what was taken out
    double biasT = 0.0;
    double sigmaA = 0.0; ///< standard deviation by the noise of the images
    double sigmaT = 0.0;
    double sigmaARef = 0.0; ///< by that of references and blank, which all pixels share
    double sigmaTRef = 0.0;
    double degrees = 0.0; ///< of freedom, of the common part
};

/// @param input        of the map's calculation
/// @param method       of the calculation
/// @param covariances  of references and blank
/// @return not-a-number where no pixel means something
MapMean mapMean(const AnalysisInput& input, Method method, const MapSums& sums,
                const TableCovariances& covariances);

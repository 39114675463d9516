#pragma once

#include "analysis/MapSummary.h"
#include "batch/JobData.h"
#include "formats/MapFiles.h"

/// A map's results as the programs of others get them: valence, a, and t/ts where the method has
/// it. A pixel without result is not-a-number.
/// @param data     of the map; for valences and the size of a pixel
/// @param missing  of the results, and these themselves must live as long
/// @param sigmas   of the results; null where they are not known
ResultImages resultImages(const QString& name, const JobData& data, const MapResults& results,
                          const MissingPixels& missing, const MapSigmas* sigmas, bool hasThickness);

/// The files of a map for the programs of others: "NAME-valence.tif" and so on, "NAME.h5".
QString mapTiffFile(const QString& stem, const ResultImage& image);
QString mapHdf5File(const QString& stem);

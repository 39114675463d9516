#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "system/Workers.h"

#include <QByteArray>
#include <QStringList>

/// What the pictures of a map show besides its results.
struct MapPictureInput {
    const MapResults& results;
    const HistogramCounts& valenceHistogram;   ///< of the results
    const HistogramCounts& thicknessHistogram; ///< of the results
    HistogramSettings valenceSettings;         ///< their ranges are those of the colours too
    HistogramSettings thicknessSettings;
    ReferenceValences valences;
    bool hasThickness = true; ///< false for the three-point method
};

/// Paints the pictures of a map as NAME-valence.png, NAME-thickness.png,
/// NAME-valence-by-thickness.png, NAME-histogram-valence.png, NAME-histogram-thickness.png and
/// NAME-t-a.png, each written beside its place and renamed. Needs a QGuiApplication (see
/// batch/PictureApplication.h); may be called from any thread.
/// @param folder    is there
/// @param name      may stand in a file's name
/// @param language  "en" or "ja"
/// @param failed    gets the paths that could not be written
/// @return the paths that were written, always in the same order
QStringList drawMapPictures(const QString& folder, const QString& name,
                            const MapPictureInput& input, const QString& language,
                            QStringList& failed, Workers& workers = Workers::shared());

/// What the report shows under the pointer: positions, valence and t/ts of each pixel, of one pixel
/// out of each block where the map is large. Bytes of one kind for all machines, for
/// `MapOutcome::readOut` and `ReportMap::readOut`.
QByteArray mapReadOut(const MapResults& results, const ReferenceValences& valences,
                      bool hasThickness);

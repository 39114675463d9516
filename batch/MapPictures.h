#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "batch/OutputWords.h"
#include "batch/PictureFile.h"
#include "batch/PositionUnit.h"
#include "results/MapGrid.h"
#include "results/MapLegend.h"
#include "results/MapPicture.h"
#include "system/Workers.h"

#include <QByteArray>
#include <QImage>
#include <QString>

/// What the pictures of a map show besides its results.
struct MapPictureInput {
    const MapResults& results;
    const HistogramCounts& valenceHistogram;   ///< of the results
    const HistogramCounts& thicknessHistogram; ///< of the results
    HistogramSettings valenceSettings;         ///< their ranges are those of the colours too
    HistogramSettings thicknessSettings;
    ReferenceValences valences;
    bool hasThickness = true;               ///< false for the three-point method
    const MissingPixels* missing = nullptr; ///< of the results
    const MapSigmas* sigmas = nullptr;      ///< of the results, where they are known
    PositionUnit positions = PositionUnit::Stage;
};

/// Paints the pictures of a map as NAME-valence.png, NAME-thickness.png,
/// NAME-valence-by-thickness.png, NAME-histogram-valence.png, NAME-histogram-thickness.png and
/// NAME-t-a.png, each written beside its place and renamed; without thickness only the first and
/// the fourth. Where the standard deviations are known, there are also NAME-valence-masked.png,
/// NAME-sigma-valence.png and, with thickness, NAME-sigma-thickness.png, in which pixels whose
/// valence means nothing have a colour of their own; their colours go from 0 to a round number that
/// 95 % of the others do not reach. The colours of the rest span the boxes of the histograms. Needs
/// a QGuiApplication (see batch/PictureApplication.h); may be called from any thread.
/// @param folder    is made if need be
/// @param name      may stand in a file's name
/// @param language  "en" or "ja"
/// @param workers   end before the application, since each thread that paints keeps fonts
PictureFiles drawMapPictures(const QString& folder, const QString& name,
                             const MapPictureInput& input, const QString& language,
                             Workers& workers);

/// Paints a map in its good size.
/// @param frame  begun here; its coordinates are where the map lies
QImage mapImage(MapPicture& picture, const MapCaptions& captions, GraphFrame& frame);

/// The words of a map's picture.
MapCaptions mapCaptions(const OutputWords& words, const QString& title, PositionUnit unit);

/// Where a map lies in its picture: "WIDTH HEIGHT px0 py0 px1 py1 rx0 ry0 rx1 ry1" of its
/// coordinates. It stands in the PNG file under this key, for whoever shows what lies under the
/// pointer.
constexpr const char* plotAreaKey = "PlotArea";
QString plotAreaText(const ChCoord& coord, QSize canvas);

/// The results as pictures see them; the arrays stay those of the results.
MapPixels mapPixels(const MapResults& results, const ReferenceValences& valences,
                    const MissingPixels* missing);

/// What the report shows under the pointer, as bytes that are the same on every machine: for
/// `MapOutcome::readOut`, the record of the run and `ReportMap::readOut`.
QByteArray mapReadOut(const MapPictureInput& input);

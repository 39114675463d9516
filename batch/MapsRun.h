#pragma once

#include "batch/JobData.h"
#include "batch/MapJob.h"
#include "batch/MapRow.h"
#include "system/Workers.h"

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <vector>

/// What became of one map.
struct MapOutcome {
    MapRow row;
    QStringList files;       ///< that were written, in the order of their writing
    bool fileFailed = false; ///< a file could not be written; the others are
    QString failure;         ///< then the first one, and why
    QByteArray readOut;      ///< the values that the report tells under the pointer
    /// Of its images in their order, where all could be read.
    std::vector<std::optional<Digest>> images;
    double seconds = 0.0; ///< that it took
    bool left = false;    ///< the run was to end before it was begun; nothing else is set
};

/// The files of a map in the job's output folder, whether they are written or not:
/// "maps/NAME/NAME.dat" with the positions and values of all pixels, and its histograms.
QString mapFolder(const Job& job, const MapJob& map);
QString mapResultFile(const Job& job, const MapJob& map);
QString mapHistogramFile(const Job& job, const MapJob& map, const char* tag);

/// Reads the images of a map, calculates it with the job's settings, and writes its files and
/// pictures if the job wants any; pictures need a QGuiApplication (see batch/PictureApplication.h).
/// An image that cannot be read refuses the map: it is never calculated with fewer points.
/// @param common  of the job without targets and maps; its references and its blank are shared
MapOutcome analyseMap(const Job& job, const JobData& common, const MapJob& map, Workers& workers);

/// Analyses maps on all threads: small ones side by side, each of the large ones on all threads, so
/// that the memory is that of one large map. After a stop signal no more is begun.
/// @param use  gets each outcome in the order of the maps, one at a time; false ends the run
/// @return false where the run was ended
bool runMaps(const Job& job, const JobData& common, const std::vector<MapJob>& maps,
             const std::function<bool(const MapJob&, const MapOutcome&)>& use, Workers& workers);

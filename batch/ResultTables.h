#pragma once

#include "batch/PreparedJob.h"
#include "batch/RunRecord.h"

/// What writing the results of a job came to.
struct ResultsWritten {
    QStringList files;
    QString failed;      ///< a file that could not be written; then others may be missing
    bool allGood = true; ///< nothing refused, all finite
    QString closure;     ///< line of the closure test; empty where there is none
};

/// Writes what is derived from the record, in the job's order: results.csv, maps.csv, the graphs
/// that show all targets, and the report. What has no row is left out.
ResultsWritten writeResults(RunRecord& record, const PreparedJob& prepared);

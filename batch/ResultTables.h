#pragma once

#include "batch/PreparedJob.h"
#include "batch/RunRecord.h"

/// What writing the results of a job came to.
struct ResultsWritten {
    QStringList files;
    QString failed; ///< path of a file that could not be written; then the others may be missing
    bool allGood = true; ///< nothing refused, all finite
};

/// Writes results.csv from the record, in the job's order. A target that has no row is left out.
ResultsWritten writeResults(RunRecord& record, const PreparedJob& prepared);

#pragma once

#include "batch/PreparedJob.h"
#include "batch/RunRecord.h"

/// Takes rows of what is no longer the job's out of a record.
void dropOthers(RunRecord& record, const PreparedJob& prepared);

/// Writes all results from a record, says their names unless it is to be quiet, and what failed.
/// @return an ExitStatus
int writeAndTell(RunRecord& record, const PreparedJob& prepared, bool quiet);

#pragma once

#include "batch/TargetsJob.h"

/// Joins the records of a job's shards into the record of its output folder, and writes the results
/// as one run would have. Records of another job or version, and those of shards at work, are
/// refused. What is in none is named; then the rest is in the record, and no results are written.
/// @return an ExitStatus
int mergeShards(const QString& path, const QByteArray& text, const Job& job,
                const RunOptions& options);

#pragma once

#include "batch/ExitStatus.h"
#include "batch/JobFile.h"
#include "batch/RunFolder.h"

#include <vector>

/// More threads than this are a mistake of typing.
constexpr unsigned mostThreads = 1024;

struct RunOptions {
    bool checkOnly = false;
    bool listOnly = false;
    bool listWithNul = false;
    bool quiet = false;
    bool verbose = false;
    bool again = false;   ///< also what is in the record already
    unsigned threads = 0; ///< 0: as many as this process has processors
    Shard shard;
};

/// Runs a job of many targets: analyses those that are not yet in the record of the output folder,
/// tells on the standard error what is doubtful or was refused, and writes results.csv from the
/// record. One target that cannot be read or is refused is one row with its reason and stops no
/// other. A shard writes a record of its own and no results.
/// @param path  of the job file
/// @param text  of it
/// @return an ExitStatus
int analyseTargets(const QString& path, const QByteArray& text, const Job& job,
                   const RunOptions& options);

/// Prints the paths of targets; an empty one is left out.
ExitStatus listTargets(const std::vector<JobFilePath>& targets, const RunOptions& options);

/// As many threads as this process has processors, no more than a cluster's scheduler gave it.
unsigned usualThreads();

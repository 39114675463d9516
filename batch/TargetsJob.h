#pragma once

#include "batch/ExitStatus.h"
#include "batch/PreparedJob.h"
#include "batch/RunFolder.h"
#include "batch/RunRecord.h"
#include "jobs/JobFile.h"

#include <functional>

/// More threads than this are a mistake of typing.
constexpr unsigned mostThreads = 1024;

struct RunOptions {
    bool checkOnly = false;
    bool listOnly = false;
    bool listWithNul = false;
    bool quiet = false;
    bool verbose = false;
    bool again = false;   ///< also what is in the record already
    bool watch = false;   ///< goes on with new files
    unsigned threads = 0; ///< 0: as many as this process has processors
    Shard shard;
};

/// Runs a job of many targets and maps: analyses those that are not yet in the record of the output
/// folder, tells on the standard error what is doubtful or was refused, and writes the tables and
/// the report from the record. One that cannot be read or is refused is one row with its reason and
/// stops no other. A shard writes a record of its own and no results.
/// @param path  of the job file
/// @param text  of it
/// @return an ExitStatus
int analyseTargets(const QString& path, const QByteArray& text, const Job& job,
                   const RunOptions& options);

/// Calls a function with a record that nobody else writes meanwhile. What is wrong with the record
/// is said.
/// @return what the function does, or an ExitStatus
int withRecord(const QString& path, const std::function<int(RunRecord&)>& use);

/// Prints the paths of targets, the names of regions and maps; an empty path is left out.
ExitStatus printList(const JobList& list, const RunOptions& options);

/// As many threads as this process has processors, no more than a cluster's scheduler gave it.
unsigned usualThreads();

#pragma once

#include "batch/JobFile.h"

#include <vector>

/// How the program ends.
enum class ExitStatus {
    Done = 0,
    SomeRefused = 1, ///< or found no finite number; the rest is done
    BadJob = 2,      ///< or an unreadable file; nothing was written
    FileFailed = 3,  ///< a file could not be written, or the disk
};

/// More threads than this are a mistake of typing.
constexpr unsigned mostThreads = 1024;

struct RunOptions {
    bool checkOnly = false;
    bool listOnly = false;
    bool listWithNul = false;
    bool quiet = false;
    unsigned threads = 0; ///< 0: as many as this process has processors
};

/// Runs a job of many targets: analyses each, tells on the standard error what is doubtful or was
/// refused, and writes results.csv into the job's output folder, which is made if need be. One
/// target that cannot be read or is refused is one row with its reason and stops no other.
/// @param path  of the job file
ExitStatus analyseTargets(const QString& path, const Job& job, const RunOptions& options);

/// Prints the paths of targets; an empty one is left out.
ExitStatus listTargets(const std::vector<JobFilePath>& targets, const RunOptions& options);

/// As many threads as this process has processors, no more than a cluster's scheduler gave it.
unsigned usualThreads();

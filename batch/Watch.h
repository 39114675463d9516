#pragma once

#include "batch/PreparedJob.h"
#include "batch/WatchedFiles.h"
#include "system/FolderWatch.h"

#include <functional>

/// The folders in which files can appear that a job's names and patterns match: those that are
/// there, and of one that is not yet the one above it.
QByteArrayList watchedFolders(const Job& job);

/// What is to be done with part of a job's list.
struct WatchActions {
    /// Calculates what the list of the prepared job has, and sets whether any of it is new.
    /// Nothing, or the status to end with.
    std::function<std::optional<int>(const PreparedJob&, bool& any)> calculate;
    /// Writes the results of the list. Nothing, or the status to end with.
    std::function<std::optional<int>(const PreparedJob&)> write;
};

/// Waits for files of a job that are new or changed and have stopped growing, and has them
/// calculated and the results written, until there is a stop signal.
/// @param prepared  whose list is done, in the state that `seen` has; the list changes
/// @param folders  to wait for
/// @return the status to end with
int watchJob(PreparedJob& prepared, WatchedFiles seen, const WatchActions& actions,
             FolderWatch& folders);

/// Looks at all files of a list, which are about to be read.
void lookAt(const Job& job, const JobList& list, WatchedFiles& files);

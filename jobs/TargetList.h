#pragma once

#include "jobs/JobFile.h"

#include <optional>
#include <vector>

/// The targets of a job: each file that its names and patterns give, once, sorted by the bytes of
/// their paths, whatever the locale is and in whatever order a folder lists them. A path is as the
/// job has it, against the job's folder.
/// @param error  is set where nothing comes back: a name without a file, or a pattern without a
///               match, with its line in the job
std::optional<std::vector<JobFilePath>> targetList(const Job& job, JobError& error);

/// The same of what is there; there may be none.
std::vector<JobFilePath> presentTargets(const Job& job);

/// A name or pattern of the job for glob(), from the root on.
QByteArray wholePattern(const Job& job, const QString& pattern);

/// A pattern that only the file of this very path matches.
QString literalPattern(const QString& path);

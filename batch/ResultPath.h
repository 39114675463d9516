#pragma once

#include "jobs/JobFile.h"

/// Whether the map's result file may be written as the job names it. Nothing that the job reads is
/// ever written over, under whatever name, and neither by a histogram file beside the result.
/// @param jobPath  of the job file itself
/// @return nothing, or what is wrong with `map_result`: it is a folder, the job, a spectrum or 2D
///         data of the job, or a file that cannot be written
std::optional<JobError> checkResultPath(const Job& job, const QString& jobPath);

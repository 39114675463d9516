#pragma once

#include "batch/MapJob.h"
#include "batch/TargetJob.h"
#include "jobs/JobFile.h"

#include <QStringList>

/// Whether a run may write into its output folder, which need not be there yet. Nothing that the
/// job reads is ever written over, under whatever name: neither by the files of the run, nor in the
/// folders of its maps and pictures, in which a link could lead to what is read.
/// @param targets  of the job
/// @param files    of the run, in the output folder
/// @return nothing, or what is wrong with the folder or with the name of a map
std::optional<JobError> checkOutputs(const Job& job, const QString& jobPath,
                                     const std::vector<TargetJob>& targets,
                                     const std::vector<MapJob>& maps, const QStringList& files);

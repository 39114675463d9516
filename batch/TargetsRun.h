#pragma once

#include "batch/TargetRow.h"
#include "system/SafeFile.h"
#include "system/Workers.h"

#include <QByteArray>

#include <functional>
#include <vector>

/// Analyses targets on all threads.
/// @param common  of the job without a target
/// @param use     gets each row in the order of the targets, one at a time; false ends the run
/// @return false where the run was ended
bool runTargets(const Job& job, const JobData& common, const std::vector<JobFilePath>& targets,
                const std::function<bool(const TargetRow&)>& use, Workers& workers);

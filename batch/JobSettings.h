#pragma once

#include "analysis/Settings.h"
#include "batch/JobFile.h"
#include "input/AnalysisFiles.h"

/// What a job sets; what it does not give is as in the window at its start.
Settings settingsOf(const Job& job);

/// The files that a job names.
AnalysisFiles filesOf(const Job& job);

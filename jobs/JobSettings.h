#pragma once

#include "analysis/Settings.h"
#include "input/AnalysisFiles.h"
#include "jobs/JobFile.h"

/// What a job sets; what it does not give is as in the window at its start.
Settings settingsOf(const Job& job);

/// The files that a job names.
AnalysisFiles filesOf(const Job& job);

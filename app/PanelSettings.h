#pragma once

#include "analysis/Settings.h"
#include "input/AnalysisFiles.h"

class FourPs;
struct Job;

/// Makes settings in a panel, through its widgets as a user would: texts are typed, boxes and
/// buttons clicked, the files named last, so that every setting holds for them.
void applySettings(const Settings& settings, const AnalysisFiles& files, FourPs& panel);

/// Makes a panel what a job says, in the same way: what it showed before is forgotten, numbers
/// stand as they are typed in the job. Everything is calculated once, at the end.
/// @param files  of the job that the panel can read
void applyJob(const Job& job, const AnalysisFiles& files, FourPs& panel);

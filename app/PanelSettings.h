#pragma once

#include "analysis/Settings.h"
#include "input/AnalysisFiles.h"

class FourPs;

/// Makes settings in a panel, through its widgets as a user would: texts are typed, boxes and
/// buttons clicked, the files named last, so that every setting holds for them.
void applySettings(const Settings& settings, const AnalysisFiles& files, FourPs& panel);

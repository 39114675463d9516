#pragma once

#include "batch/OutputWords.h"
#include "batch/Report.h"

/// A line over all others where the closure test says that points or thickness ratio are wrong;
/// empty where it does not.
QByteArray closureAlarm(const ReportFacts& facts, const OutputWords& words);

/// How sure the valences are: closure, a line for each target, what each figure means, and what
/// counting does not see; empty where no target has any of it.
QByteArray errorsSection(const ReportFacts& facts, const OutputWords& words);

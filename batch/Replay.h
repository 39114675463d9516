#pragma once

#include "batch/TargetsJob.h"

/// Calculates what a record has again, from its job and the files as they are now, and prints a
/// line for each target and map: "NAME: the same", or what differs. The record and the results stay
/// as they are.
/// @param names  of targets and maps; all without any
/// @return Done if all are the same, SomeRefused if not, or another ExitStatus
int replayRecord(const QString& path, const QStringList& names, const RunOptions& options);

#pragma once

#include "batch/ExitStatus.h"
#include "jobs/JobFile.h"

/// Writes what a job reads as texts that the window reads, and a job for them: spectra of others as
/// a beamline's text, a stack as one text of 2D data for each point; what the window reads already
/// is copied. What they cannot carry is said on the standard error, a line each. Nothing that the
/// job reads is written over, and nothing in a folder that is no earlier conversion.
/// @param path    of the job file
/// @param folder  is made if need be
ExitStatus convertJob(const QString& path, const Job& job, const QString& folder, bool quiet);

#pragma once

#include "batch/JobChecks.h"
#include "batch/JobData.h"

/// What there is to check of a job whose files are read: the spectra and rows that the calculations
/// asked for use, and no others.
JobFacts factsOf(const Job& job, const JobData& data);

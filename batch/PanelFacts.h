#pragma once

#include "batch/JobChecks.h"

class FourPs;

/// What there is to check of a job whose settings are made and whose files are read in a panel: the
/// spectra and rows that the calculations asked for use, and no others.
JobFacts factsOf(const Job& job, const FourPs& panel);

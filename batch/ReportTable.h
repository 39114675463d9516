#pragma once

#include "batch/OutputWords.h"
#include "batch/Report.h"

/// The targets that the page lists, refused ones first, and what it leaves to the file.
QByteArray targetsTable(const ReportTargets& targets, const OutputWords& words);

/// All maps, with the figures of maps.csv.
QByteArray mapsTable(const ReportFacts& facts, const OutputWords& words);

/// Files that the job read, with their hashes.
QByteArray inputsTable(const std::vector<ReportInput>& inputs, const OutputWords& words);

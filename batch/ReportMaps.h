#pragma once

#include "batch/OutputWords.h"
#include "batch/Report.h"

/// The maps of a job: a table of all, and for each its pictures with what lies under the pointer.
QByteArray mapsSection(const ReportFacts& facts, const OutputWords& words);

/// Graphs as pictures in the page.
QByteArray graphsSection(const ReportFacts& facts, const OutputWords& words);

#pragma once

#include "jobs/KeyReader.h"

/// The keys of [alignment].
KeyReader::Keys alignmentKeys(KeyReader& reader, JobAlignment& alignment);

/// Shifts have one source: numbers, a table, or foils, whose scale is that of Ref 1.
void checkAlignment(KeyReader& reader, const Job& job);

/// Whether the shift of a spectrum comes from a foil, and the file of it.
bool hasFoil(const JobAlignment& alignment, SpectrumSet::Index spectrum);
/// @param path  of the spectrum
QString foilFile(const Job& job, const QString& path);

#pragma once

#include "batch/MapsRun.h"
#include "batch/PreparedJob.h"
#include "batch/RunRecord.h"

/// The maps of a job that are in the record under their key, whose images have not changed and
/// whose files are in place: true for each that need not be calculated.
std::vector<bool> keptMaps(RunRecord& record, const PreparedJob& prepared, Workers& workers);

/// The row of a map for the record.
/// @return nothing where one of its files has gone since it was written
std::optional<RecordedRow> recordedMap(const PreparedJob& prepared, const MapJob& map,
                                       const MapOutcome& outcome);

/// The digests that a map's images had, one for each row of the point table; none for no image.
/// @param inputs  of its row
std::vector<std::optional<Digest>> digestsOf(const MapJob& map,
                                             const std::vector<RecordedFile>& inputs);

/// Whether files are there as they were written.
/// @param folder  what their paths start from
bool areInPlace(const std::vector<RecordedFile>& files, const QString& folder);

/// What a file was written as; nothing where it cannot be read.
std::optional<RecordedFile> writtenFile(const QString& path, const QString& folder);

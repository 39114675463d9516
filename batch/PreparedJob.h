#pragma once

#include "batch/JobData.h"
#include "batch/MapJob.h"
#include "batch/RecordedRow.h"
#include "batch/RunFolder.h"
#include "batch/TargetJob.h"

/// What a job is to do, in its order; the maps follow the targets.
struct JobList {
    std::vector<TargetJob> targets;
    std::vector<MapJob> maps;

    JobList part(const Shard& shard) const;
};

/// A job that may run: everything it names is there, and nothing it reads would be written.
struct PreparedJob {
    QString path;        ///< of the job file
    QByteArray text;     ///< of it
    QByteArray settings; ///< what of it the targets depend on
    Job job;
    JobList list;   ///< of this shard
    JobData common; ///< references and blank
    /// The results are written after every few files: what takes long waits for a run of all.
    bool isWatched = false;
};

/// @param error  is set where nothing comes back
std::optional<JobList> listOf(const Job& job, JobError& error);

/// What of a job is there already.
JobList presentListOf(const Job& job);

/// Checks a job with a list of it and reads the files that its targets have in common.
/// @param error  is set where nothing comes back
std::optional<PreparedJob> prepareList(const QString& path, const QByteArray& text, const Job& job,
                                       const JobList& list, const Shard& shard, JobError& error);

/// The same with all that the job lists, none of which may be missing.
/// @param error  is set where nothing comes back
std::optional<PreparedJob> prepareJob(const QString& path, const QByteArray& text, const Job& job,
                                      const Shard& shard, JobError& error);

/// References, blank and what aligns them, with their digests; paths against the job's folder.
std::vector<RecordedFile> commonInputs(const PreparedJob& prepared);

/// What the record keeps of the run that is about to begin.
/// @param record  its path
RecordedRun recordedRun(const PreparedJob& prepared, const Shard& shard, const QString& record);

#pragma once

#include "jobs/JobFile.h"

#include <QHash>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// A target that is the mean spectrum of a region of a stack of images.
struct RegionTarget {
    QString name; ///< of its row; no other target has it
    JobStack stack;
    QStringList files; ///< that the stack is made of; none where it is not there
};

/// One target of a job: a file, or a region.
struct TargetJob {
    JobFilePath file;                                ///< its path is empty for a region
    std::shared_ptr<const RegionTarget> region = {}; ///< null for a file

    /// All files that its spectrum is read from.
    QStringList files() const { return region ? region->files : QStringList(file.path); }
    /// What stands for its file where the job means files by name: shifts, foils.
    const QString& path() const { return region ? region->name : file.path; }
};

/// What a target is called in the results, wherever the job lies: its path against the job's
/// folder, or the name that the job gives to a region.
QString targetName(const Job& job, const TargetJob& target);

/// The targets of a job: its files, sorted by the bytes of their paths, then its regions in the
/// order of the job.
/// @param error  is set where nothing comes back: a file that is not there, or one whose name a
///               region has
std::optional<std::vector<TargetJob>> targetJobs(const Job& job, JobError& error);

/// The same of what is there. A file whose name a region has is left out.
std::vector<TargetJob> presentTargetJobs(const Job& job);

/// The regions of a job by their names, be their stacks there or not.
QHash<QString, TargetJob> regionsByName(const Job& job);

/// What is wrong with the regions against the frames of their stacks; a stack that cannot be read
/// is not judged.
std::optional<JobError> checkRegions(const std::vector<TargetJob>& targets);

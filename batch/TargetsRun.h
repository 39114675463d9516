#pragma once

#include "batch/PreparedJob.h"
#include "batch/RunRecord.h"
#include "batch/TargetRow.h"
#include "system/Workers.h"

#include <functional>
#include <vector>

/// What became of a target in a run.
struct TargetStep {
    enum class State {
        Calculated,
        Kept, ///< is in the record under its key
        Left, ///< the run was to end before
    };

    std::size_t number = 0; ///< in the list of targets
    State state = State::Left;
    TargetRow row;                    ///< where it was calculated
    SourceInputs inputs;              ///< where all could be read
    std::optional<RecordedFile> foil; ///< that was measured along with it, likewise
    double seconds = 0.0;
};

/// What the targets of a run have in common.
struct TargetsRun {
    const Job& job;
    const JobData& common; ///< of the job without a target
    const std::vector<TargetJob>& targets;
    Digest key{}; ///< of keyOfTargets()
    /// Of each target its key in the record; none where it is to be calculated in any case.
    std::vector<std::optional<Digest>> known;
    FileDigests& digests;
};

/// The keys of targets in the record.
/// @param again  none, so that all are calculated
std::vector<std::optional<Digest>> knownTargets(RunRecord& record, const PreparedJob& prepared,
                                                bool again);

/// Analyses targets on all threads; those that are known are only read, for their digest. After a
/// stop signal no more is begun.
/// @param use  gets each target's step in their order, one at a time; false ends the run
/// @return false where the run was ended
bool runTargets(const TargetsRun& run, const std::function<bool(const TargetStep&)>& use,
                Workers& workers);

/// The row of a step for the record.
/// @return nothing where one of its files has gone since it was written
std::optional<RecordedRow> recordedTarget(const TargetsRun& targets, const TargetStep& step);

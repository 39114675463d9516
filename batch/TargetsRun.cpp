#include "batch/TargetsRun.h"

#include "system/OrderedHandOver.h"

bool runTargets(const Job& job, const JobData& common, const std::vector<JobFilePath>& targets,
                const std::function<bool(const TargetRow&)>& use, Workers& workers)
{
    const auto produce = [&](std::size_t i, unsigned, TargetRow& row) {
        row = analyseTarget(job, common, targets[i]);
        return true;
    };
    return runInOrder<TargetRow>(workers, targets.size(), produce, use);
}

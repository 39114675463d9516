#include "batch/TargetJob.h"

#include "batch/JobKey.h"
#include "formats/StackMaps.h"
#include "jobs/TargetList.h"

#include <QDir>
#include <QSet>

#include <algorithm>
#include <map>

namespace
{

std::vector<TargetJob> jobsOf(const std::vector<JobFilePath>& files)
{
    std::vector<TargetJob> targets;
    targets.reserve(files.size());
    for (const JobFilePath& file : files)
        targets.push_back({file});
    return targets;
}

QSet<QString> namesOfRegions(const Job& job)
{
    QSet<QString> names;
    for (const JobStackTarget& target : job.stackTargets)
        names += target.name;
    return names;
}

JobPlace placeOfRegion(const Job& job, const QString& name)
{
    for (const JobStackTarget& target : job.stackTargets)
        if (target.name == name)
            return target.place;
    return {};
}

/// In the order of the job. Many may have one stack, whose folder is looked through once.
std::vector<TargetJob> regionJobs(const Job& job)
{
    std::map<QStringList, QStringList> known;
    std::vector<TargetJob> regions;
    for (const JobStackTarget& given : job.stackTargets) {
        const StackSource& source = given.stack.source;
        const auto [files, isNew] = known.try_emplace({source.kind, source.path, source.energies,
                                                       source.flat, source.dark, source.reference});
        if (isNew)
            files->second = presentStackFiles(source);
        regions.push_back({{},
                           std::make_shared<const RegionTarget>(
                               RegionTarget{given.name, given.stack, files->second})});
    }
    return regions;
}

void append(std::vector<TargetJob> more, std::vector<TargetJob>& targets)
{
    std::move(more.begin(), more.end(), std::back_inserter(targets));
}

} // namespace

QString targetName(const Job& job, const TargetJob& target)
{
    return target.region ? target.region->name
                         : QDir(job.folder).relativeFilePath(target.file.path);
}

QHash<QString, TargetJob> regionsByName(const Job& job)
{
    QHash<QString, TargetJob> regions;
    for (const TargetJob& region : regionJobs(job))
        regions.insert(region.region->name, region);
    return regions;
}

std::optional<std::vector<TargetJob>> targetJobs(const Job& job, JobError& error)
{
    const auto files = targetList(job, error);
    if (!files)
        return std::nullopt;
    std::vector<TargetJob> targets = jobsOf(*files);
    const QSet<QString> names = namesOfRegions(job);
    for (const TargetJob& target : targets)
        if (const QString name = names.isEmpty() ? QString() : targetName(job, target);
            names.contains(name)) {
            error = {placeOfRegion(job, name), QStringLiteral("a file of files.targets has the "
                                                              "same name")};
            return std::nullopt;
        }
    std::vector<TargetJob> regions = regionJobs(job);
    for (const TargetJob& target : regions)
        if (target.files().isEmpty()) {
            const JobStack& stack = target.region->stack;
            error = {stack.place, QStringLiteral("there is no file %1").arg(stack.source.path)};
            return std::nullopt;
        }
    append(std::move(regions), targets);
    return targets;
}

std::vector<TargetJob> presentTargetJobs(const Job& job)
{
    std::vector<TargetJob> targets = jobsOf(presentTargets(job));
    const QSet<QString> names = namesOfRegions(job);
    if (names.isEmpty())
        return targets;
    std::vector<TargetJob> regions = regionJobs(job);
    append(std::move(regions), targets);
    const auto isOut = [&](const TargetJob& target) {
        return target.region ? target.files().isEmpty() : names.contains(targetName(job, target));
    };
    targets.erase(std::remove_if(targets.begin(), targets.end(), isOut), targets.end());
    return targets;
}

std::optional<JobError> checkRegions(const std::vector<TargetJob>& targets)
{
    std::map<Digest, std::optional<StackFacts>> known; // by how and from where they are read
    for (const TargetJob& target : targets) {
        if (!target.region || target.region->stack.region.width == 0)
            continue;
        JobStack whole = target.region->stack;
        whole.region = {};
        Hasher hasher;
        hasher.add(toBytes(digestOfStack(whole)));
        hasher.addText(whole.source.path.toUtf8());
        auto [found, isNew] = known.try_emplace(hasher.digest());
        FileFault fault;
        if (isNew)
            if (const auto stack = openStack(whole.source, fault))
                found->second = stack->facts();
        const JobStack& given = target.region->stack;
        if (found->second && !regionWithin(*found->second, given.region))
            return JobError{given.regionPlace, outsideText(*found->second)};
    }
    return std::nullopt;
}

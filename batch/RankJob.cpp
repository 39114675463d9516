#include "batch/RankJob.h"

#include "batch/Console.h"
#include "batch/InputFiles.h"
#include "batch/JobData.h"
#include "batch/MapJob.h"
#include "batch/PictureFile.h"
#include "batch/RankPicture.h"
#include "batch/RankTable.h"
#include "batch/TargetRow.h"

namespace
{

/// No target is needed.
Job withoutTargets(const Job& job)
{
    Job references = job;
    references.spectra[SpectrumSet::Target] = {};
    references.targets.clear();
    references.stackTargets.clear();
    references.maps.clear();
    if (references.points)
        for (JobPoint& point : *references.points)
            point.map = {};
    return references;
}

bool losesInput(const QString& path, const Job& job, const QString& picture)
{
    InputFiles files(job, path);
    files.add(presentTargetJobs(job));
    files.add(presentMaps(job));
    return !files.lostBy(picture).isEmpty();
}

} // namespace

int rankJob(const QString& path, const Job& job, const QString& picture)
{
    if (!picture.isEmpty() && losesInput(path, job, picture))
        return console::complain(picture +
                                     QStringLiteral(": would be written over what the job reads"),
                                 ExitStatus::BadJob);
    JobError error;
    const std::optional<JobData> data = readJobData(withoutTargets(job), error);
    if (!data)
        return console::complain(errorText(path, error), ExitStatus::BadJob);
    const std::vector<RankedChoice> ranked = rankEnergies(data->input, rankedTargetOf(job));
    if (ranked.empty())
        return console::complain(
            QStringLiteral("No energies were found: the references need common "
                           "energies below the edge, and two crossings above it."),
            ExitStatus::SomeRefused);
    const ReferenceValences& valences = data->settings.valences;
    if (!console::print(rankTable(ranked, valences)))
        return console::complain(QStringLiteral("The table cannot be written."),
                                 ExitStatus::FileFailed);
    if (picture.isEmpty())
        return static_cast<int>(ExitStatus::Done);
    const QImage image =
        rankPicture(data->input.spectra, ranked, valences, OutputWords(languageName(job)));
    if (!writePicture(picture, image).failed.isEmpty())
        return console::complain(picture + QStringLiteral(": cannot be written"),
                                 ExitStatus::FileFailed);
    return static_cast<int>(ExitStatus::Done);
}

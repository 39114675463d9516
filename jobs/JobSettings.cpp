#include "jobs/JobSettings.h"

#include "text/NumberText.h"

namespace
{

void takeIfGiven(const QString& text, double& value)
{
    if (!text.isEmpty())
        value = numberFromText(text);
}

void takeIfGiven(const JobHistogram& given, HistogramSettings& settings)
{
    takeIfGiven(given.from, settings.first);
    takeIfGiven(given.to, settings.last);
    takeIfGiven(given.boxes, settings.boxes);
}

} // namespace

Settings settingsOf(const Job& job)
{
    Settings settings;
    takeIfGiven(job.edge, settings.edge);
    takeIfGiven(job.preEdgeEnd, settings.preEdgeEnd);
    takeIfGiven(job.postEdgeStart, settings.postEdgeStart);
    takeIfGiven(job.valence1, settings.valences.ref1);
    takeIfGiven(job.valence2, settings.valences.ref2);
    if (job.points) {
        for (std::size_t i = 0; i < settings.points.size(); ++i) {
            ChosenPoint& chosen = settings.points[i];
            chosen = {};
            if (i >= job.points->size())
                continue;
            const JobPoint& given = (*job.points)[i];
            chosen = {numberFromText(given.energy), given.use, given.tRatio, given.vPoint};
        }
    }
    takeIfGiven(job.valenceHistogram, settings.valenceHistogram);
    takeIfGiven(job.thicknessHistogram, settings.thicknessHistogram);
    Conditions& conditions = settings.conditions;
    conditions.thickness = job.thickness.value_or(conditions.thickness);
    conditions.referencesMinusVictreen =
        job.referencesMinusVictreen.value_or(conditions.referencesMinusVictreen);
    conditions.targetMinusVictreen =
        job.targetMinusVictreen.value_or(conditions.targetMinusVictreen);
    conditions.victreenIsPre = job.victreenIsPre.value_or(conditions.victreenIsPre);
    conditions.exact = job.exactMethod.value_or(conditions.exact);
    conditions.leastSquares = !conditions.exact;
    return settings;
}

AnalysisFiles filesOf(const Job& job)
{
    AnalysisFiles files;
    for (std::size_t i = 0; i < files.spectra.size(); ++i)
        files.spectra[i] = job.spectra[i].path;
    for (std::size_t i = 0; job.points && i < job.points->size(); ++i)
        files.maps.push_back((*job.points)[i].map.path);
    return files;
}

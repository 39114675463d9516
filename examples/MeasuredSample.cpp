#include "examples/MeasuredSample.h"

#include "batch/JobData.h"
#include "examples/MixedSampleFiles.h"

#include <QDir>

Measuring exampleConditions()
{
    Measuring conditions = defaultConditions();
    conditions.job.thickness = ThicknessType::SumBySum;
    conditions.job.referencesMinusVictreen = false;
    return conditions;
}

Measuring defaultConditions()
{
    Measuring conditions;
    conditions.job.calculateLcf = false;
    return conditions;
}

std::optional<Found> measure(Measuring conditions, const MixedSample& sample, const QString& folder,
                             std::optional<std::uint_fast64_t> seed)
{
    if (!writeSample(folder, sample, seed).isEmpty())
        return std::nullopt;
    Job& job = conditions.job;
    const auto name = [&](SpectrumSet::Index spectrum, Measurement measurement) {
        job.spectra[spectrum].path = QDir(folder).filePath(fileName(measurement));
    };
    name(SpectrumSet::Ref1, Measurement::Ref1);
    name(SpectrumSet::Ref2, Measurement::Ref2);
    name(SpectrumSet::Target, Measurement::Target);
    if (conditions.blankNamed)
        name(SpectrumSet::Blank, Measurement::Blank);
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    if (!data)
        return std::nullopt;
    const auto outcome = targetResult(data->input);
    const auto* const result = std::get_if<TargetResult>(&outcome);
    if (result == nullptr)
        return std::nullopt;
    return Found{result->a, result->thickness};
}

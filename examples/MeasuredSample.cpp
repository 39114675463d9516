#include "examples/MeasuredSample.h"

#include "app/FourPs.h"
#include "batch/PanelDriver.h"
#include "examples/MixedSampleFiles.h"

#include <QDir>
#include <QRegularExpression>

#include <limits>

namespace
{

double numberAfter(const QString& text, const QString& name)
{
    const QRegularExpression pattern(name + QStringLiteral(" = ([^,]+)"));
    bool isNumber = false;
    const double value = pattern.match(text).captured(1).toDouble(&isNumber);
    return isNumber ? value : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

Conditions exampleConditions()
{
    Conditions conditions = defaultConditions();
    conditions.job.thickness = ThicknessType::SumBySum;
    conditions.job.referencesMinusVictreen = false;
    return conditions;
}

Conditions defaultConditions()
{
    Conditions conditions;
    conditions.job.calculateLcf = false;
    return conditions;
}

std::optional<Found> measure(Conditions conditions, const MixedSample& sample,
                             const QString& folder, std::optional<std::uint_fast64_t> seed)
{
    if (!writeSample(folder, sample, seed).isEmpty())
        return std::nullopt;
    Job& job = conditions.job;
    const auto name = [&](Job::SpectrumIndex spectrum, Measurement measurement) {
        job.spectra[spectrum].path = QDir(folder).filePath(fileName(measurement));
    };
    name(Job::Ref1, Measurement::Ref1);
    name(Job::Ref2, Measurement::Ref2);
    name(Job::Target, Measurement::Target);
    if (conditions.blankNamed)
        name(Job::Blank, Measurement::Blank);
    FourPs panel;
    if (applyJob(job, panel))
        return std::nullopt;
    const RunReport report = runJob(job, panel);
    if (report.refused)
        return std::nullopt;
    return Found{numberAfter(report.calcRes, QStringLiteral("a")),
                 numberAfter(report.calcRes, QStringLiteral("t/ts"))};
}

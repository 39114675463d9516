#include "batch/TargetRow.h"

#include "batch/GraphPictures.h"
#include "batch/JobFacts.h"
#include "batch/MethodName.h"
#include "results/ResultText.h"
#include "text/Csv.h"

#include <cmath>

namespace
{

void refuse(const QString& reason, TargetRow& row)
{
    if (row.refusal.isEmpty())
        row.refusal = reason;
}

void calculate(const Job& job, const JobData& data, TargetRow& row)
{
    if (job.calculateTarget) {
        const auto outcome = targetResult(data.input);
        if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
            refuse(ResultText::refusal(*refusal), row);
        else
            row.result = std::get<TargetResult>(outcome);
    }
    if (job.calculateLcf) {
        auto outcome = lcfResult(data.input);
        if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
            refuse(ResultText::refusal(*refusal), row);
        else
            row.fit = std::move(std::get<LinearCombination>(outcome));
    }
}

JobResults resultsOf(const TargetRow& row)
{
    JobResults results;
    if (row.result) {
        results.a = row.result->a;
        results.valence = row.result->valence;
    }
    if (row.fit) {
        results.lcfA = row.fit->share1();
        results.lcfValence = row.fitValence;
    }
    return results;
}

void drawGraphs(const Job& job, const JobData& data, TargetRow& row)
{
    const PictureFiles files =
        drawTargetGraphs(row.target, data.settings, data.input, row.fit ? &*row.fit : nullptr,
                         {job.output.path, languageName(job)});
    row.pictures = files.written;
    row.notWritten = files.failed.value(0);
}

} // namespace

bool TargetRow::isGood() const
{
    return refusal.isEmpty() && areFinite(resultsOf(*this));
}

QString languageName(const Job& job)
{
    return job.language == Language::Japanese ? QStringLiteral("ja") : QStringLiteral("en");
}

TargetRow refusedTarget(const QString& name, const QString& reason)
{
    TargetRow row;
    row.target = name;
    row.refusal = reason;
    return row;
}

TargetRow analyseTarget(const Job& job, const JobData& common, const OpenTarget& target)
{
    QString error;
    const std::optional<JobData> data = withTarget(common, target, error);
    TargetRow row;
    if (!data) {
        row = refusedTarget(target.name, error);
        row.isRead = false;
        return row;
    }
    row.target = target.name;
    const AXafsData& spectrum = *data->spectra[SpectrumSet::Target];
    row.edgeJump = spectrum.edgeJump();
    row.edgeJumpNoC = spectrum.edgeJumpNoC();
    calculate(job, *data, row);
    if (row.fit)
        row.fitValence = row.fit->valence(data->settings.valences);
    row.figures =
        targetFigures(*data, row.result ? &*row.result : nullptr, row.fit ? &*row.fit : nullptr);
    if (job.pictures)
        drawGraphs(job, *data, row);
    for (const JobError& doubt : doubtsBefore(factsOf(job, *data)))
        row.warnings += doubt.reason;
    for (const JobError& doubt : doubtsAfter(resultsOf(row)))
        row.warnings += doubt.reason;
    row.warnings += row.figures.doubts;
    return row;
}

QByteArrayList targetColumns()
{
    QByteArrayList columns{"target",  "method",    "a",         "valence",       "t_ts",
                           "sbys",    "mean",      "ls_a",      "ls_b",          "ls_a_nb",
                           "ls_b_nb", "vic2",      "edge_jump", "edge_jump_noc", "lcf_w1",
                           "lcf_w2",  "lcf_const", "lcf_a",     "lcf_valence",   "lcf_r_factor"};
    return columns << "refusal" << figureColumns() << "warnings";
}

QByteArrayList targetFields(const TargetRow& row)
{
    using Known = std::optional<double>;
    const TargetResult found = row.result.value_or(TargetResult());
    const ThicknessRatios ratios = found.ratios.value_or(ThicknessRatios());
    const bool hasThickness = row.result && found.method != Method::ThreePoint;
    const auto ofResult = [&](double value) { return row.result ? Known(value) : Known(); };
    const auto ofRatios = [&](double value) { return found.ratios ? Known(value) : Known(); };
    const auto ofFit = [&](auto value) { return row.fit ? Known(value(*row.fit)) : Known(); };
    QByteArrayList fields{row.target.toUtf8(), row.result ? methodName(found.method) : ""};
    for (const Known& number :
         {ofResult(found.a), ofResult(found.valence),
          hasThickness ? Known(found.thickness) : Known(), ofRatios(ratios.trSbyS),
          ofRatios(ratios.trMean), ofRatios(ratios.trLsA), ofRatios(ratios.trLsB),
          ofRatios(ratios.trLsANB), ofRatios(ratios.trLsBNB), ofRatios(ratios.trVic2), row.edgeJump,
          row.edgeJumpNoC, ofFit([](const LinearCombination& fit) { return fit.p1; }),
          ofFit([](const LinearCombination& fit) { return fit.p2; }),
          ofFit([](const LinearCombination& fit) { return fit.p3; }),
          ofFit([](const LinearCombination& fit) { return fit.share1(); }), row.fitValence,
          ofFit([](const LinearCombination& fit) { return fit.rFactor; })})
        fields += csv::number(number);
    return fields << row.refusal.toUtf8() << figureFields(row.figures)
                  << row.warnings.join(QStringLiteral("; ")).toUtf8();
}

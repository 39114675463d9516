#include "batch/JobRun.h"

#include "results/HistogramFile.h"
#include "results/ResultFile.h"
#include "results/ResultText.h"

#include <algorithm>
#include <cmath>

namespace
{

/// As the message pane shows a line.
void tell(const QString& line, RunReport& report)
{
    report.messages += line.simplified();
}

void refuse(const QString& line, RunReport& report)
{
    tell(line, report);
    report.refused = true;
}

struct MapOutput {
    MapResults results;
    HistogramCounts valence;
    HistogramCounts thickness;
};

void writeMap(const JobFilePath& file, const JobData& data, const MapRun& run,
              const MapOutput& output, RunReport& report)
{
    const QString& path = file.path;
    const WriteOutcome outcome = writeResultFile(path, data.maps[run.gridRow].header,
                                                 output.results, data.settings.valences);
    if (outcome == WriteOutcome::Written)
        report.written += path;
    else
        refuse(ResultText::notWritten(path, outcome), report);
    report.resultNotWritten = outcome != WriteOutcome::Written;
    for (const auto& [histogram, tag] : {std::pair(&output.valence, valenceHistogramTag),
                                         std::pair(&output.thickness, thicknessHistogramTag)}) {
        const QString name = QString::fromLatin1(tag);
        if (writeHistogramFile(*histogram, path, name))
            report.written += histogramFile(path, name);
    }
}

void runMap(const Job& job, const JobData& data, RunReport& report)
{
    MapOutput output;
    const MapRun run = mapResult(data.input, data.mapSources(), output.results,
                                 {output.valence, output.thickness, data.settings.valenceHistogram,
                                  data.settings.thicknessHistogram, data.settings.valences});
    for (const QString& line : ResultText::lines(run))
        tell(line, report);
    report.map =
        QStringLiteral("%1 x %2 pixels").arg(output.results.columns).arg(output.results.rows);
    if (run.refusal)
        return refuse(ResultText::mapRefusal(*run.refusal), report);
    const PixelArray<double>& a = output.results.a;
    report.results.anyFinitePixel =
        std::any_of(a.begin(), a.end(), [](double value) { return std::isfinite(value); });
    if (!job.mapResult.path.isEmpty())
        writeMap(job.mapResult, data, run, output, report);
}

void runTarget(const JobData& data, RunReport& report)
{
    const auto outcome = targetResult(data.input);
    if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
        return refuse(ResultText::refusal(*refusal), report);
    const auto& result = std::get<TargetResult>(outcome);
    for (const QString& line : ResultText::lines(result))
        tell(line, report);
    report.calcRes = ResultText::target(result);
    report.results.a = result.a;
    report.results.valence = result.valence;
}

void runLcf(const JobData& data, RunReport& report)
{
    const auto outcome = lcfResult(data.input);
    if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
        return refuse(ResultText::refusal(*refusal), report);
    const auto& fit = std::get<LinearCombination>(outcome);
    tell(ResultText::lcfLine(fit), report);
    report.lcfRes = ResultText::lcf(fit, data.settings.valences);
    report.results.lcfA = fit.share1();
    report.results.lcfValence = fit.valence(data.settings.valences);
}

} // namespace

RunReport runJob(const Job& job, const JobData& data)
{
    RunReport report;
    if (job.calculateMap)
        runMap(job, data, report);
    if (job.calculateTarget)
        runTarget(data, report);
    if (job.calculateLcf)
        runLcf(data, report);
    return report;
}

QString reportText(const Job& job, const RunReport& report)
{
    QString text;
    for (const QString& line : report.messages)
        text += line + QLatin1Char('\n');
    if (job.calculateMap)
        text += QStringLiteral("Map: ") + report.map + QLatin1Char('\n');
    if (job.calculateTarget)
        text += QStringLiteral("CalcRes: ") + report.calcRes + QLatin1Char('\n');
    if (job.calculateLcf)
        text += QStringLiteral("LCFRes: ") + report.lcfRes + QLatin1Char('\n');
    return text;
}

#include "batch/PanelDriver.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "system/ReadableFile.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace
{

void type(QLineEdit* edit, const QString& text)
{
    edit->setText(text);
    emit edit->editingFinished();
}

void typeIfGiven(QLineEdit* edit, const QString& text)
{
    if (!text.isEmpty())
        type(edit, text);
}

void clickTo(QAbstractButton* button, bool checked)
{
    if (button->isChecked() != checked)
        button->click();
}

void setPoints(const std::vector<JobPoint>& points, FourPs& panel)
{
    for (int i = 0; i < panel.ePoints.size(); ++i) {
        const auto row = static_cast<std::size_t>(i);
        const bool given = row < points.size();
        AEPoint* widgets = panel.ePoints[i];
        type(widgets->Energy, given ? points[row].energy : QString());
        clickTo(widgets->UseCB, given && points[row].use);
        clickTo(widgets->TRatCB, given && points[row].tRatio);
        if (given && points[row].vPoint)
            widgets->VPointCB->click();
    }
}

QAbstractButton* thicknessButton(ThicknessType type, const FourPs& panel)
{
    switch (type) {
    case ThicknessType::SumBySum:
        return panel.TRSbyS;
    case ThicknessType::Mean:
        return panel.TRMean;
    case ThicknessType::LeastSquares:
        return panel.TRLSquare;
    case ThicknessType::LeastSquaresNoBlank:
        return panel.TRLSquareNB;
    case ThicknessType::EdgeJumps:
        break;
    }
    return panel.TRVic2;
}

void setConditions(const Job& job, FourPs& panel)
{
    if (job.thickness)
        thicknessButton(*job.thickness, panel)->click();
    if (job.referencesMinusVictreen)
        clickTo(panel.UseVicCB, *job.referencesMinusVictreen);
    if (job.targetMinusVictreen)
        clickTo(panel.UseVicForTargetCB, *job.targetMinusVictreen);
    if (job.victreenIsPre)
        (*job.victreenIsPre ? panel.TheVicIs1 : panel.TheVicIs2)->click();
    if (job.exactMethod)
        (*job.exactMethod ? panel.TypeTMKisExact : panel.TypeTMKisLS)->click();
}

/// Names a file in a selector, if the job gives one.
/// @param valid    whether what the selector's owner has read is of use
/// @param missing  what there is none of otherwise
/// @param refusal  is set while the file is named, where it is not taken
std::optional<JobError> nameFile(const JobFilePath& given, AFileSelect* select,
                                 const std::function<bool()>& valid, const QString& missing,
                                 const QString& refusal)
{
    if (given.path.isEmpty())
        return std::nullopt;
    if (const QString reason = whyUnreadable(given.path); !reason.isEmpty())
        return JobError{given.line, QStringLiteral("cannot open %1: %2").arg(given.path, reason)};
    select->setFile(given.path);
    if (!refusal.isEmpty())
        return JobError{given.line, refusal};
    if (!valid())
        return JobError{given.line, QStringLiteral("no %1 in %2").arg(missing, given.path)};
    return std::nullopt;
}

std::optional<JobError> nameFiles(const Job& job, const FourPs& panel)
{
    QString refusal;
    QObject naming; // the connections end with it
    const auto keep = [&refusal](const QString& reason) { refusal = reason; };
    for (std::size_t i = 0; i < job.spectra.size(); ++i) {
        AXafsFileSelect* const select = panel.xafsSelects[static_cast<int>(i)];
        const auto valid = [select] { return select->isValid(); };
        QObject::connect(select, &AXafsFileSelect::refusedData, &naming, keep);
        if (auto error =
                nameFile(job.spectra[i], select, valid, QStringLiteral("spectrum"), refusal))
            return error;
    }
    for (std::size_t i = 0; job.points && i < job.points->size(); ++i) {
        const AEPoint* const row = panel.ePoints[static_cast<int>(i)];
        const auto valid = [row] { return row->mapData().valid; };
        QObject::connect(row, &AEPoint::refusedData, &naming, keep);
        if (auto error = nameFile((*job.points)[i].map, row->MapFile, valid,
                                  QStringLiteral("2D data with axes"), refusal))
            return error;
    }
    return std::nullopt;
}

/// A refused map leaves the earlier result file alone: "Write" would fill it with nothing.
void runMap(const Job& job, FourPs& panel, RunReport& report)
{
    panel.SaveFSelect->FileName->setText(job.mapResult.path);
    panel.CalcMapB->click();
    if (report.refused)
        return;
    const PixelArray<double>& a = panel.lastMap().a;
    report.results.anyFinitePixel =
        std::any_of(a.begin(), a.end(), [](double value) { return std::isfinite(value); });
    if (job.mapResult.path.isEmpty())
        return;
    panel.write();
    report.resultNotWritten = !report.written.contains(job.mapResult.path);
}

void runTarget(FourPs& panel, RunReport& report)
{
    const bool refused = std::exchange(report.refused, false);
    panel.CalcTargetB->click();
    if (!report.refused) {
        report.results.a = panel.lastA();
        report.results.valence = panel.lastValence();
    }
    report.refused = report.refused || refused;
}

void runLcf(FourPs& panel, RunReport& report)
{
    const std::size_t before = panel.fits().size();
    panel.LCFB->click();
    if (panel.fits().size() > before) {
        report.results.lcfA = panel.fits().back().lcfA;
        report.results.lcfValence = panel.fits().back().lcfValence;
    }
}

} // namespace

std::optional<JobError> applyJob(const Job& job, FourPs& panel)
{
    typeIfGiven(panel.EdgeE, job.edge);
    typeIfGiven(panel.PreEEndDE, job.preEdgeEnd);
    typeIfGiven(panel.PostEStartDE, job.postEdgeStart);
    typeIfGiven(panel.Valence1, job.valence1);
    typeIfGiven(panel.Valence2, job.valence2);
    if (job.points)
        setPoints(*job.points, panel);
    setConditions(job, panel);
    return nameFiles(job, panel);
}

RunReport runJob(const Job& job, FourPs& panel)
{
    RunReport report;
    QObject run; // the connections end with it
    QObject::connect(&panel, &FourPs::messageAppended, &run,
                     [&report](const QString& line) { report.messages += line; });
    QObject::connect(&panel, &FourPs::refused, &run, [&report] { report.refused = true; });
    QObject::connect(&panel, &FourPs::written, &run,
                     [&report](const QString& path) { report.written += path; });
    if (job.calculateMap)
        runMap(job, panel, report);
    if (job.calculateTarget)
        runTarget(panel, report);
    if (job.calculateLcf)
        runLcf(panel, report);
    const MapResults& map = panel.lastMap();
    report.map = QStringLiteral("%1 x %2 pixels").arg(map.columns).arg(map.rows);
    report.calcRes = panel.CalcRes->text();
    report.lcfRes = panel.LCFRes->text();
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

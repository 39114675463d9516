#include "batch/PanelDriver.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"

#include <QFileInfo>

#include <functional>

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
std::optional<JobError> nameFile(const JobFilePath& given, AFileSelect* select,
                                 const std::function<bool()>& valid, const QString& missing)
{
    if (given.path.isEmpty())
        return std::nullopt;
    const QFileInfo file(given.path);
    if (!file.isFile() || !file.isReadable())
        return JobError{given.line, QStringLiteral("cannot open %1").arg(given.path)};
    select->setFile(given.path);
    if (!valid())
        return JobError{given.line, QStringLiteral("no %1 in %2").arg(missing, given.path)};
    return std::nullopt;
}

std::optional<JobError> nameFiles(const Job& job, const FourPs& panel)
{
    for (std::size_t i = 0; i < job.spectra.size(); ++i) {
        AXafsFileSelect* const select = panel.xafsSelects[static_cast<int>(i)];
        const auto valid = [select] { return select->isValid(); };
        if (auto error = nameFile(job.spectra[i], select, valid, QStringLiteral("spectrum")))
            return error;
    }
    for (std::size_t i = 0; job.points && i < job.points->size(); ++i) {
        const AEPoint* const row = panel.ePoints[static_cast<int>(i)];
        const auto valid = [row] { return row->mapData().valid; };
        if (auto error = nameFile((*job.points)[i].map, row->MapFile, valid,
                                  QStringLiteral("2D data with axes")))
            return error;
    }
    return std::nullopt;
}

void runMap(const Job& job, const FourPs& panel)
{
    panel.SaveFSelect->FileName->setText(job.mapResult.path);
    (job.mapResult.path.isEmpty() ? panel.CalcMapB : panel.WriteB)->click();
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
    if (job.calculateMap)
        runMap(job, panel);
    if (job.calculateTarget)
        panel.CalcTargetB->click();
    if (job.calculateLcf)
        panel.LCFB->click();
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

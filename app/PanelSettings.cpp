#include "app/PanelSettings.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "jobs/JobSettings.h"

#include <QLocale>

namespace
{

void type(QLineEdit* edit, const QString& text)
{
    edit->setText(text);
    emit edit->editingFinished();
}

/// The shortest text that is read as the number again.
QString numberText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

void type(QLineEdit* edit, double value)
{
    type(edit, numberText(value));
}

void clickTo(QAbstractButton* button, bool checked)
{
    if (button->isChecked() != checked)
        button->click();
}

void setPoints(const std::vector<ChosenPoint>& points, const FourPs& panel)
{
    for (int i = 0; i < panel.ePoints.size(); ++i) {
        const auto row = static_cast<std::size_t>(i);
        const ChosenPoint point = row < points.size() ? points[row] : ChosenPoint{};
        AEPoint* widgets = panel.ePoints[i];
        type(widgets->Energy, point.energy ? numberText(*point.energy) : QString());
        clickTo(widgets->UseCB, point.use);
        clickTo(widgets->TRatCB, point.tRatio);
        if (point.vPoint)
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

void setConditions(const Conditions& conditions, const FourPs& panel)
{
    thicknessButton(conditions.thickness, panel)->click();
    clickTo(panel.UseVicCB, conditions.referencesMinusVictreen);
    clickTo(panel.UseVicForTargetCB, conditions.targetMinusVictreen);
    (conditions.victreenIsPre ? panel.TheVicIs1 : panel.TheVicIs2)->click();
    (conditions.exact ? panel.TypeTMKisExact : panel.TypeTMKisLS)->click();
}

void setHistogram(const HistogramSettings& settings, QLineEdit* from, QLineEdit* to,
                  QLineEdit* boxes, QAbstractButton* automatic)
{
    type(from, settings.first);
    type(to, settings.last);
    type(boxes, settings.boxes);
    clickTo(automatic, settings.autoRange);
}

void nameFiles(const AnalysisFiles& files, const FourPs& panel)
{
    for (std::size_t i = 0; i < files.spectra.size(); ++i)
        if (!files.spectra[i].isEmpty())
            panel.xafsSelects[static_cast<int>(i)]->setFile(files.spectra[i]);
    for (std::size_t i = 0; i < files.maps.size(); ++i)
        if (!files.maps[i].isEmpty())
            panel.ePoints[static_cast<int>(i)]->MapFile->setFile(files.maps[i]);
}

void forgetFiles(const FourPs& panel)
{
    for (AXafsFileSelect* select : panel.xafsSelects)
        select->forget();
    for (AEPoint* point : panel.ePoints)
        point->forgetMap();
}

/// The texts are other ones of the same numbers.
void showAsTyped(const Job& job, const FourPs& panel)
{
    const std::pair<const char*, QLineEdit*> fields[] = {
        {"edge.energy", panel.EdgeE},
        {"edge.pre_edge_end", panel.PreEEndDE},
        {"edge.post_edge_start", panel.PostEStartDE},
        {"valences.ref1", panel.Valence1},
        {"valences.ref2", panel.Valence2},
        {"histogram.valence.from", panel.HgAFrom},
        {"histogram.valence.to", panel.HgATo},
        {"histogram.thickness.from", panel.HgTFrom},
        {"histogram.thickness.to", panel.HgTTo}};
    for (const auto& [key, field] : fields)
        field->setText(job.typed.value(QLatin1String(key), field->text()));
    if (job.points)
        for (std::size_t i = 0; i < job.points->size(); ++i)
            panel.ePoints[static_cast<int>(i)]->Energy->setText((*job.points)[i].energyText);
}

} // namespace

void applySettings(const Settings& settings, const AnalysisFiles& files, FourPs& panel)
{
    type(panel.EdgeE, settings.edge);
    type(panel.PreEEndDE, settings.preEdgeEnd);
    type(panel.PostEStartDE, settings.postEdgeStart);
    type(panel.Valence1, settings.valences.ref1);
    type(panel.Valence2, settings.valences.ref2);
    setPoints(settings.points, panel);
    setConditions(settings.conditions, panel);
    setHistogram(settings.valenceHistogram, panel.HgAFrom, panel.HgATo, panel.HgABoxes,
                 panel.HgAAuto);
    setHistogram(settings.thicknessHistogram, panel.HgTFrom, panel.HgTTo, panel.HgTBoxes,
                 panel.HgTAuto);
    nameFiles(files, panel);
}

void applyJob(const Job& job, const AnalysisFiles& files, FourPs& panel)
{
    panel.fill([&] {
        forgetFiles(panel);
        applySettings(settingsOf(job), {}, panel);
        showAsTyped(job, panel);
        panel.SaveFSelect->FileName->setText(job.mapResult.path);
        nameFiles(files, panel);
    });
}

#include "app/FourPs.h"
#include "app/PanelSettings.h"
#include "input/AEPoint.h"

#include <QMap>
#include <QtTest>

/// The defaults stand in the form and in Settings: these tests are what keeps the two one.
class tst_PanelSettings : public QObject
{
    Q_OBJECT

private slots:
    void freshPanelShowsTheDefaults();
    void everyFieldAndButtonIsADefault();
    void defaultsChangeNothingInAFreshPanel();
    void otherSettingsAreShown();
};

namespace
{

using Texts = QMap<const QLineEdit*, QString>;
using Checks = QMap<const QAbstractButton*, bool>;

/// A number as the form shows it.
QString text(double value)
{
    return QString::number(value, 'g', 6);
}

/// What each field shows that is a setting.
Texts fieldsFor(const Settings& settings, const FourPs& panel)
{
    const HistogramSettings& a = settings.valenceHistogram;
    const HistogramSettings& t = settings.thicknessHistogram;
    Texts texts{{panel.EdgeE, text(settings.edge)},
                {panel.PreEEndDE, text(settings.preEdgeEnd)},
                {panel.PostEStartDE, text(settings.postEdgeStart)},
                {panel.Valence1, text(settings.valences.ref1)},
                {panel.Valence2, text(settings.valences.ref2)},
                {panel.HgAFrom, text(a.first)},
                {panel.HgATo, text(a.last)},
                {panel.HgABoxes, text(a.boxes)},
                {panel.HgTFrom, text(t.first)},
                {panel.HgTTo, text(t.last)},
                {panel.HgTBoxes, text(t.boxes)}};
    for (int i = 0; i < panel.ePoints.size(); ++i) {
        const ChosenPoint& point = settings.points.at(static_cast<std::size_t>(i));
        texts[panel.ePoints[i]->Energy] = point.energy ? text(*point.energy) : QString();
    }
    return texts;
}

Checks buttonsFor(const Settings& settings, const FourPs& panel)
{
    const Conditions& conditions = settings.conditions;
    Checks checks{{panel.TRSbyS, conditions.thickness == ThicknessType::SumBySum},
                  {panel.TRMean, conditions.thickness == ThicknessType::Mean},
                  {panel.TRLSquare, conditions.thickness == ThicknessType::LeastSquares},
                  {panel.TRLSquareNB, conditions.thickness == ThicknessType::LeastSquaresNoBlank},
                  {panel.TRVic2, conditions.thickness == ThicknessType::EdgeJumps},
                  {panel.UseVicCB, conditions.referencesMinusVictreen},
                  {panel.UseVicForTargetCB, conditions.targetMinusVictreen},
                  {panel.TheVicIs1, conditions.victreenIsPre},
                  {panel.TheVicIs2, !conditions.victreenIsPre},
                  {panel.TypeTMKisExact, conditions.exact},
                  {panel.TypeTMKisLS, conditions.leastSquares},
                  {panel.HgAAuto, settings.valenceHistogram.autoRange},
                  {panel.HgTAuto, settings.thicknessHistogram.autoRange}};
    for (int i = 0; i < panel.ePoints.size(); ++i) {
        const ChosenPoint& point = settings.points.at(static_cast<std::size_t>(i));
        checks[panel.ePoints[i]->UseCB] = point.use;
        checks[panel.ePoints[i]->TRatCB] = point.tRatio;
        checks[panel.ePoints[i]->VPointCB] = point.vPoint;
    }
    return checks;
}

void compare(const FourPs& panel, const Settings& settings)
{
    QCOMPARE(static_cast<std::size_t>(panel.ePoints.size()), settings.points.size());
    const Texts texts = fieldsFor(settings, panel);
    for (auto it = texts.constBegin(); it != texts.constEnd(); ++it)
        QVERIFY2(it.key()->text() == it.value(),
                 qPrintable(it.key()->objectName() + QLatin1Char(' ') + it.key()->text()));
    const Checks checks = buttonsFor(settings, panel);
    for (auto it = checks.constBegin(); it != checks.constEnd(); ++it)
        QVERIFY2(it.key()->isChecked() == it.value(), qPrintable(it.key()->objectName()));
}

/// Every text and every checked button, in the order of the widgets.
QStringList all(const FourPs& panel)
{
    QStringList shown;
    for (const QLineEdit* field : panel.findChildren<QLineEdit*>())
        shown += field->text();
    for (const QAbstractButton* button : panel.findChildren<QAbstractButton*>())
        shown += QString::number(button->isChecked());
    return shown;
}

} // namespace

void tst_PanelSettings::freshPanelShowsTheDefaults()
{
    const FourPs panel;
    compare(panel, Settings());
}

void tst_PanelSettings::everyFieldAndButtonIsADefault()
{
    const FourPs panel;
    const Texts texts = fieldsFor(Settings(), panel);
    for (const QLineEdit* field : panel.findChildren<QLineEdit*>())
        QVERIFY2(texts.contains(field) || field->text().isEmpty(), qPrintable(field->objectName()));
    // What is shown of the panel and how the preview is normalized has nothing to do with results.
    const QList<const QAbstractButton*> ofTheGraphs{panel.ShowFourPs, panel.DispCondsB,
                                                    panel.NNone,      panel.NBySubPre,
                                                    panel.NByEJ,      panel.NBy2Vics};
    const Checks checks = buttonsFor(Settings(), panel);
    int settings = 0;
    for (const QAbstractButton* button : panel.findChildren<QAbstractButton*>()) {
        if (!button->isCheckable() || ofTheGraphs.contains(button))
            continue;
        QVERIFY2(checks.contains(button), qPrintable(button->objectName()));
        ++settings;
    }
    QCOMPARE(settings, checks.size());
}

void tst_PanelSettings::defaultsChangeNothingInAFreshPanel()
{
    const FourPs fresh;
    FourPs panel;
    applySettings(Settings(), {}, panel);
    QCOMPARE(all(panel), all(fresh));
}

void tst_PanelSettings::otherSettingsAreShown()
{
    Settings settings;
    settings.edge = 7112.5;
    settings.preEdgeEnd = -30.25;
    settings.postEdgeStart = 80.5;
    settings.valences = {-1.5, 4.25};
    settings.points = {{7100.5, true, true, false},   {7110.25, false, true, false},
                       {7120, true, false, false},    {std::nullopt, true, false, false},
                       {7130, false, false, true},    {7140, true, true, false},
                       {7150.75, true, false, false}, {7160, false, false, false}};
    settings.valenceHistogram = {-1.0, 5.0, 13, true};
    settings.thicknessHistogram = {0.25, 0.75, 7, true};
    settings.conditions = {ThicknessType::Mean, false, true, true, true, false};
    FourPs panel;
    applySettings(settings, {}, panel);
    compare(panel, settings);
    for (const ThicknessType type :
         {ThicknessType::SumBySum, ThicknessType::LeastSquares, ThicknessType::LeastSquaresNoBlank,
          ThicknessType::EdgeJumps}) {
        settings.conditions.thickness = type;
        applySettings(settings, {}, panel);
        compare(panel, settings);
    }
    applySettings(Settings(), {}, panel);
    compare(panel, Settings());
}

QTEST_MAIN(tst_PanelSettings)
#include "tst_PanelSettings.moc"

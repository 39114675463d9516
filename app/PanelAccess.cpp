#include "app/PanelAccess.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"

namespace
{

/// Texts of labels, joined to one name.
QString joined(const QStringList& texts)
{
    QStringList parts;
    for (const QString& text : texts)
        parts.append(text.simplified());
    return parts.join(QStringLiteral(", "));
}

/// Text of the label in a cell of the point table: the titles above, the numbers at the left.
QString labelAt(const FourPs& panel, int row, int column)
{
    return qobject_cast<QLabel*>(panel.CLayout->itemAtPosition(row, column)->widget())->text();
}

void nameTable(const FourPs& panel)
{
    const int lastColumn = panel.CLayout->columnCount() - 1;
    for (int row = 1; row <= panel.ePoints.size(); ++row) {
        const QString number = labelAt(panel, 0, 0) + QLatin1Char(' ') + labelAt(panel, row, 0);
        for (int column = 1; column < lastColumn; ++column) {
            QWidget* cell = panel.CLayout->itemAtPosition(row, column)->widget();
            cell->setAccessibleName(joined({number, labelAt(panel, 0, column)}));
        }
        panel.ePoints[row - 1]->MapFile->nameParts(joined({number, labelAt(panel, 0, lastColumn)}));
    }
    panel.mapFileSelect->nameParts(labelAt(panel, 0, lastColumn));
}

void nameSelectors(const FourPs& panel)
{
    const QVector<AFileSelect*> selectors = {panel.RefFile1, panel.RefFile2, panel.TargetFile,
                                             panel.BlankFile, panel.DispFSelect};
    for (AFileSelect* selector : selectors)
        selector->nameParts(selector->label());
    const QString referenceOf = QStringLiteral("%1, %2");
    panel.Valence1->setAccessibleName(
        referenceOf.arg(panel.RefFile1->label(), panel.Valence1Label->text()));
    panel.Valence2->setAccessibleName(
        referenceOf.arg(panel.RefFile2->label(), panel.Valence2Label->text()));
    panel.SelectedFs->setAccessibleName(
        joined({panel.DispFSelect->label(), panel.RemoveAFile->text()}));
}

void nameResults(const FourPs& panel)
{
    const QString target = panel.TargetLabel->text();
    const QString map = panel.MapLabel->text();
    panel.CalcTargetB->setAccessibleName(joined({target, panel.CalcTargetB->text()}));
    panel.CalcRes->setAccessibleName(joined({panel.ExecHeading->text(), target}));
    panel.LCFRes->setAccessibleName(joined({panel.ExecHeading->text(), panel.LCFB->text()}));
    panel.CalcMapB->setAccessibleName(joined({map, panel.CalcMapB->text()}));
    panel.SaveFSelect->nameParts(joined({map, panel.WriteB->text()}));
    panel.Message->setAccessibleName(panel.ExecHeading->text());
}

void nameHistogram(const FourPs& panel, const QLabel* label, const QVector<QWidget*>& fields)
{
    const QStringList titles = {panel.FromLabel->text(), panel.ToLabel->text(),
                                panel.BoxesLabel->text(), panel.HgAAuto->text()};
    for (int i = 0; i < fields.size(); ++i)
        fields[i]->setAccessibleName(joined({panel.HistLabel->text(), label->text(), titles[i]}));
}

/// A choice is spoken with the label of its row: two rows have a button of the same text.
void nameChoices(const QString& row, const QVector<QAbstractButton*>& buttons)
{
    for (QAbstractButton* button : buttons)
        button->setAccessibleName(joined({row, button->text()}));
}

void nameConditions(const FourPs& panel)
{
    nameChoices(panel.TRTypeLabel->text(),
                {panel.TRSbyS, panel.TRMean, panel.TRLSquare, panel.TRLSquareNB, panel.TRVic2});
    nameChoices(panel.MutTypeLabel->text(), {panel.UseVicCB, panel.TheVicIs1, panel.TheVicIs2});
    nameChoices(panel.OfTargetLabel->text(), {panel.UseVicForTargetCB});
    nameChoices(panel.TMKLabel->text(), {panel.TypeTMKisExact, panel.TypeTMKisLS});
    nameChoices(panel.NormalizeLabel->text(),
                {panel.NNone, panel.NBySubPre, panel.NByEJ, panel.NBy2Vics});
}

void append(QVector<QWidget*>& order, const AFileSelect* selector)
{
    order += {selector->FileName, selector->SelectB, selector->ClearB};
}

void appendSpectra(QVector<QWidget*>& order, const FourPs& panel)
{
    append(order, panel.RefFile1);
    order += panel.Valence1;
    append(order, panel.RefFile2);
    order += panel.Valence2;
    append(order, panel.TargetFile);
    append(order, panel.BlankFile);
    append(order, panel.DispFSelect);
    order += {panel.SelectedFs, panel.RemoveAFile};
}

void appendTable(QVector<QWidget*>& order, const FourPs& panel)
{
    for (const AEPoint* point : panel.ePoints) {
        order += {point->UseCB, point->TRatCB, point->VPointCB, point->Energy,
                  point->Mut1,  point->Mut2,   point->MutT,     point->MutBlank};
        append(order, point->MapFile);
    }
    append(order, panel.mapFileSelect);
}

} // namespace

void nameControls(FourPs& panel)
{
    nameSelectors(panel);
    nameTable(panel);
    nameResults(panel);
    nameHistogram(panel, panel.HgALabel,
                  {panel.HgAFrom, panel.HgATo, panel.HgABoxes, panel.HgAAuto});
    nameHistogram(panel, panel.HgTLabel,
                  {panel.HgTFrom, panel.HgTTo, panel.HgTBoxes, panel.HgTAuto});
    nameConditions(panel);
}

void orderTabs(FourPs& panel)
{
    QVector<QWidget*> order;
    appendSpectra(order, panel);
    order += {panel.EdgeE, panel.PreEEndDE, panel.PostEStartDE, panel.ShowDAB};
    appendTable(order, panel);
    order += {panel.CalcTargetB, panel.CalcRes,    panel.LCFB,    panel.LCFRes,
              panel.DispCondsB,  panel.ShowFourPs, panel.CalcMapB};
    append(order, panel.SaveFSelect);
    order += {panel.WriteB,  panel.Message, panel.HgAFrom, panel.HgATo,    panel.HgABoxes,
              panel.HgAAuto, panel.HgTFrom, panel.HgTTo,   panel.HgTBoxes, panel.HgTAuto};
    order += {panel.TRSbyS,    panel.TRMean,         panel.TRLSquare,         panel.TRLSquareNB,
              panel.TRVic2,    panel.UseVicCB,       panel.UseVicForTargetCB, panel.TheVicIs1,
              panel.TheVicIs2, panel.TypeTMKisExact, panel.TypeTMKisLS,       panel.NNone,
              panel.NBySubPre, panel.NByEJ,          panel.NBy2Vics};
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

void enterMarkedPoint(FourPs& panel)
{
    const auto follow = [&panel] {
        for (const AEPoint* point : qAsConst(panel.ePoints))
            point->VPointCB->setFocusPolicy(point->VPointCB->isChecked() ? Qt::StrongFocus
                                                                         : Qt::ClickFocus);
    };
    for (const AEPoint* point : qAsConst(panel.ePoints))
        QObject::connect(point->VPointCB, &QRadioButton::toggled, &panel, follow);
    follow();
}

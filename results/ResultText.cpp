#include "results/ResultText.h"

#include <QCoreApplication>

QString ResultText::ratios(const ThicknessRatios& ratios)
{
    return QCoreApplication::translate(
               "FourPs", "sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, "
                         "Vic2 = %7")
        .arg(ratios.trSbyS)
        .arg(ratios.trMean)
        .arg(ratios.trLsA)
        .arg(ratios.trLsB)
        .arg(ratios.trLsANB)
        .arg(ratios.trLsBNB)
        .arg(ratios.trVic2);
}

QString ResultText::refusal(const RunRefusal& refusal)
{
    switch (refusal.reason) {
    case Refusal::NoVPoint:
        return QCoreApplication::translate("FourPs", "V Point is not selected.");
    case Refusal::Ref1NotValid:
        return QCoreApplication::translate("FourPs", "Ref File1 is not valid.");
    case Refusal::Ref2NotValid:
        return QCoreApplication::translate("FourPs", "Ref File2 is not valid.");
    case Refusal::TargetNotValid:
        return QCoreApplication::translate("FourPs", "Target File1 is not valid.");
    case Refusal::RowCount:
        // Three rows are accepted too; the text names only the usual number.
        return QCoreApplication::translate("FourPs", "Number of selected data sets %1 is not %2.")
            .arg(refusal.rowsInUse)
            .arg(4);
    case Refusal::NoFitRange:
        return QCoreApplication::translate(
            "FourPs", "Energy Range is not selected, which should by selected by CB of TR.");
    case Refusal::MapTooLarge:
        return QStringLiteral("The map is too large.");
    case Refusal::TooManyBoxes:
        break;
    }
    return QStringLiteral("The number of histogram boxes is too large.");
}

QString ResultText::mapRefusal(const RunRefusal& refusal)
{
    return refusal.reason == Refusal::NoVPoint
               ? QCoreApplication::translate("FourPs", "V Point is not selected")
               : ResultText::refusal(refusal);
}

QString ResultText::target(const TargetResult& result)
{
    if (result.method == Method::ThreePoint)
        return QCoreApplication::translate("FourPs", "3ps: a = %1, Valence = %2")
            .arg(result.a)
            .arg(result.valence);
    return (result.method == Method::FourPointExact
                ? QCoreApplication::translate("FourPs", "a = %1, Valence = %2, t/ts = %3")
                : QCoreApplication::translate("FourPs", "4ps2: a = %1, Valence = %2, t/ts = %3"))
        .arg(result.a)
        .arg(result.valence)
        .arg(result.thickness);
}

QString ResultText::lcfLine(const LinearCombination& fit)
{
    return QCoreApplication::translate("FourPs", "Result of LCF : %1 %2 %3")
        .arg(fit.p1)
        .arg(fit.p2)
        .arg(fit.p3);
}

QString ResultText::lcf(const LinearCombination& fit, const ReferenceValences& valences)
{
    return QCoreApplication::translate("FourPs", "a : (1-a) = %1 : %2,  Valence = %3")
        .arg(fit.share1())
        .arg(fit.share2())
        .arg(fit.valence(valences));
}

QString ResultText::notWritten(const QString& path, WriteOutcome outcome)
{
    return outcome == WriteOutcome::CannotOpen
               ? QCoreApplication::translate("FourPs", "Can't open the file [%1]").arg(path)
               : QStringLiteral("Can't write the file [%1]").arg(path);
}

QStringList ResultText::lines(const TargetResult& result)
{
    QStringList lines;
    if (result.ratios)
        lines += ratios(*result.ratios);
    return lines << target(result);
}

QStringList ResultText::lines(const MapRun& run)
{
    QStringList lines;
    if (run.ratios)
        lines += ratios(*run.ratios);
    return lines;
}

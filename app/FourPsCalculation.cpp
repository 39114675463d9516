#include "app/FourPs.h"

#include "analysis/FourPoint.h"
#include "analysis/ThreePoint.h"

#include <limits>

namespace
{

/// The target's mu-t at the first `count` normalization points; missing points are not-a-number.
std::vector<double> targetAt(const PointRows& table, const PointChoice& choice, std::size_t count)
{
    std::vector<double> result(count, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t i = 0; i < count && i < choice.normalization.size(); ++i)
        result[i] = table[choice.normalization[i]].target();
    return result;
}

} // namespace

void FourPs::calcBoth()
{
    calcMap();
    calcTarget();
    lcf();
}

RunInputs FourPs::runInputs() const
{
    RunInputs inputs;
    inputs.ref1Valid = RefFile1->isValid();
    inputs.ref2Valid = RefFile2->isValid();
    inputs.targetValid = TargetFile->isValid();
    inputs.exactChosen = TypeTMKisExact->isChecked();
    inputs.leastSquaresChosen = TypeTMKisLS->isChecked();
    return inputs;
}

void FourPs::refuse(const QString& text)
{
    appendMessage(text);
    emit refused(text);
}

void FourPs::refuseRun(Refusal refusal, int rowCount, const QString& noVPoint)
{
    switch (refusal) {
    case Refusal::NoVPoint:
        return refuse(noVPoint);
    case Refusal::Ref1NotValid:
        return refuse(tr("Ref File1 is not valid."));
    case Refusal::Ref2NotValid:
        return refuse(tr("Ref File2 is not valid."));
    case Refusal::TargetNotValid:
        return refuse(tr("Target File1 is not valid."));
    case Refusal::RowCount:
        // Three rows are accepted too; the text names only the usual number.
        return refuse(tr("Number of selected data sets %1 is not %2.").arg(rowCount).arg(4));
    }
}

void FourPs::calcTarget()
{
    const PointRows table = rows();
    const PointChoice choice = choosePoints(table);
    const RunDecision decision = decideTargetRun(choice, runInputs());
    if (!decision.method)
        return refuseRun(decision.refusal, choice.count, tr("V Point is not selected."));
    QString text;
    const double a = *decision.method == Method::ThreePoint
                         ? calcThreePoint(table, choice, text)
                         : calcFourPoint(table, choice, *decision.method, text);
    const double valence = meanValence(valence1(), valence2(), a);
    m_lastA = a;
    m_lastValence = valence;
    CalcRes->setText(text);
    appendMessage(text);
}

double FourPs::calcThreePoint(const PointRows& table, const PointChoice& choice, QString& text)
{
    const ThreePoint method(table, choice);
    const std::vector<double> t = targetAt(table, choice, 2);
    const double a = method.fraction(t[0], t[1], table[choice.vPoint].target());
    text = tr("3ps: a = %1, Valence = %2").arg(a).arg(meanValence(valence1(), valence2(), a));
    return a;
}

double FourPs::calcFourPoint(const PointRows& table, const PointChoice& choice, Method method,
                             QString& text)
{
    const bool exact = method == Method::FourPointExact;
    const VPointFraction fraction = vPointFraction(table, choice, thicknessRatio(table));
    TargetScale scale{};
    if (exact) {
        const std::vector<double> t = targetAt(table, choice, 3);
        scale = FourPointExact(table, choice).scale(t[0], t[1], t[2]);
    } else {
        const std::vector<double> t = targetAt(table, choice, choice.normalization.size());
        scale = FourPointLeastSquares(table, choice).scale(t.data());
    }
    const double a = fraction.at(scale, table[choice.vPoint].target());
    text = (exact ? tr("a = %1, Valence = %2, t/ts = %3")
                  : tr("4ps2: a = %1, Valence = %2, t/ts = %3"))
               .arg(a)
               .arg(meanValence(valence1(), valence2(), a))
               .arg(scale.thickness());
    return a;
}

ThicknessType FourPs::thicknessType() const
{
    if (TRSbyS->isChecked())
        return ThicknessType::SumBySum;
    if (TRMean->isChecked())
        return ThicknessType::Mean;
    if (TRLSquare->isChecked())
        return ThicknessType::LeastSquares;
    if (TRLSquareNB->isChecked())
        return ThicknessType::LeastSquaresNoBlank;
    return ThicknessType::EdgeJumps;
}

double FourPs::thicknessRatio(const PointRows& table)
{
    m_ratios = thicknessRatios(table, RefFile1->edgeJump(), RefFile2->edgeJump());
    appendMessage(tr("sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, "
                     "Vic2 = %7")
                      .arg(m_ratios.trSbyS)
                      .arg(m_ratios.trMean)
                      .arg(m_ratios.trLsA)
                      .arg(m_ratios.trLsB)
                      .arg(m_ratios.trLsANB)
                      .arg(m_ratios.trLsBNB)
                      .arg(m_ratios.trVic2));
    return m_ratios.selected(thicknessType());
}

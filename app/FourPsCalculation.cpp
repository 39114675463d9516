#include "app/FourPs.h"

#include "analysis/LinearCombinationFit.h"
#include "analysis/MapSummary.h"
#include "input/AEPoint.h"
#include "results/Histgram.h"
#include "results/ResultText.h"
#include "text/NumberText.h"

#include <QScopedValueRollback>

PointRows FourPs::rows() const
{
    PointRows result;
    for (const AEPoint* point : ePoints)
        result.push_back(point->row());
    return result;
}

SpectrumSet FourPs::spectra() const
{
    SpectrumSet set;
    for (std::size_t i = 0; i < SpectrumSet::count; ++i)
        set.all[i] = xafsSelects[static_cast<int>(i)]->data();
    return set;
}

ReferenceValences FourPs::valences() const
{
    return {numberFromText(Valence1->text()), numberFromText(Valence2->text())};
}

Conditions FourPs::conditions() const
{
    Conditions chosen;
    chosen.thickness = thicknessType();
    chosen.referencesMinusVictreen = UseVicCB->isChecked();
    chosen.targetMinusVictreen = UseVicForTargetCB->isChecked();
    chosen.victreenIsPre = TheVicIs1->isChecked();
    chosen.exact = TypeTMKisExact->isChecked();
    chosen.leastSquares = TypeTMKisLS->isChecked();
    return chosen;
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

AnalysisInput FourPs::input() const
{
    return {rows(), spectra(), conditions(), valences()};
}

void FourPs::fill(const std::function<void()>& change)
{
    {
        const QScopedValueRollback<bool> filling(m_filling, true);
        change();
    }
    forgetResults();
    calcBoth();
}

void FourPs::forgetResults()
{
    m_lastTarget.reset();
    m_lastFit.reset();
    lcfFit.reset();
    CalcRes->clear();
    LCFRes->clear();
    m_highlighted.clear();
    m_missing.reset();
    mapResults = {};
    mapHeader.clear();
    m_mapFiles.clear();
    ++m_mapCount;
    histA->reset();
    histT->reset();
}

void FourPs::calcBoth()
{
    if (m_filling)
        return;
    calcMap();
    calcTarget();
    lcf();
}

void FourPs::refuse(const QString& text)
{
    appendMessage(text);
    emit refused(text);
}

void FourPs::calcTarget()
{
    const auto outcome = targetResult(input());
    emit calculated(Result::Target);
    if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
        return refuse(ResultText::refusal(*refusal));
    const auto& result = std::get<TargetResult>(outcome);
    m_ratios = result.ratios.value_or(m_ratios);
    const QStringList lines = ResultText::lines(result);
    for (int i = 0; i + 1 < lines.size(); ++i)
        appendMessage(lines[i]);
    m_lastTarget = result;
    m_lastA = result.a;
    m_lastValence = result.valence;
    CalcRes->setText(lines.last());
    appendMessage(lines.last());
}

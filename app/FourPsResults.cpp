#include "app/FourPs.h"

#include "results/ResultText.h"
#include "text/NumberText.h"

#include <QFileInfo>
#include <QTextCursor>

namespace
{

/// Names and values, which stand below one another where they are pasted into a table.
class TwoLines
{
public:
    void add(const char* name, const QString& value)
    {
        m_names.append(QString::fromLatin1(name));
        m_values.append(value.simplified());
    }
    /// Nothing where there is no result.
    void add(const char* name, bool there, double value)
    {
        add(name, there ? textFromNumber(value) : QString());
    }

    QString text() const
    {
        const QString tab(QLatin1Char('\t'));
        return m_names.join(tab) + QLatin1Char('\n') + m_values.join(tab) + QLatin1Char('\n');
    }

private:
    QStringList m_names;
    QStringList m_values;
};

} // namespace

void FourPs::appendMessage(const QString& text)
{
    const QString line = text.simplified();
    // The reader may have marked or clicked something: a message never lands in the middle of it.
    Message->moveCursor(QTextCursor::End);
    Message->insertPlainText(line + QLatin1Char('\n'));
    Message->moveCursor(QTextCursor::End);
    emit messageAppended(line);
}

void FourPs::lcf()
{
    auto outcome = lcfResult(input());
    emit calculated(Result::Fit);
    if (const auto* refusal = std::get_if<RunRefusal>(&outcome))
        return refuse(ResultText::refusal(*refusal));
    auto& fit = std::get<LinearCombination>(outcome);
    const ReferenceValences typed = valences();
    const QString name = QFileInfo(TargetFile->path()).fileName();
    auto curve = std::make_unique<FittedSpectrum>();
    curve->points = std::move(fit.curve);
    m_fitTargets.reserve(m_fitTargets.size() + 1);
    lcfVs4ps.push_back({m_lastA, m_lastValence, fit.share1(), fit.valence(typed)});
    m_fitTargets.append(name);
    lcfFit = std::move(curve); // point and curve are of one fit, whatever fails
    appendMessage(ResultText::lcfLine(fit));
    m_lastFit = std::make_unique<LinearCombination>(std::move(fit));
    m_lastFitValence = m_lastFit->valence(typed);
    LCFRes->setText(ResultText::lcf(*m_lastFit, typed));
    repaintDisplays();
}

QString FourPs::resultsAsTable() const
{
    TwoLines lines;
    const auto addFile = [&lines](const char* name, const AXafsFileSelect* select) {
        lines.add(name, QFileInfo(select->path()).fileName());
    };
    addFile("Target", TargetFile);
    addFile("Ref 1", RefFile1);
    addFile("Ref 2", RefFile2);
    addFile("Blank", BlankFile);
    const TargetResult target = m_lastTarget.value_or(TargetResult());
    const bool fourPoints = m_lastTarget && target.method != Method::ThreePoint;
    lines.add("a", m_lastTarget.has_value(), target.a);
    lines.add("Valence", m_lastTarget.has_value(), target.valence);
    lines.add("t/ts", fourPoints, target.thickness);
    const ThicknessRatios ratios = target.ratios.value_or(ThicknessRatios());
    lines.add("sbys", target.ratios.has_value(), ratios.trSbyS);
    lines.add("mean", target.ratios.has_value(), ratios.trMean);
    lines.add("lsA", target.ratios.has_value(), ratios.trLsA);
    lines.add("lsB", target.ratios.has_value(), ratios.trLsB);
    lines.add("lsA(NB)", target.ratios.has_value(), ratios.trLsANB);
    lines.add("lsB(NB)", target.ratios.has_value(), ratios.trLsBNB);
    lines.add("Vic2", target.ratios.has_value(), ratios.trVic2);
    const LinearCombination fit = m_lastFit ? *m_lastFit : LinearCombination();
    lines.add("LCF a", m_lastFit != nullptr, fit.share1());
    lines.add("LCF Valence", m_lastFit != nullptr, m_lastFitValence);
    lines.add("LCF p1", m_lastFit != nullptr, fit.p1);
    lines.add("LCF p2", m_lastFit != nullptr, fit.p2);
    lines.add("LCF p3", m_lastFit != nullptr, fit.p3);
    return lines.text();
}

#include "app/FourPs.h"

#include "results/ResultText.h"

#include <QFileInfo>
#include <QTextCursor>

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
    LCFRes->setText(ResultText::lcf(fit, typed));
    repaintDisplays();
}

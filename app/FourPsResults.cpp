#include "app/FourPs.h"

#include "analysis/LinearCombinationFit.h"
#include "input/AXafsData.h"

#include <QTextCursor>

namespace
{

const AXafsData& recordOf(const AXafsFileSelect* select)
{
    static const AXafsData none;
    return select->data() ? *select->data() : none;
}

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
    const std::optional<LcfRange> range = lcfRange(rows());
    if (!range)
        return refuse(tr("Energy Range is not selected, which should by selected by CB of TR."));
    LinearCombination fit =
        fitLinearCombination(recordOf(RefFile1), recordOf(RefFile2), recordOf(TargetFile), *range);
    const double valence = fit.valence(valence1(), valence2());
    auto curve = std::make_unique<AXafsData>();
    curve->points = std::move(fit.curve);
    lcfVs4ps.push_back({m_lastA, m_lastValence, fit.share1(), valence});
    lcfFit = std::move(curve); // point and curve are of one fit, whatever fails
    appendMessage(tr("Result of LCF : %1 %2 %3").arg(fit.p1).arg(fit.p2).arg(fit.p3));
    LCFRes->setText(
        tr("a : (1-a) = %1 : %2,  Valence = %3").arg(fit.share1()).arg(fit.share2()).arg(valence));
    repaintDisplays();
}

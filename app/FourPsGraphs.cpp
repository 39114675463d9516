#include "app/FourPs.h"

#include "display/DispABase.h"
#include "results/FourPointGraph.h"
#include "results/Histgram.h"
#include "results/HistogramGraph.h"
#include "results/LcfGraph.h"
#include "results/MutsGraph.h"
#include "text/NumberText.h"

namespace
{

// Captions of axes are the same in every language. This one is the text of a label besides, which
// has a translation.
const QString valenceCaption = QStringLiteral("Valence");

AxisEnds typedEnds(const QLineEdit* from, const QLineEdit* to)
{
    return {numberFromText(from->text()), numberFromText(to->text())};
}

} // namespace

void FourPs::clearLCFvs4PS(MouseC* mouse)
{
    Q_UNUSED(mouse)
    lcfVs4ps.clear();
    repaintDisplays();
}

void FourPs::draw(Displays::DispId id, DispABase* panel, QStylePainter* painter)
{
    const ReferenceValences typed = valences();
    switch (id) {
    case Displays::DispRef1:
    case Displays::DispRef2:
    case Displays::DispTarget:
        return; // their selectors paint them
    case Displays::DispMuts:
        return drawMutsGraph(panel, painter, {tr("Eng.[eV]"), tr("mut")}, mutsContent());
    case Displays::DispLCFvs4PS:
        return drawLcfGraph(panel, painter, {tr("LCF"), tr("4ps")}, lcfVs4ps, typed);
    case Displays::DispHistA:
        return drawValenceHistogram(panel, painter, {valenceCaption, tr("Num.")}, *histA,
                                    typedEnds(HgAFrom, HgATo), typed);
    case Displays::DispHistT:
        return drawThicknessHistogram(panel, painter, {tr("Thick."), tr("Num.")}, *histT,
                                      typedEnds(HgTFrom, HgTTo));
    case Displays::DispTA:
        return m_thicknessGraph.draw(panel, painter, {valenceCaption, tr("Thick.")}, mapPoints(),
                                     typed, typedEnds(HgAFrom, HgATo), typedEnds(HgTFrom, HgTTo));
    case Displays::DispM2M3:
        return drawFourPointGraph(panel, painter, {tr("M2"), tr("M3")}, rows(), rhoNow());
    }
}

// A repaint tells nothing in the message pane, so the figures are formed without their report.
double FourPs::rhoNow() const
{
    return thicknessRatios(input()).selected(thicknessType());
}

MapPoints FourPs::mapPoints() const
{
    return {mapResults.a.data(), mapResults.t.data(), mapResults.size(), m_mapCount};
}

MutsContent FourPs::mutsContent() const
{
    MutsContent content;
    content.edge = numberFromText(EdgeE->text());
    content.preEndOffset = numberFromText(PreEEndDE->text());
    content.postStartOffset = numberFromText(PostEStartDE->text());
    content.normalization =
        NBy2Vics->isChecked() ? Normalization::ByTwoLines : Normalization::ByEdgeJump;
    content.rows = rows();
    for (const AXafsFileSelect* select : xafsSelects)
        content.selected.push_back(select->data());
    for (const auto& spectrum : dispData)
        content.displayOnly.push_back(spectrum.get());
    content.chosen = SelectedFs->currentIndex();
    content.fit = lcfFit.get();
    return content;
}

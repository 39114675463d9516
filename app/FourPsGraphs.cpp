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
    GraphFrame& graph = panel->graph;
    switch (id) {
    case Displays::DispRef1:
    case Displays::DispRef2:
    case Displays::DispTarget:
        return; // their selectors paint them
    case Displays::DispMuts:
        panel->setXYTitle(tr("Eng.[eV]"), tr("mut"));
        return drawMutsGraph(*painter, graph, mutsContent());
    case Displays::DispLCFvs4PS:
        panel->setXYTitle(tr("LCF"), tr("4ps"));
        return drawLcfGraph(*painter, graph, lcfVs4ps, typed);
    case Displays::DispHistA:
        panel->setXYTitle(valenceCaption, tr("Num."));
        return drawValenceHistogram(*painter, graph, *histA, typedEnds(HgAFrom, HgATo), typed);
    case Displays::DispHistT:
        panel->setXYTitle(tr("Thick."), tr("Num."));
        return drawThicknessHistogram(*painter, graph, *histT, typedEnds(HgTFrom, HgTTo));
    case Displays::DispTA:
        panel->setXYTitle(valenceCaption, tr("Thick."));
        return m_thicknessGraph.draw(*painter, graph, mapPoints(), typed, typedEnds(HgAFrom, HgATo),
                                     typedEnds(HgTFrom, HgTTo));
    case Displays::DispM2M3:
        panel->setXYTitle(tr("M2"), tr("M3"));
        return drawFourPointGraph(*painter, graph, rows(), rhoNow());
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

#include "app/FourPs.h"

#include "app/MapWindow.h"
#include "display/DispABase.h"
#include "input/AEPoint.h"
#include "input/AXafsData.h"
#include "results/Dot.h"
#include "results/FourPointGraph.h"
#include "results/GraphTables.h"
#include "results/Histgram.h"
#include "results/HistogramGraph.h"
#include "results/LcfGraph.h"
#include "results/MutsGraph.h"
#include "text/NumberText.h"

#include <QFileInfo>

namespace
{

const QColor highlightColor(255, 128, 0);

// Captions of axes are the same in every language. This one is the text of a label besides, which
// has a translation.
const QString valenceCaption = QStringLiteral("Valence");

QString nameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

GraphTable tableOf(const AXafsFileSelect& select, const QString& name)
{
    return previewTable(select.data(), name, nameOf(select.path()));
}

AxisEnds typedEnds(const QLineEdit* from, const QLineEdit* to)
{
    return {numberFromText(from->text()), numberFromText(to->text())};
}

} // namespace

void FourPs::clearLCFvs4PS(MouseC* mouse)
{
    Q_UNUSED(mouse)
    lcfVs4ps.clear();
    m_fitTargets.clear();
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
        m_thicknessGraph.draw(*painter, graph, mapPoints(), typed, typedEnds(HgAFrom, HgATo),
                              typedEnds(HgTFrom, HgTTo));
        return drawHighlighted(*painter, graph.coord);
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

GraphTable FourPs::mutsTable() const
{
    MutsFiles files;
    for (const AXafsFileSelect* select : xafsSelects)
        files.selected.append(nameOf(select->path()));
    for (const auto& spectrum : dispData)
        files.displayOnly.append(nameOf(spectrum->fileName));
    return ::mutsTable(mutsContent(), files);
}

GraphTable FourPs::graphTable(Displays::DispId id) const
{
    switch (id) {
    case Displays::DispRef1:
        return tableOf(*RefFile1, QStringLiteral("Ref 1"));
    case Displays::DispRef2:
        return tableOf(*RefFile2, QStringLiteral("Ref 2"));
    case Displays::DispTarget:
        return tableOf(*TargetFile, QStringLiteral("Target"));
    case Displays::DispMuts:
        return mutsTable();
    case Displays::DispLCFvs4PS:
        return lcfTable(lcfVs4ps, m_fitTargets);
    case Displays::DispHistA:
        return histogramTable(*histA, valenceCaption, m_mapFiles);
    case Displays::DispHistT:
        return histogramTable(*histT, QStringLiteral("Thick."), m_mapFiles);
    case Displays::DispTA:
        return thicknessTable(mapResults, valences(), m_mapFiles);
    case Displays::DispM2M3:
        break;
    }
    return fourPointTable(rows(), rhoNow(), nameOf(RefFile1->path()), nameOf(RefFile2->path()));
}

QStringList FourPs::filesRead() const
{
    QStringList files;
    for (const AXafsFileSelect* select : xafsSelects)
        files.append(select->path());
    for (const auto& spectrum : dispData)
        files.append(spectrum->fileName);
    for (const AEPoint* point : ePoints)
        files.append(point->mapPath());
    files.removeAll(QString());
    return files;
}

MapWindow& FourPs::mapWindow()
{
    if (!m_mapWindow)
        m_mapWindow = std::make_unique<MapWindow>(*this);
    return *m_mapWindow;
}

MapPixels FourPs::mapPixels() const
{
    MapPixels pixels;
    if (mapResults.size() == 0)
        return pixels;
    pixels.columns = mapResults.columns;
    pixels.rows = mapResults.rows;
    pixels.a = mapResults.a.data();
    pixels.t = mapResults.t.data();
    pixels.positions = mapResults.positions;
    pixels.valences = valences();
    pixels.missing = m_missing.get();
    return pixels;
}

MapRanges FourPs::mapRanges() const
{
    const auto boxes = [](const HistogramCounts& histogram, const AxisEnds& typed) {
        return histogram.from < histogram.to ? AxisEnds{histogram.from, histogram.to} : typed;
    };
    return {boxes(*histA, typedEnds(HgAFrom, HgATo)), boxes(*histT, typedEnds(HgTFrom, HgTTo))};
}

void FourPs::highlight(std::vector<std::size_t> pixels)
{
    m_highlighted = std::move(pixels);
    repaintDisplays();
}

// Within the axes: the frame around them is painted already.
void FourPs::drawHighlighted(QPainter& painter, const ChCoord& coord) const
{
    if (m_highlighted.empty())
        return;
    const ReferenceValences typed = valences();
    painter.save();
    painter.setClipRect(QRectF(QPointF(coord.px0, coord.py1), QPointF(coord.px1, coord.py0)));
    painter.setPen(highlightColor);
    for (const std::size_t i : m_highlighted)
        drawDot(painter, dotPixel(coord, typed.mean(mapResults.a[i]), mapResults.t[i]));
    painter.restore();
}

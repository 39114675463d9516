#include "app/FourPs.h"

#include "input/AEPoint.h"
#include "input/AXafsData.h"
#include "text/NumberText.h"

namespace
{

void fit(AXafsData& spectrum, const FitBounds& bounds)
{
    spectrum.setBounds(bounds);
    spectrum.fitVictreens();
}

} // namespace

void FourPs::repaintDisplays()
{
    displays->update();
}

FitBounds FourPs::edgeBounds() const
{
    const double edge = numberFromText(EdgeE->text());
    return {edge + numberFromText(PreEEndDE->text()), edge,
            edge + numberFromText(PostEStartDE->text())};
}

void FourPs::setEdge()
{
    const FitBounds bounds = edgeBounds();
    for (AXafsFileSelect* select : qAsConst(xafsSelects))
        select->setBounds(bounds);
    for (const auto& spectrum : dispData)
        fit(*spectrum, bounds);
    repaintDisplays();
}

void FourPs::dispCalcConditions(bool on)
{
    CConds->setVisible(on);
}

void FourPs::changedUseVic(bool on)
{
    for (AEPoint* point : qAsConst(ePoints))
        point->useVic = on;
    RefFile1->setUseVic(on);
    RefFile2->setUseVic(on);
    refreshColumn(SpectrumSet::Ref1);
    refreshColumn(SpectrumSet::Ref2);
    calcBoth();
}

void FourPs::changedUseVicForTarget(bool on)
{
    for (AEPoint* point : qAsConst(ePoints))
        point->useVicForTarget = on;
    TargetFile->setUseVic(on);
    refreshColumn(SpectrumSet::Target);
    calcBoth();
}

void FourPs::changedUsingVicIs1(bool on)
{
    for (AEPoint* point : qAsConst(ePoints))
        point->vicIsPre = on;
    for (AXafsFileSelect* select : qAsConst(xafsSelects))
        select->setVicIsPre(on);
    for (const auto select :
         {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Target, SpectrumSet::Blank})
        refreshColumn(select);
    calcBoth();
}

QLineEdit* FourPs::mutField(AEPoint* point, SpectrumSet::Index select) const
{
    switch (select) {
    case SpectrumSet::Ref1:
        return point->Mut1;
    case SpectrumSet::Ref2:
        return point->Mut2;
    case SpectrumSet::Target:
        return point->MutT;
    case SpectrumSet::Blank:
        break;
    }
    return point->MutBlank;
}

void FourPs::refreshMut(AEPoint* point, SpectrumSet::Index select, double energy)
{
    double mut = 0.0;
    // An empty field is no energy, not an energy of 0 eV.
    const bool hasEnergy = !point->Energy->text().trimmed().isEmpty();
    if (hasEnergy && xafsSelects[select]->muTAt(energy, mut))
        mutField(point, select)->setText(textFromNumber(mut));
    else
        mutField(point, select)->clear();
    emit mutFilled(ePoints.indexOf(point), select);
}

void FourPs::refreshColumn(SpectrumSet::Index select)
{
    for (AEPoint* point : qAsConst(ePoints))
        refreshMut(point, select, point->energy());
    repaintDisplays();
}

void FourPs::receiveNewEnergy(AEPoint* point, double energy)
{
    for (const auto select :
         {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Target, SpectrumSet::Blank})
        refreshMut(point, select, energy);
    repaintDisplays();
}

void FourPs::receiveNewRef1(const QString& path)
{
    Q_UNUSED(path) // the selector has read the file
    refreshColumn(SpectrumSet::Ref1);
}

void FourPs::receiveNewRef2(const QString& path)
{
    Q_UNUSED(path)
    refreshColumn(SpectrumSet::Ref2);
}

void FourPs::receiveNewTarget(const QString& path)
{
    Q_UNUSED(path)
    refreshColumn(SpectrumSet::Target);
}

void FourPs::receiveNewBlank(const QString& path)
{
    Q_UNUSED(path)
    refreshColumn(SpectrumSet::Blank);
}

void FourPs::receiveNewFile(SpectrumSet::Index select, const QString& path)
{
    switch (select) {
    case SpectrumSet::Ref1:
        receiveNewRef1(path);
        break;
    case SpectrumSet::Ref2:
        receiveNewRef2(path);
        break;
    case SpectrumSet::Target:
        receiveNewTarget(path);
        break;
    case SpectrumSet::Blank:
        receiveNewBlank(path);
        break;
    }
    calcBoth();
}

void FourPs::receiveNewDir(const QString& dir)
{
    for (AEPoint* point : qAsConst(ePoints))
        point->MapFile->setDir(dir);
    for (AXafsFileSelect* select : qAsConst(xafsSelects))
        select->setDir(dir);
    DispFSelect->setDir(dir);
    mapFileSelect->setDir(dir);
}

// A new spectrum makes what is typed for the edge hold for all others, the first one of many: the
// fields are the same when the next one comes.
void FourPs::receiveNewDispFiles(const QStringList& paths)
{
    const FitBounds bounds = edgeBounds();
    dispData.reserve(dispData.size() + static_cast<std::size_t>(paths.size()));
    bool others = false;
    for (const QString& path : paths) {
        auto spectrum = std::make_unique<AXafsData>();
        if (!spectrum->read(path)) {
            emit unread(path);
            continue;
        }
        fit(*spectrum, bounds);
        if (!others)
            setEdge();
        others = true;
        SelectedFs->addItem(path);
        dispData.push_back(std::move(spectrum)); // cannot fail: parallel to the list
        repaintDisplays();
    }
}

void FourPs::removeAFile()
{
    const int index = SelectedFs->currentIndex();
    if (index < 0 || index >= static_cast<int>(dispData.size()))
        return;
    dispData.erase(dispData.begin() + index);
    SelectedFs->removeItem(index);
}

void FourPs::receiveNewPaths(const QStringList& paths)
{
    const int count = qMin(paths.size(), ePoints.size());
    for (int i = 0; i < count; ++i)
        ePoints[i]->MapFile->setFile(paths[i]);
}

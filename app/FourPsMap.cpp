#include "app/FourPs.h"

#include "analysis/MapHistograms.h"
#include "input/AEPoint.h"
#include "results/Histgram.h"
#include "results/ResultFile.h"

#include <QFileInfo>

void FourPs::calcMap()
{
    PointRows counted = rows();
    for (int i = 0; i < ePoints.size(); ++i)
        counted[static_cast<std::size_t>(i)].use &= ePoints[i]->mapData().valid;
    const PointChoice choice = choosePoints(counted);
    const RunDecision decision = decideMapRun(choice, runInputs());
    if (!decision.method)
        return refuseRun(decision.refusal, choice.count, tr("V Point is not selected"));
    calcPixels(*decision.method);
}

// The checks count rows with data; the calculation takes every row in use, and pixels of those
// without data count as missing.
void FourPs::calcPixels(Method method)
{
    MapTask task;
    task.method = method;
    task.points = rows();
    task.choice = choosePoints(task.points);
    for (const AEPoint* point : qAsConst(ePoints))
        task.images.push_back(point->mapData().image());
    const MapData& owner = ePoints[static_cast<int>(task.choice.vPoint)]->mapData();
    task.columns = owner.columns;
    task.rows = owner.rows;
    task.positions = owner.positions;
    const MapHistograms histograms{*histA,     *histT,    histA->settings(), histT->settings(),
                                   valence1(), valence2()};
    if (refuseMap(checkMap(task, mapResults, histograms)))
        return;
    if (method != Method::ThreePoint)
        task.rho = thicknessRatio(task.points);
    if (refuseMap(calculateMap(task, mapResults, histograms)))
        return;
    mapHeader = owner.header;
    ++m_mapCount;
    repaintDisplays();
}

/// Says why there is no map; false where there is one.
bool FourPs::refuseMap(MapOutcome outcome)
{
    if (outcome == MapOutcome::GridTooLarge)
        refuse(QStringLiteral("The map is too large."));
    if (outcome == MapOutcome::TooManyBoxes)
        refuse(QStringLiteral("The number of histogram boxes is too large."));
    return outcome != MapOutcome::Calculated;
}

void FourPs::calcAndWrite()
{
    calcMap();
    write();
}

// A file that is there already is overwritten without a question.
void FourPs::write()
{
    const QString path = SaveFSelect->FileName->text();
    const QString text = QStringLiteral("Writing %1").arg(QFileInfo(path).fileName());
    emit progress(text, 0.0);
    const WriteOutcome outcome =
        writeResultFile(path, mapHeader, mapResults, valence1(), valence2(),
                        [&](double part) { emit progress(text, part); });
    emit progress(text, 1.0);
    if (outcome == WriteOutcome::CannotOpen)
        refuse(tr("Can't open the file [%1]").arg(path));
    if (outcome == WriteOutcome::CannotWrite)
        refuse(QStringLiteral("Can't write the file [%1]").arg(path));
    if (outcome == WriteOutcome::Written)
        emit written(path);
    for (const auto& [histogram, tag] : {std::pair(histA.get(), QStringLiteral("HGAlpha")),
                                         std::pair(histT.get(), QStringLiteral("HGThick"))})
        if (histogram->writeFile(path, tag))
            emit written(HistogramCounts::fileBeside(path, tag));
}

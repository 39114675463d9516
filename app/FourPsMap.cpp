#include "app/FourPs.h"

#include "analysis/MapRun.h"
#include "analysis/MapSummary.h"
#include "input/AEPoint.h"
#include "results/Histgram.h"
#include "results/HistogramFile.h"
#include "results/ResultFile.h"
#include "results/ResultText.h"

#include <QFileInfo>

void FourPs::calcMap()
{
    std::vector<MapSource> sources;
    for (const AEPoint* point : qAsConst(ePoints))
        sources.push_back(point->mapData().source());
    const MapRun run =
        mapResult(input(), sources, mapResults,
                  {*histA, *histT, histA->settings(), histT->settings(), valences()});
    m_ratios = run.ratios.value_or(m_ratios);
    for (const QString& line : ResultText::lines(run))
        appendMessage(line);
    if (run.refusal) {
        emit calculated(Result::Map);
        return refuse(ResultText::mapRefusal(*run.refusal));
    }
    m_highlighted.clear();
    m_missing = std::make_unique<MissingPixels>(rows(), sources, mapResults);
    mapHeader = ePoints[static_cast<int>(run.gridRow)]->mapData().header;
    m_mapFiles.clear();
    for (const AEPoint* point : qAsConst(ePoints)) {
        if (point->UseCB->isChecked() && point->mapData().valid)
            m_mapFiles.append(QFileInfo(point->mapPath()).fileName());
    }
    ++m_mapCount;
    emit calculated(Result::Map);
    repaintDisplays();
}

void FourPs::calcAndWrite()
{
    calcMap();
    write();
}

void FourPs::tellWritten(const QString& path, WriteOutcome outcome)
{
    if (outcome == WriteOutcome::Written)
        emit written(path);
    else
        refuse(ResultText::notWritten(path, outcome));
}

// A file that is there already is overwritten without a question.
void FourPs::write()
{
    const QString path = SaveFSelect->FileName->text();
    const QString text = QStringLiteral("Writing %1").arg(QFileInfo(path).fileName());
    emit progress(text, 0.0);
    const WriteOutcome outcome = writeResultFile(path, mapHeader, mapResults, valences(),
                                                 [&](double part) { emit progress(text, part); });
    emit progress(text, 1.0);
    tellWritten(path, outcome);
    for (const auto& [histogram, tag] : {std::pair(histA.get(), valenceHistogramTag),
                                         std::pair(histT.get(), thicknessHistogramTag)}) {
        const QString name = QString::fromLatin1(tag);
        if (histogram->writeFile(path, name))
            emit written(histogramFile(path, name));
    }
}

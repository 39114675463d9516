#include "app/PanelJob.h"

#include "app/FourPs.h"
#include "formats/FileKind.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "input/MapReader.h"
#include "jobs/JobSettings.h"
#include "jobs/JobWriter.h"
#include "jobs/TargetList.h"
#include "system/InputFile.h"
#include "text/NumberText.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace
{

QString fromTheRoot(const QString& path)
{
    return path.isEmpty() || QDir::isAbsolutePath(path) ? path : QFileInfo(path).absoluteFilePath();
}

/// Reads a panel and keeps the names of what has no place in a job.
class PanelReader
{
public:
    PanelReader(const FourPs& panel, const QString& folder) : m_panel(panel)
    {
        m_job.folder = folder;
        takeFiles();
        takeNumbers();
        takePoints();
        takeConditions();
        takeHistogram({m_panel.HgAFrom, m_panel.HgATo, m_panel.HgABoxes}, *m_panel.HgALabel,
                      &Job::valenceHistogram);
        takeHistogram({m_panel.HgTFrom, m_panel.HgTTo, m_panel.HgTBoxes}, *m_panel.HgTLabel,
                      &Job::thicknessHistogram);
        compareWithFiles();
    }

    SavedJob saved()
    {
        m_lost.removeDuplicates();
        return {jobText(m_job), m_lost};
    }

private:
    struct HistogramFields {
        QLineEdit* from;
        QLineEdit* to;
        QLineEdit* boxes;
    };

    void takeFiles();
    void takeNumbers();
    void takePoints();
    void takeConditions();
    void takeHistogram(const HistogramFields& fields, const QLabel& name, JobHistogram Job::*place);
    void compareWithFiles();
    void compareRow(int row, const PointRow& byFiles);
    void lose(const QString& name) { m_lost.append(name.simplified()); }
    QString number(const QLineEdit* field, const QString& name);

    const FourPs& m_panel;
    Job m_job;
    QStringList m_lost;
};

void PanelReader::takeFiles()
{
    for (std::size_t i = 0; i < m_job.spectra.size(); ++i) {
        const AXafsFileSelect* select = m_panel.xafsSelects[static_cast<int>(i)];
        if (select->isValid())
            m_job.spectra[i].path = fromTheRoot(select->path());
    }
    const bool target = m_panel.xafsSelects[SpectrumSet::Target]->isValid();
    m_job.calculateMap = std::any_of(m_panel.ePoints.begin(), m_panel.ePoints.end(),
                                     [](const AEPoint* point) { return point->mapData().valid; });
    m_job.calculateTarget = m_job.calculateLcf = target || !m_job.calculateMap;
    m_job.mapResult.path = fromTheRoot(m_panel.SaveFSelect->FileName->text());
}

/// Text of a field; words count as 0, as they do in the panel.
QString PanelReader::number(const QLineEdit* field, const QString& name)
{
    QString text = field->text();
    const double value = numberFromText(text);
    if (!std::isfinite(value))
        lose(name);
    if (isJobNumber(text) || !std::isfinite(value))
        return text;
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

void PanelReader::takeNumbers()
{
    m_job.edge = number(m_panel.EdgeE, m_panel.EdgeELabel->text());
    m_job.preEdgeEnd = number(m_panel.PreEEndDE, m_panel.PreEEndDELabel->text());
    m_job.postEdgeStart = number(m_panel.PostEStartDE, m_panel.PostEStartDELabel->text());
    m_job.valence1 = number(m_panel.Valence1, m_panel.Valence1->accessibleName());
    m_job.valence2 = number(m_panel.Valence2, m_panel.Valence2->accessibleName());
}

/// Rows at the end that are empty have no place in a job.
void PanelReader::takePoints()
{
    m_job.points.emplace();
    std::size_t last = 0;
    for (const AEPoint* point : m_panel.ePoints) {
        JobPoint row;
        row.use = point->UseCB->isChecked();
        row.tRatio = point->TRatCB->isChecked();
        row.vPoint = point->VPointCB->isChecked();
        const QString energy = number(point->Energy, point->Energy->accessibleName());
        row.energy = std::isfinite(numberFromText(energy)) ? energy : QStringLiteral("0");
        row.energyText = row.energy;
        if (point->mapData().valid)
            row.map.path = fromTheRoot(point->mapPath());
        m_job.points->push_back(row);
        if (row.use || row.tRatio || row.vPoint || !row.map.path.isEmpty() ||
            !point->Energy->text().isEmpty())
            last = m_job.points->size();
    }
    m_job.points->resize(last);
}

void PanelReader::takeConditions()
{
    m_job.thickness = m_panel.thicknessType();
    m_job.referencesMinusVictreen = m_panel.UseVicCB->isChecked();
    m_job.targetMinusVictreen = m_panel.UseVicForTargetCB->isChecked();
    m_job.victreenIsPre = m_panel.TheVicIs1->isChecked();
    m_job.exactMethod = m_panel.TypeTMKisExact->isChecked();
}

/// A histogram that a job refuses is left out: the boxes of the start stand in its place.
void PanelReader::takeHistogram(const HistogramFields& fields, const QLabel& name,
                                JobHistogram Job::*place)
{
    constexpr double mostBoxes = 1e7;
    const double boxes = numberFromText(fields.boxes->text());
    JobHistogram histogram;
    histogram.from = number(fields.from, fields.from->accessibleName());
    histogram.to = number(fields.to, fields.to->accessibleName());
    if (std::isfinite(boxes) && std::abs(boxes) <= mostBoxes && std::trunc(boxes) == boxes)
        histogram.boxes = QString::number(static_cast<qlonglong>(boxes));
    Job alone;
    alone.*place = histogram;
    JobError error;
    if (!histogram.boxes.isEmpty() && parseJob(jobText(alone), {}, error))
        m_job.*place = histogram;
    else
        lose(m_panel.HistLabel->text() + QLatin1Char(' ') + name.text());
}

/// What stands in the table and is not what its files, energies and conditions give.
void PanelReader::compareWithFiles()
{
    JobError error;
    const std::optional<Job> job = parseJob(jobText(m_job), m_job.folder, error);
    Settings settings = settingsOf(job.value_or(m_job));
    SpectrumSet spectra;
    bool sameBounds = true;
    const FitBounds bounds = settings.bounds();
    for (std::size_t i = 0; i < SpectrumSet::count; ++i) {
        spectra.all[i] = m_panel.xafsSelects[static_cast<int>(i)]->data();
        if (const FittedSpectrum* spectrum = spectra.all[i])
            sameBounds = sameBounds && spectrum->preEdgeEnd == bounds.preEdgeEnd &&
                         spectrum->edge == bounds.edge &&
                         spectrum->postEdgeStart == bounds.postEdgeStart;
    }
    if (!sameBounds)
        lose(m_panel.VictreenHeading->text());
    for (int row = 0; row < m_panel.ePoints.size(); ++row) {
        const AEPoint* point = m_panel.ePoints[row];
        if (point->mapData().valid && !point->mapEnergy().isEmpty())
            settings.points[static_cast<std::size_t>(row)].energy =
                numberFromText(point->mapEnergy());
    }
    const PointRows table = pointTable(settings.points, spectra, settings.conditions);
    for (int row = 0; row < m_panel.ePoints.size(); ++row)
        compareRow(row, table[static_cast<std::size_t>(row)]);
}

void PanelReader::compareRow(int row, const PointRow& byFiles)
{
    const AEPoint* point = m_panel.ePoints[row];
    const PointRow shown = point->row();
    if (shown.energy != byFiles.energy)
        return lose(point->Energy->accessibleName()); // and its mu-t with it
    const std::tuple<const QLineEdit*, double, double> cells[] = {
        {point->Mut1, shown.mut1, byFiles.mut1},
        {point->Mut2, shown.mut2, byFiles.mut2},
        {point->MutT, shown.mutTarget, byFiles.mutTarget},
        {point->MutBlank, shown.mutBlank, byFiles.mutBlank}};
    for (const auto& [field, is, would] : cells)
        if (is != would && !(std::isnan(is) && std::isnan(would)))
            lose(field->accessibleName());
}

/// What a file is that the reader of the window finds no spectrum in.
FileKind kindOf(const JobFilePath& file)
{
    if (file.source.kind != FileKind::Unknown)
        return file.source.kind;
    if (file.source.columns.any())
        return FileKind::Columns;
    const auto bytes = InputFile::open(file.path);
    return bytes ? fileKindOf(*bytes) : FileKind::Unknown;
}

bool isOfTheWindow(FileKind kind)
{
    return kind == FileKind::Beamline || kind == FileKind::Unknown || kind == FileKind::Empty ||
           kind == FileKind::MapText;
}

/// Why a file cannot be opened; empty where it can.
QString whyClosed(const QString& path)
{
    int number = 0;
    if (InputFile::open(path, &number))
        return {};
    return QStringLiteral("cannot open %1: %2").arg(path, whyNotOpened(number));
}

QString whyNoSpectrum(const QString& path)
{
    if (QString why = whyClosed(path); !why.isEmpty())
        return why;
    AXafsData spectrum;
    if (spectrum.read(path))
        return {};
    return spectrum.refusal.isEmpty() ? QStringLiteral("no spectrum in %1").arg(path)
                                      : spectrum.refusal;
}

QString whyNoMap(const QString& path, FourPs& panel)
{
    if (QString why = whyClosed(path); !why.isEmpty())
        return why;
    const QString text = QStringLiteral("Reading %1").arg(QFileInfo(path).fileName());
    MapReadOptions options;
    options.progress = [&](double part) { emit panel.progress(text, part); };
    MapData map;
    emit panel.progress(text, 0.0);
    const MapReadResult result = readMapData(path, map, options);
    emit panel.progress(text, 1.0);
    if (!result.reason.isEmpty())
        return result.reason;
    return map.valid ? QString() : QStringLiteral("no 2D data with axes in %1").arg(path);
}

} // namespace

SavedJob jobOf(const FourPs& panel, const QString& folder)
{
    return PanelReader(panel, folder).saved();
}

std::optional<ShownFiles> shownFiles(const Job& job, FourPs& panel, JobError& error)
{
    ShownFiles shown;
    std::array<JobFilePath, SpectrumSet::count> spectra = job.spectra;
    if (const auto targets = presentTargets(job); targets.size() == 1) {
        spectra[SpectrumSet::Target] = targets.front();
        spectra[SpectrumSet::Target].source = job.targetSource;
    } else if (!job.targets.empty()) {
        shown.others.append(QStringLiteral("targets"));
    }
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        const JobFilePath& file = spectra[i];
        if (file.path.isEmpty())
            continue;
        if (!isOfTheWindow(kindOf(file))) {
            shown.others.append(QLatin1String(spectrumKeys[i]));
            continue;
        }
        if (const QString why = whyNoSpectrum(file.path); !why.isEmpty()) {
            error = {file.place, why};
            return std::nullopt;
        }
        shown.files.spectra[i] = file.path;
    }
    shown.files.maps = filesOf(job).maps;
    for (std::size_t i = 0; i < shown.files.maps.size(); ++i) {
        const QString& path = shown.files.maps[i];
        if (path.isEmpty())
            continue;
        if (const QString why = whyNoMap(path, panel); !why.isEmpty()) {
            error = {(*job.points)[i].map.place, why};
            return std::nullopt;
        }
    }
    return shown;
}

QStringList tablesNotShown(const Job& job)
{
    Job shown;
    shown.edge = job.edge;
    shown.preEdgeEnd = job.preEdgeEnd;
    shown.postEdgeStart = job.postEdgeStart;
    shown.valence1 = job.valence1;
    shown.valence2 = job.valence2;
    shown.spectra = job.spectra;
    shown.targets = job.targets;
    shown.mapResult = job.mapResult;
    shown.points = job.points;
    shown.thickness = job.thickness;
    shown.referencesMinusVictreen = job.referencesMinusVictreen;
    shown.targetMinusVictreen = job.targetMinusVictreen;
    shown.victreenIsPre = job.victreenIsPre;
    shown.exactMethod = job.exactMethod;
    shown.valenceHistogram = job.valenceHistogram;
    shown.thicknessHistogram = job.thicknessHistogram;
    const auto tables = [](const Job& of) {
        QStringList names;
        for (const QByteArray& line : jobText(of).split('\n'))
            if (line.startsWith('[') && line.endsWith(']'))
                names.append(QString::fromLatin1(line));
        names.removeDuplicates();
        return names;
    };
    QStringList others = tables(job);
    for (const QString& name : tables(shown))
        others.removeAll(name);
    return others;
}

#include "batch/MapsRun.h"

#include "batch/JobFacts.h"
#include "batch/MapImages.h"
#include "batch/MapPictures.h"
#include "batch/TargetRow.h"
#include "results/HistogramFile.h"
#include "results/ResultFile.h"
#include "results/ResultText.h"
#include "system/OrderedHandOver.h"
#include "system/SafeFile.h"
#include "system/Signals.h"
#include "text/NumberText.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace
{

/// A map in the making.
class MapAnalysis
{
public:
    MapAnalysis(const Job& job, const MapJob& map, JobData data, Workers& workers)
        : m_job(job), m_map(map), m_data(std::move(data)), m_workers(workers)
    {
        m_outcome.row.map = map.name;
    }

    MapOutcome outcome()
    {
        calculate();
        if (m_outcome.row.refusal.isEmpty()) {
            describe();
            dropUnfinishedFiles(mapFolder(m_job, m_map));
            if (m_job.mapFiles)
                writeFiles();
            if (m_job.tiff || m_job.hdf5)
                writeImages();
            if (m_job.drawsMaps() && m_outcome.row.refusal.isEmpty())
                drawPictures();
        }
        return std::move(m_outcome);
    }

private:
    void calculate();
    void describe();
    void writeFiles();
    void writeImages();
    bool hasThickness() const { return m_outcome.row.method != Method::ThreePoint; }
    void drawPictures();
    void refuse(const RunRefusal& refusal)
    {
        m_outcome.row.refusal = ResultText::mapRefusal(refusal).simplified();
    }
    void wrote(const QString& path, WriteOutcome written);

    const Job& m_job;
    const MapJob& m_map;
    JobData m_data;
    Workers& m_workers;
    QByteArrayList m_header;
    std::vector<MapSource> m_sources;
    MapResults m_results;
    std::optional<MapSigmas> m_sigmas; ///< where the noise of the images is known
    std::optional<MissingPixels> m_missing;
    HistogramCounts m_valence;
    HistogramCounts m_thickness;
    MapOutcome m_outcome;
};

void MapAnalysis::calculate()
{
    const Settings& settings = m_data.settings;
    m_sources = m_data.mapSources();
    if (auto noise = m_data.mapNoise()) {
        m_sigmas.emplace();
        m_sigmas->noise = std::move(*noise);
    }
    const MapRun run =
        tiltedMapResult(m_data.input, settings.points, m_sources, m_data.tilt, m_results,
                        {m_valence, m_thickness, settings.valenceHistogram,
                         settings.thicknessHistogram, settings.valences},
                        m_workers, m_sigmas ? &*m_sigmas : nullptr);
    for (const QString& line : ResultText::lines(run))
        m_outcome.row.messages += line.simplified();
    if (run.refusal)
        return refuse(*run.refusal);
    m_header = m_data.maps[run.gridRow].header;
    m_outcome.row.method = run.method;
    m_outcome.row.columns = m_results.columns;
    m_outcome.row.rows = m_results.rows;
    m_outcome.row.valences = settings.valences;
    if (m_sigmas)
        m_outcome.row.mean = mapMean(m_data.input, *run.method, m_sigmas->sums,
                                     tableCovariances(m_data.input, m_data.noises));
    // The numbers of the images are not needed any more.
    m_data.maps.clear();
}

void MapAnalysis::describe()
{
    m_missing.emplace(m_data.input.table, m_sources, m_results);
    const auto summary =
        summaryOf(m_results, *m_missing, m_data.settings.valences, m_valence, m_workers);
    if (!summary)
        return refuse({Refusal::MapTooLarge, 0});
    m_outcome.row.summary = *summary;
    const std::size_t found = summary->pixels - summary->missing;
    if (m_sigmas)
        m_outcome.row.meaningless =
            found - std::min(found, static_cast<std::size_t>(m_sigmas->sums.pixels));
}

void MapAnalysis::wrote(const QString& path, WriteOutcome written)
{
    if (written == WriteOutcome::Written) {
        m_outcome.files += path;
        return;
    }
    m_outcome.fileFailed = true;
    if (m_outcome.failure.isEmpty())
        m_outcome.failure = ResultText::notWritten(path, written).simplified();
}

void MapAnalysis::writeFiles()
{
    QDir().mkpath(mapFolder(m_job, m_map));
    const QString result = mapResultFile(m_job, m_map);
    wrote(result,
          writeResultFile(result, m_header, m_results, m_data.settings.valences, {}, m_workers));
    for (const auto& [histogram, tag] : {std::pair(&m_valence, valenceHistogramTag),
                                         std::pair(&m_thickness, thicknessHistogramTag)}) {
        const QString path = mapHistogramFile(m_job, m_map, tag);
        wrote(path,
              writeHistogram(*histogram, path) ? WriteOutcome::Written : WriteOutcome::CannotWrite);
    }
}

void MapAnalysis::writeImages()
{
    const QString folder = mapFolder(m_job, m_map);
    QDir().mkpath(folder);
    const QString stem = folder + QLatin1Char('/') + m_map.name;
    const ResultImages images = resultImages(m_map.name, m_data, m_results, *m_missing,
                                             m_sigmas ? &*m_sigmas : nullptr, hasThickness());
    for (const ResultImage& image : images.images)
        if (m_job.tiff)
            wrote(mapTiffFile(stem, image), writeTiff(mapTiffFile(stem, image), images, image));
    if (m_job.hdf5)
        wrote(mapHdf5File(stem), writeHdf5(mapHdf5File(stem), images));
}

void MapAnalysis::drawPictures()
{
    const Settings& settings = m_data.settings;
    const MapPictureInput input{m_results,
                                m_valence,
                                m_thickness,
                                settings.valenceHistogram,
                                settings.thicknessHistogram,
                                settings.valences,
                                hasThickness(),
                                &*m_missing,
                                m_sigmas ? &*m_sigmas : nullptr,
                                m_map.stack ? unitOfPixels(m_data.pixelWidth)
                                            : PositionUnit::Stage};
    const PictureFiles pictures =
        drawMapPictures(mapFolder(m_job, m_map), m_map.name, input, languageName(m_job), m_workers);
    for (const QString& path : pictures.written)
        wrote(path, WriteOutcome::Written);
    for (const QString& path : pictures.failed)
        wrote(path, WriteOutcome::CannotWrite);
    m_outcome.readOut = mapReadOut(input);
}

/// Bytes of the images of a map that one thread may read beside the others.
constexpr qint64 smallMap = qint64{64} << 20;

bool isSmall(const MapJob& map)
{
    qint64 bytes = 0;
    for (const JobFilePath& image : map.images)
        bytes += image.path.isEmpty() ? 0 : QFileInfo(image.path).size();
    return bytes <= smallMap;
}

/// What the checks look at: a job of this map alone.
Job onlyMap(const Job& job)
{
    Job own = job;
    own.calculateTarget = false;
    own.calculateLcf = false;
    own.calculateMap = true;
    return own;
}

QString meaninglessText(const MapRow& row)
{
    const double mean = row.valences.mean(row.mean->a);
    QString text = QStringLiteral("the valence of %1 of %2 pixels means nothing: their t/ts is not "
                                  "known to a third")
                       .arg(row.meaningless)
                       .arg(row.summary.pixels);
    if (std::isfinite(mean))
        text += QStringLiteral("; the mean of the others is %1").arg(textFromNumber(mean));
    return text;
}

MapOutcome unlessStopped(const Job& job, const JobData& common, const MapJob& map, Workers& workers)
{
    if (stopSignal() != 0) {
        MapOutcome left;
        left.left = true;
        return left;
    }
    QElapsedTimer timer;
    timer.start();
    MapOutcome outcome = analyseMap(job, common, map, workers);
    outcome.seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    return outcome;
}

} // namespace

QString mapFolder(const Job& job, const MapJob& map)
{
    return QDir(job.output.path).filePath(QStringLiteral("maps/") + map.name);
}

QString mapResultFile(const Job& job, const MapJob& map)
{
    return mapFolder(job, map) + QLatin1Char('/') + map.name + QStringLiteral(".dat");
}

QString mapHistogramFile(const Job& job, const MapJob& map, const char* tag)
{
    return mapFolder(job, map) + QLatin1Char('/') + map.name + QLatin1Char('_') +
           QLatin1String(tag) + QStringLiteral(".dat");
}

MapOutcome analyseMap(const Job& job, const JobData& common, const MapJob& map, Workers& workers)
{
    JobError error;
    QStringList warnings;
    std::optional<JobData> data = map.stack ? withStack(common, map, error, warnings, workers)
                                            : withImages(common, map.images, error, workers);
    if (!data) {
        MapOutcome refused;
        refused.row.map = map.name;
        // As the job names the file, wherever the job is.
        refused.row.refusal = error.reason.remove(job.folder + QLatin1Char('/'));
        return refused;
    }
    const std::vector<std::optional<Digest>> images = data->imageDigests;
    for (const JobError& doubt : doubtsBefore(factsOf(onlyMap(job), *data)))
        warnings += doubt.reason;
    MapOutcome outcome = MapAnalysis(job, map, std::move(*data), workers).outcome();
    outcome.images = images;
    outcome.row.warnings = warnings;
    if (outcome.row.refusal.isEmpty()) {
        JobResults results;
        results.anyFinitePixel = outcome.row.isGood();
        const ReferenceValences& valences = common.settings.valences;
        if (const auto& median = outcome.row.summary.valence.median)
            if (valences.ref1 != valences.ref2)
                results.medianA = (*median - valences.ref2) / (valences.ref1 - valences.ref2);
        for (const JobError& doubt : doubtsAfter(results))
            outcome.row.warnings += doubt.reason;
        if (outcome.row.meaningless > 0)
            outcome.row.warnings += meaninglessText(outcome.row);
    }
    return outcome;
}

bool runMaps(const Job& job, const JobData& common, const std::vector<MapJob>& maps,
             const std::function<bool(const MapJob&, const MapOutcome&)>& use, Workers& workers)
{
    for (auto map = maps.begin(); map != maps.end();) {
        const auto next = std::find_if_not(map, maps.end(), isSmall);
        std::size_t used = 0;
        const auto produce = [&](std::size_t i, unsigned, MapOutcome& outcome) {
            outcome = unlessStopped(job, common, map[static_cast<std::ptrdiff_t>(i)], workers);
            return true;
        };
        const auto consume = [&](const MapOutcome& outcome) {
            return use(map[static_cast<std::ptrdiff_t>(used++)], outcome);
        };
        if (!runInOrder<MapOutcome>(workers, static_cast<std::size_t>(next - map), produce,
                                    consume))
            return false;
        map = next;
        if (map != maps.end() && !use(*map, unlessStopped(job, common, *map, workers)))
            return false;
        map += map != maps.end() ? 1 : 0;
    }
    return true;
}

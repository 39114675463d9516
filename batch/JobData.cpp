#include "batch/JobData.h"

#include "analysis/SpectrumChange.h"
#include "batch/SourceFile.h"
#include "batch/SpectrumRecord.h"
#include "formats/StackMaps.h"
#include "input/KnownPositions.h"
#include "input/MapReader.h"
#include "input/SpectrumReader.h"
#include "system/InputFile.h"
#include "text/NumberText.h"

#include <utility>

namespace
{

JobError cannotOpen(const JobFilePath& file, const QString& why)
{
    return {file.place, QStringLiteral("cannot open %1: %2").arg(file.path, why)};
}

/// @param record  nothing where there is no spectrum
/// @return whether there is one
bool takeSpectrum(std::optional<SpectrumRecord> record, std::size_t i, JobData& data)
{
    data.spectra[i] = nullptr;
    if (!record)
        return false;
    AXafsData& spectrum = *record->spectrum;
    if (const double shift = data.shifts[i].shift; shift != 0.0)
        shiftEnergies(spectrum, shift);
    data.warnings[i] = record->warnings;
    data.noises[i] = noiseOf(spectrum, record->readings, data.noise);
    data.gains[i].reset();
    if (data.noise.model != NoiseModel::None && !record->readings.empty())
        data.gains[i] = gainFound(spectrum.points, record->readings, spectrum.preEdgeEnd);
    data.spectra[i] = std::move(record->spectrum);
    return true;
}

std::optional<JobError> readSpectrum(const JobFilePath& file, std::size_t i, JobData& data)
{
    QString why;
    const std::optional<SourceFile> source = SourceFile::open(file.path, why);
    if (!source)
        return cannotOpen(file, why);
    if (source->bytes().size() <= largestSpectrum)
        data.digests[i] = source->digest();
    data.readAs[i] = file.source;
    if (!takeSpectrum(readSpectrumRecord(source->bytes(), file.path, data.readAs[i],
                                         data.settings.bounds(), why),
                      i, data))
        return JobError{file.place, why};
    if (!data.digests[i] || !source->isStill(*data.digests[i]))
        return JobError{file.place, QStringLiteral("%1 changes while it is read").arg(file.path)};
    return std::nullopt;
}

std::optional<JobError> readSpectra(const Job& job, JobData& data)
{
    for (std::size_t i = 0; i < data.spectra.size(); ++i)
        if (!job.spectra[i].path.isEmpty())
            if (auto error = readSpectrum(job.spectra[i], i, data))
                return error;
    return std::nullopt;
}

std::optional<JobError> readImage(const JobFilePath& file, std::size_t i,
                                  const MapReadOptions& options, JobData& data, Workers& workers)
{
    QString why;
    const std::optional<SourceFile> source = SourceFile::open(file.path, why);
    if (!source)
        return cannotOpen(file, why);
    const std::optional<Digest> digest = source->digest();
    const MapReadResult result = readMapData(source->bytes(), data.maps[i], options, workers);
    const QString reason = mapReason(result.outcome, file.path);
    if (!reason.isEmpty())
        return JobError{file.place, reason};
    if (!data.maps[i].valid)
        return JobError{file.place, QStringLiteral("no 2D data with axes in %1").arg(file.path)};
    if (!digest || !source->isStill(*digest))
        return JobError{file.place, QStringLiteral("%1 changes while it is read").arg(file.path)};
    data.imageDigests[i] = digest;
    if (!result.energies.isEmpty())
        data.settings.points[i].energy = numberFromText(result.energies.last());
    return std::nullopt;
}

/// @param gains  where the images' variances are wanted
std::optional<JobError> readImages(const std::vector<JobFilePath>& images, JobData& data,
                                   const std::optional<DetectorGains>& gains, Workers& workers)
{
    data.maps.resize(data.settings.points.size());
    data.imageDigests.resize(images.size());
    KnownPositions positions;
    MapReadOptions options;
    options.knownPositions = &positions;
    options.gains = gains;
    for (std::size_t i = 0; i < images.size(); ++i)
        if (!images[i].path.isEmpty())
            if (auto wrong = readImage(images[i], i, options, data, workers))
                return wrong;
    return std::nullopt;
}

std::optional<DetectorGains> wantedGains(const NoiseSettings& noise)
{
    return noise.wantsMapCounts() ? std::optional(noise.gains) : std::nullopt;
}

std::vector<JobFilePath> imagesOf(const Job& job)
{
    std::vector<JobFilePath> images;
    for (std::size_t i = 0; job.points && i < job.points->size(); ++i)
        images.push_back((*job.points)[i].map);
    return images;
}

void prepareInput(JobData& data)
{
    for (std::size_t i = 0; i < data.spectra.size(); ++i)
        data.input.spectra.all[i] = data.spectra[i].get();
    data.input.conditions = data.settings.conditions;
    data.input.valences = data.settings.valences;
    data.input.table = pointTable(data.settings.points, data.input.spectra, data.input.conditions);
}

/// What targets and maps share: all but 2D data, digests of files and the input of calculations.
JobData withoutFiles(const JobData& common)
{
    JobData data;
    data.settings = common.settings;
    data.spectra = common.spectra;
    data.noise = common.noise;
    data.noises = common.noises;
    data.gains = common.gains;
    data.uncertainty = common.uncertainty;
    data.readAs = common.readAs;
    data.alignment = common.alignment;
    data.shifts = common.shifts;
    data.warnings = common.warnings;
    return data;
}

} // namespace

std::vector<MapSource> JobData::mapSources() const
{
    std::vector<MapSource> sources;
    for (const MapData& map : maps)
        sources.push_back(map.source());
    return sources;
}

std::optional<std::vector<MapVariance>> JobData::mapNoise() const
{
    if (noise.model == NoiseModel::None)
        return std::nullopt;
    std::vector<MapVariance> variances(maps.size());
    for (std::size_t i = 0; i < maps.size(); ++i) {
        if (!input.table[i].use)
            continue;
        if (noise.wantsMapCounts() && !maps[i].variance.empty())
            variances[i].each = maps[i].variance.data();
        else if (noise.mapScatter)
            variances[i].all = *noise.mapScatter * *noise.mapScatter;
        else
            return std::nullopt;
    }
    return variances;
}

std::optional<JobData> withTarget(const JobData& common, const OpenTarget& target, QString& error)
{
    JobData data = withoutFiles(common);
    if (data.alignment) {
        const auto shift = data.alignment->ofTarget(target.name, target.foil, error);
        if (!shift)
            return std::nullopt;
        data.shifts[SpectrumSet::Target] = *shift;
    }
    if (!takeSpectrum(
            target.source.spectrum(data.readAs[SpectrumSet::Target], data.settings.bounds(), error),
            SpectrumSet::Target, data))
        return std::nullopt;
    prepareInput(data);
    return data;
}

std::optional<JobData> withImages(const JobData& common, const std::vector<JobFilePath>& images,
                                  JobError& error, Workers& workers)
{
    JobData data = withoutFiles(common);
    for (std::size_t i = 0; i < data.settings.points.size(); ++i)
        data.settings.points[i].use &= i < images.size() && !images[i].path.isEmpty();
    if (auto wrong = readImages(images, data, wantedGains(data.noise), workers)) {
        error = *wrong;
        return std::nullopt;
    }
    prepareInput(data);
    return data;
}

std::optional<JobData> withStack(const JobData& common, const MapJob& map, JobError& error,
                                 QStringList& warnings, Workers& workers)
{
    const JobStack& given = *map.stack;
    FileFault fault;
    const std::unique_ptr<Stack> stack = openStack(given.source, fault);
    JobData data = withoutFiles(common);
    std::vector<std::size_t> rows;
    std::vector<double> energies;
    for (std::size_t i = 0; i < data.settings.points.size(); ++i)
        if (data.settings.points[i].use && data.settings.points[i].energy) {
            rows.push_back(i);
            energies.push_back(*data.settings.points[i].energy);
        }
    std::vector<MapData> images;
    std::optional<FileFault> wrong = fault;
    if (stack)
        wrong = stackMaps(*stack, given.source.path, energies, given.region, images, workers,
                          wantedGains(data.noise));
    if (wrong) {
        error = {given.place, faultText(*wrong)};
        return std::nullopt;
    }
    for (const JobFilePath& file : map.images) {
        const auto bytes = InputFile::open(file.path);
        data.imageDigests.push_back(bytes ? digestOf(*bytes) : std::nullopt);
    }
    warnings = stack->facts().assumed + stack->facts().warnings;
    data.maps.resize(data.settings.points.size());
    for (std::size_t k = 0; k < rows.size(); ++k)
        data.maps[rows[k]] = std::move(images[k]);
    data.pixelWidth = stack->facts().pixelWidth;
    data.pixelHeight = stack->facts().pixelHeight;
    data.tilt = {given.tilt, given.row0 - given.region.y};
    prepareInput(data);
    return data;
}

std::optional<JobData> readJobData(const Job& job, JobError& error)
{
    JobData data;
    data.settings = settingsOf(job);
    data.noise = noiseSettingsOf(job);
    data.readAs[SpectrumSet::Target] = job.targetSource;
    if (job.alignment.any()) {
        data.alignment = Alignment::read(job, data.settings.bounds(), error);
        if (!data.alignment)
            return std::nullopt;
        for (std::size_t i = 0; i < data.shifts.size(); ++i)
            data.shifts[i] = data.alignment->of(static_cast<SpectrumSet::Index>(i));
    }
    std::optional<JobError> wrong = readSpectra(job, data);
    if (!wrong)
        wrong = readImages(imagesOf(job), data, {}, Workers::shared());
    if (wrong) {
        error = *wrong;
        return std::nullopt;
    }
    prepareInput(data);
    if (job.hasTargets())
        data.uncertainty = commonUncertainty(data.input, data.noises, data.shifts);
    return data;
}

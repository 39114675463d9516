#include "batch/JobData.h"

#include "input/KnownPositions.h"
#include "input/MapReader.h"
#include "system/InputFile.h"
#include "text/NumberText.h"

#include <utility>

namespace
{

/// @param openError  0 where the file could be opened
/// @param what       there is none of, where the file was read but is of no use
JobError unusable(const JobFilePath& file, int openError, const QString& refusal,
                  const QString& what)
{
    if (openError != 0)
        return {file.place,
                QStringLiteral("cannot open %1: %2").arg(file.path, whyNotOpened(openError))};
    if (!refusal.isEmpty())
        return {file.place, refusal};
    return {file.place, QStringLiteral("no %1 in %2").arg(what, file.path)};
}

std::optional<JobError> readSpectrum(const JobFilePath& file, std::size_t i, JobData& data)
{
    auto spectrum = std::make_shared<AXafsData>();
    spectrum->setBounds(data.settings.bounds());
    if (!spectrum->read(file.path))
        return unusable(file, spectrum->openError, spectrum->refusal, QStringLiteral("spectrum"));
    data.spectra[i] = std::move(spectrum);
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

std::optional<JobError> readImages(const std::vector<JobFilePath>& images, JobData& data,
                                   Workers& workers)
{
    data.maps.resize(data.settings.points.size());
    KnownPositions positions;
    MapReadOptions options;
    options.knownPositions = &positions;
    for (std::size_t i = 0; i < images.size(); ++i) {
        const JobFilePath& file = images[i];
        if (file.path.isEmpty())
            continue;
        const MapReadResult result = readMapData(file.path, data.maps[i], options, workers);
        if (!data.maps[i].valid)
            return unusable(file, result.openError, result.reason,
                            QStringLiteral("2D data with axes"));
        if (!result.energies.isEmpty())
            data.settings.points[i].energy = numberFromText(result.energies.last());
    }
    return std::nullopt;
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

} // namespace

std::vector<MapSource> JobData::mapSources() const
{
    std::vector<MapSource> sources;
    for (const MapData& map : maps)
        sources.push_back(map.source());
    return sources;
}

std::optional<JobData> withTarget(const JobData& common, const JobFilePath& target, JobError& error)
{
    JobData data;
    data.settings = common.settings;
    data.spectra = common.spectra;
    if (auto wrong = readSpectrum(target, SpectrumSet::Target, data)) {
        error = *wrong;
        return std::nullopt;
    }
    prepareInput(data);
    return data;
}

std::optional<JobData> withImages(const JobData& common, const std::vector<JobFilePath>& images,
                                  JobError& error, Workers& workers)
{
    JobData data;
    data.settings = common.settings;
    data.spectra = common.spectra;
    for (std::size_t i = 0; i < data.settings.points.size(); ++i)
        data.settings.points[i].use &= i < images.size() && !images[i].path.isEmpty();
    if (auto wrong = readImages(images, data, workers)) {
        error = *wrong;
        return std::nullopt;
    }
    prepareInput(data);
    return data;
}

std::optional<JobData> readJobData(const Job& job, JobError& error)
{
    JobData data;
    data.settings = settingsOf(job);
    std::optional<JobError> wrong = readSpectra(job, data);
    if (!wrong)
        wrong = readImages(imagesOf(job), data, Workers::shared());
    if (wrong) {
        error = *wrong;
        return std::nullopt;
    }
    prepareInput(data);
    return data;
}

#include "batch/MapJob.h"

#include "jobs/MapPattern.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

std::vector<JobFilePath> imagesOf(const JobMap& map, const Job& job)
{
    if (map.stack) {
        std::vector<JobFilePath> files;
        for (const QString& file : presentStackFiles(map.stack->source))
            files.push_back({file, map.stack->place});
        return files;
    }
    if (map.pattern.path.isEmpty())
        return map.images;
    std::vector<JobFilePath> images;
    int row = 0;
    for (const JobPoint& point : *job.points) {
        const QString name = mapPattern::filled(map.pattern.path, ++row, point.energyText);
        images.push_back(
            {point.use ? QDir(job.folder).filePath(name) : QString(), map.pattern.place});
    }
    return images;
}

} // namespace

std::optional<std::vector<MapJob>> mapList(const Job& job, JobError& error)
{
    std::vector<MapJob> maps;
    for (const JobMap& given : job.maps) {
        maps.push_back({given.name, given.place, imagesOf(given, job), given.stack});
        const std::vector<JobFilePath>& images = maps.back().images;
        if (given.stack && images.empty()) {
            error = {given.stack->place,
                     QStringLiteral("there is no file %1").arg(given.stack->source.path)};
            return std::nullopt;
        }
        for (std::size_t i = 0; i < images.size(); ++i) {
            if (images[i].path.isEmpty() || QFileInfo(images[i].path).isFile())
                continue;
            error = {images[i].place, QStringLiteral("there is no file %1 for [[point]] %2")
                                          .arg(images[i].path)
                                          .arg(i + 1)};
            return std::nullopt;
        }
    }
    return maps;
}

std::vector<MapJob> presentMaps(const Job& job)
{
    std::vector<MapJob> maps;
    for (const JobMap& given : job.maps) {
        const MapJob map{given.name, given.place, imagesOf(given, job), given.stack};
        if (given.stack && map.images.empty())
            continue;
        if (std::all_of(map.images.begin(), map.images.end(), [](const JobFilePath& image) {
                return image.path.isEmpty() || QFileInfo(image.path).isFile();
            }))
            maps.push_back(map);
    }
    return maps;
}

QStringList imagesOfMaps(const Job& job)
{
    QStringList paths;
    for (const JobMap& map : job.maps)
        for (const JobFilePath& image : imagesOf(map, job))
            if (!image.path.isEmpty())
                paths += image.path;
    return paths;
}

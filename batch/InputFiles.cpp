#include "batch/InputFiles.h"

#include "jobs/AlignmentKeys.h"

#include <QFile>

#include <sys/stat.h>

InputFiles::InputFiles(const Job& job, const QString& jobPath)
    : m_job(job), m_files{{QStringLiteral("the job itself"), jobPath}}
{
    for (std::size_t i = 0; i < spectrumKeys.size(); ++i)
        m_files.push_back({QLatin1String(spectrumKeys[i]), job.spectra[i].path});
    m_files.push_back({QStringLiteral("the table of shifts"), job.alignment.table.path});
    for (std::size_t i = 0; i < spectrumKeys.size(); ++i)
        if (hasFoil(job.alignment, static_cast<SpectrumSet::Index>(i)) &&
            !job.spectra[i].path.isEmpty())
            m_files.push_back({QStringLiteral("the foil of ") + QLatin1String(spectrumKeys[i]),
                               foilFile(job, job.spectra[i].path)});
    for (std::size_t i = 0; job.points && i < job.points->size(); ++i)
        m_files.push_back(
            {QStringLiteral("the map of [[point]] %1").arg(i + 1), (*job.points)[i].map.path});
}

void InputFiles::add(const std::vector<TargetJob>& targets)
{
    for (const TargetJob& target : targets) {
        const QString what = target.region ? QStringLiteral("the stack of the target %1")
                                           : QStringLiteral("the target %1");
        for (const QString& path : target.files())
            m_files.push_back({what.arg(target.path()), path});
    }
    if (!hasFoil(m_job.alignment, SpectrumSet::Target))
        return;
    for (const TargetJob& target : targets) {
        const QString foil = foilFile(m_job, target.path());
        m_files.push_back({QStringLiteral("the foil %1").arg(foil), foil});
    }
}

void InputFiles::add(const std::vector<MapJob>& maps)
{
    for (const MapJob& map : maps)
        for (std::size_t i = 0; i < map.images.size(); ++i)
            m_files.push_back({QStringLiteral("image %1 of the map %2").arg(i + 1).arg(map.name),
                               map.images[i].path});
}

std::optional<InputFiles::Identity> InputFiles::identityOf(const QString& path)
{
    struct stat file = {};
    if (path.isEmpty() || stat(QFile::encodeName(path).constData(), &file) != 0)
        return std::nullopt;
    return Identity(file.st_dev, file.st_ino);
}

QString InputFiles::lostBy(const QString& path)
{
    const auto written = identityOf(path);
    if (!written)
        return {};
    if (m_known.empty())
        for (const File& file : m_files)
            if (const auto read = identityOf(file.path))
                m_known.emplace(*read, file.what);
    const auto found = m_known.find(*written);
    return found == m_known.end() ? QString() : found->second;
}

#pragma once

#include "batch/MapJob.h"
#include "batch/TargetJob.h"
#include "jobs/JobFile.h"

#include <map>
#include <utility>
#include <vector>

#include <sys/types.h>

/// The files that a job reads, known by whatever names and links. There may be many; they are
/// looked at only where something would be written over.
class InputFiles
{
public:
    /// The job itself, its spectra, what aligns them, and the 2D data of its points.
    InputFiles(const Job& job, const QString& jobPath);

    void add(const std::vector<TargetJob>& targets);
    void add(const std::vector<MapJob>& maps);

    /// What would be lost where a path was written; empty if nothing.
    QString lostBy(const QString& path);

private:
    using Identity = std::pair<dev_t, ino_t>;
    struct File {
        QString what;
        QString path;
    };

    static std::optional<Identity> identityOf(const QString& path);

    Job m_job;
    std::vector<File> m_files;
    std::map<Identity, QString> m_known; ///< filled when it is first asked for
};

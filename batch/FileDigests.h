#pragma once

#include "batch/Digest.h"
#include "system/FileState.h"

#include <QString>

#include <map>
#include <memory>
#include <mutex>

/// Digests of files that several targets are made from: each file is read once for as long as it
/// stays as it is. For any number of threads.
class FileDigests
{
public:
    /// @return nothing where the file cannot be read
    std::optional<Digest> of(const QString& path);

    /// Whether the file has not changed since its digest was formed.
    bool isStill(const QString& path);

private:
    struct File {
        std::mutex mutex;
        std::optional<FileState> state;
        std::optional<Digest> digest;
    };

    std::shared_ptr<File> file(const QString& path);

    std::mutex m_mutex;
    std::map<QString, std::shared_ptr<File>> m_files;
};

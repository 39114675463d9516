#include "batch/FileDigests.h"

#include "system/InputFile.h"

#include <QFile>

std::shared_ptr<FileDigests::File> FileDigests::file(const QString& path)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::shared_ptr<File>& known = m_files[path];
    if (!known)
        known = std::make_shared<File>();
    return known;
}

std::optional<Digest> FileDigests::of(const QString& path)
{
    const std::shared_ptr<File> known = file(path);
    const std::lock_guard<std::mutex> lock(known->mutex);
    const std::optional<FileState> state = fileState(QFile::encodeName(path));
    if (state && known->digest && known->state == state)
        return known->digest;
    const auto bytes = InputFile::open(path);
    known->state = state;
    known->digest = bytes ? digestOf(*bytes) : std::nullopt;
    return known->digest;
}

bool FileDigests::isStill(const QString& path)
{
    const std::shared_ptr<File> known = file(path);
    const std::lock_guard<std::mutex> lock(known->mutex);
    return known->state == fileState(QFile::encodeName(path));
}

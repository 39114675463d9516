#include "batch/SourceFile.h"

#include "system/InputFile.h"
#include "system/MemoryBytes.h"

#include <cerrno>

namespace
{

/// The bytes of a file in memory; null where they cannot be read.
std::unique_ptr<ByteSource> bytesInMemory(const ByteSource& file)
{
    PixelArray<char> bytes;
    if (!bytes.resize(static_cast<std::size_t>(file.size()))) {
        errno = ENOMEM;
        return nullptr;
    }
    if (!file.read(bytes.data(), bytes.size(), 0))
        return nullptr;
    return std::make_unique<MemoryBytes>(std::move(bytes));
}

} // namespace

std::optional<SourceFile> SourceFile::open(const QString& path, QString& why)
{
    int error = 0;
    SourceFile source;
    source.m_bytes = InputFile::open(path, &error);
    if (!source.m_bytes) {
        why = whyNotOpened(error);
        return std::nullopt;
    }
    source.m_held = source.m_bytes->size() <= largestHeld;
    if (source.m_held)
        source.m_bytes = bytesInMemory(*source.m_bytes);
    if (!source.m_bytes) {
        why = qt_error_string(errno);
        return std::nullopt;
    }
    return source;
}

#pragma once

#include "batch/Digest.h"
#include "system/ByteSource.h"

#include <QString>

#include <memory>
#include <optional>

/// A file that a job reads, for its analysis and for the digest of its bytes. Both see the same
/// bytes: a file of usual size is read once, into memory; of a larger one isStill() tells
/// afterwards.
class SourceFile
{
public:
    /// Files up to this size are held in memory.
    static constexpr std::int64_t largestHeld = std::int64_t{1} << 24;

    /// @param why  "there is no such file", where nothing comes back
    static std::optional<SourceFile> open(const QString& path, QString& why);

    const ByteSource& bytes() const { return *m_bytes; }

    /// Reads the bytes, for a large file from the disk.
    /// @return nothing where they cannot be read
    std::optional<Digest> digest() const { return digestOf(*m_bytes); }

    /// Whether what was read since the digest was made are its bytes. Reads a large file once more.
    bool isStill(const Digest& digest) const { return m_held || digestOf(*m_bytes) == digest; }

private:
    std::unique_ptr<ByteSource> m_bytes;
    bool m_held = false;
};

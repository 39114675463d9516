#pragma once

#include "system/ByteSource.h"

#include <QByteArray>

#include <cstring>
#include <limits>

/// Bytes as a file; from a certain byte on they cannot be read, as on a disk with a bad block.
class ArrayBytes : public ByteSource
{
public:
    explicit ArrayBytes(const QByteArray& bytes,
                        std::int64_t badFrom = std::numeric_limits<std::int64_t>::max())
        : m_bytes(bytes), m_badFrom(badFrom)
    {
    }

    std::int64_t size() const override { return m_bytes.size(); }
    bool read(char* to, std::size_t count, std::int64_t offset) const override
    {
        const std::int64_t end = offset + static_cast<std::int64_t>(count);
        if (offset < 0 || end > m_bytes.size())
            qFatal("bytes outside of the file are read");
        if (end > m_badFrom)
            return false;
        std::memcpy(to, m_bytes.constData() + offset, count);
        return true;
    }

private:
    QByteArray m_bytes;
    std::int64_t m_badFrom;
};

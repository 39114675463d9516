#pragma once

#include "system/ByteSource.h"
#include "system/PixelArray.h"

#include <cstring>

/// Bytes in memory.
class MemoryBytes : public ByteSource
{
public:
    explicit MemoryBytes(PixelArray<char> bytes) : m_bytes(std::move(bytes)) {}

    std::int64_t size() const override { return static_cast<std::int64_t>(m_bytes.size()); }
    bool read(char* to, std::size_t count, std::int64_t offset) const override
    {
        if (count > 0)
            std::memcpy(to, m_bytes.data() + offset, count);
        return true;
    }

private:
    PixelArray<char> m_bytes;
};

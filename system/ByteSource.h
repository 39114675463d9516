#pragma once

#include <cstddef>
#include <cstdint>

/// A known number of bytes that can be read from any place, by several threads at once.
class ByteSource
{
public:
    ByteSource() = default;
    virtual ~ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    virtual std::int64_t size() const = 0;

    /// Reads bytes that lie within the size.
    /// @return false where not all of them can be read
    virtual bool read(char* to, std::size_t count, std::int64_t offset) const = 0;
};

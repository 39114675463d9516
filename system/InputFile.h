#pragma once

#include "system/ByteSource.h"

#include <memory>

/// A regular file, open for reading, as large as it was when it was opened: what is appended while
/// it is read is not read, and a file that has become shorter cannot be read any more.
class InputFile : public ByteSource
{
public:
    /// Never waits: a folder, a pipe or a device is not opened.
    /// @param path  in the encoding of the file system
    /// @return null for what cannot be opened, or is no regular file
    static std::unique_ptr<InputFile> open(const char* path);
    ~InputFile() override;

    std::int64_t size() const override { return m_size; }
    bool read(char* to, std::size_t count, std::int64_t offset) const override;

private:
    InputFile(int descriptor, std::int64_t size) : m_descriptor(descriptor), m_size(size) {}

    int m_descriptor;
    std::int64_t m_size;
};

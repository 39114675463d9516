#pragma once

#include "system/ByteSource.h"

#include <QString>

#include <memory>

/// A regular file, open for reading, as large as it was when it was opened: what is appended while
/// it is read is not read, and a file that has become shorter cannot be read any more.
class InputFile : public ByteSource
{
public:
    /// Never waits: a folder, a pipe or a device is not opened.
    /// @param error  is set to the error number where nothing comes back: EISDIR for a folder,
    ///               ENODEV for a pipe, a device or a socket
    /// @return null for what cannot be opened, or is no regular file
    static std::unique_ptr<InputFile> open(const QString& path, int* error = nullptr);
    ~InputFile() override;

    std::int64_t size() const override { return m_size; }
    /// Sets errno where it fails: EIO where the file has become shorter.
    bool read(char* to, std::size_t count, std::int64_t offset) const override;

private:
    InputFile(int descriptor, std::int64_t size) : m_descriptor(descriptor), m_size(size) {}

    int m_descriptor;
    std::int64_t m_size;
};

/// Why a file could not be opened ("there is no such file"), from the error number of
/// InputFile::open().
QString whyNotOpened(int error);

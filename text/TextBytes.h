#pragma once

#include "system/ByteSource.h"
#include "system/ReadOutcome.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// Text of bytes in UTF-8, in which a byte order mark is a character like any other. What is no
/// UTF-8 becomes replacement characters.
QString textFromUtf8(std::string_view bytes);

/// A line without its carriage returns, wherever they stand.
/// @param scratch  holds the result where it has to be made; must live as long
std::string_view withoutReturns(std::string_view line, std::string& scratch);

/// The bytes of a text file and where its text begins: UTF-8, or an encoding that keeps ASCII as it
/// is, the rest of which is carried along unread. What a byte order mark shows to be UTF-16 or
/// UTF-32 is converted.
class TextBytes
{
public:
    /// @param memory  bytes that a conversion may take
    TextBytes(const ByteSource& file, std::size_t memory);

    /// Read, TooLarge or Unreadable; only with the first there are bytes.
    ReadOutcome outcome() const { return m_outcome; }
    const ByteSource& bytes() const { return m_converted ? *m_converted : m_file; }
    std::int64_t start() const { return m_start; }

private:
    const ByteSource& m_file;
    std::unique_ptr<ByteSource> m_converted;
    std::int64_t m_start = 0;
    ReadOutcome m_outcome = ReadOutcome::Read;
};

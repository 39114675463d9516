#pragma once

#include "system/ByteSource.h"
#include "system/PixelArray.h"

#include <cstddef>
#include <cstdint>
#include <limits>

/// A line longer than this is no data; a file that has one is refused.
constexpr std::size_t longestLine = std::size_t{4} << 20;

/// Offsets in a text. The lines that begin within belong to the range, wherever they end.
struct LineRange {
    static constexpr std::int64_t toTheEnd = std::numeric_limits<std::int64_t>::max();
    std::int64_t begin = 0;
    std::int64_t end = toTheEnd;
    bool beginsText = true; ///< a line begins at its first byte, whatever stands before
};

/// What came of reading lines.
enum class LinesResult {
    Lines,      ///< there are some
    End,        ///< there are no more
    TooLarge,   ///< a line is longer than longestLine, or memory is refused
    Unreadable, ///< the bytes cannot be read
};

/// Reads ranges of lines; one object serves one thread.
class LineReader
{
public:
    /// Behind the last line of a piece at least so many bytes can be read.
    static constexpr std::size_t padding = 32;

    /// @param bytes       must live as long
    /// @param pieceBytes  they are read in pieces of about this size
    LineReader(const ByteSource& bytes, std::size_t pieceBytes)
        : m_bytes(&bytes), m_piece(pieceBytes)
    {
    }

    /// Goes to the beginning of a range.
    void start(const LineRange& range);

    /// The next whole lines of the range, as they stand in the text: each ends with a line feed,
    /// the last one of the text in any case.
    /// @param first, last  are set where there are lines, and hold until the next call
    LinesResult next(const char*& first, const char*& last);

private:
    LinesResult fill();
    bool beginsWithLongLine() const;
    bool skipBrokenLine();
    bool reachFirstLine();
    const char* linesEnd(bool& last) const;

    const ByteSource* m_bytes;
    std::size_t m_piece;
    LineRange m_range;
    PixelArray<char> m_buffer;
    std::int64_t m_offset = 0; ///< in the text, of the buffer's first byte
    std::size_t m_begin = 0;   ///< what is not yet read of the buffer
    std::size_t m_end = 0;
    bool m_broken = false; ///< the line that the buffer begins with belongs to the range before
    bool m_textEnds = false;
    bool m_done = false;
};

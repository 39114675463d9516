#include "input/MapRange.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace
{

/// A record is shorter than this; so much is read beyond a range to find its last line's end.
constexpr std::size_t usualLine = 4096;

/// Readable bytes behind the last line, one of them for a missing line feed.
constexpr std::size_t padding = 32;

/// Reads until the buffer is full or the file ends. Errors count as its end.
std::size_t readFully(int file, char* buffer, std::size_t size, std::int64_t offset)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n =
            pread(file, buffer + done, size - done, offset + static_cast<std::int64_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += static_cast<std::size_t>(n);
    }
    return done;
}

} // namespace

/// Moves what is left to the front and reads on behind it. False where a line is too long.
bool MapRangeReader::fill()
{
    const std::size_t left = m_end - m_begin;
    std::size_t room = m_piece + usualLine;
    while (room < 2 * left)
        room *= 2;
    if (left > longestMapLine || !m_buffer.resize(room + padding))
        return false;
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, left);
    m_offset += static_cast<std::int64_t>(m_begin);
    m_begin = 0;
    const std::size_t wanted = room - left;
    const std::size_t got = readFully(m_file, m_buffer.data() + left, wanted,
                                      m_offset + static_cast<std::int64_t>(left));
    m_end = left + got;
    m_fileEnds = got < wanted;
    if (m_fileEnds && m_end > 0 && m_buffer[m_end - 1] != '\n')
        m_buffer[m_end++] = '\n';
    return true;
}

/// Drops bytes up to the first line feed. False where the buffer has none.
bool MapRangeReader::skipBrokenLine()
{
    const char* const first = m_buffer.data() + m_begin;
    const void* const feed = std::memchr(first, '\n', m_end - m_begin);
    if (feed == nullptr) {
        m_begin = m_end;
        return false;
    }
    m_begin += static_cast<std::size_t>(static_cast<const char*>(feed) - first) + 1;
    return true;
}

/// End of the whole lines in the buffer that belong to the range.
/// @param last  set when no further line belongs to it
const char* MapRangeReader::linesEnd(const MapRange& range, bool& last) const
{
    const char* const begin = m_buffer.data() + m_begin;
    const char* const end = m_buffer.data() + m_end;
    last = m_fileEnds;
    if (range.end - m_offset <= static_cast<std::int64_t>(m_end)) {
        const char* const lastByte = std::max(m_buffer.data() + (range.end - m_offset - 1), begin);
        const void* const feed =
            std::memchr(lastByte, '\n', static_cast<std::size_t>(end - lastByte));
        if (feed != nullptr) {
            last = true;
            return static_cast<const char*>(feed) + 1;
        }
    }
    const void* const feed = memrchr(begin, '\n', static_cast<std::size_t>(end - begin));
    return feed == nullptr ? begin : static_cast<const char*>(feed) + 1;
}

MapLinesResult MapRangeReader::read(const MapRange& range, MapEncoding encoding, MapChunk& chunk)
{
    // A line begins behind a line feed; the one before the range tells whether its start is one.
    bool broken = !range.beginsFile;
    m_offset = broken ? range.begin - 1 : range.begin;
    m_begin = 0;
    m_end = 0;
    for (bool last = false; !last;) {
        if (!fill())
            return MapLinesResult::NoMemory;
        if (broken) {
            broken = !skipBrokenLine();
            last = m_fileEnds;
            if (m_offset + static_cast<std::int64_t>(m_begin) >= range.end)
                return MapLinesResult::Read;
            if (broken)
                continue;
        }
        const char* const end = linesEnd(range, last);
        const MapLinesResult result = readMapLines(m_buffer.data() + m_begin, end, encoding, chunk);
        if (result != MapLinesResult::Read)
            return result;
        m_begin = static_cast<std::size_t>(end - m_buffer.data());
    }
    return MapLinesResult::Read;
}

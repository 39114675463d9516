#include "text/LineReader.h"

#include <algorithm>
#include <cstring>

namespace
{

/// A line is shorter than this; so much is read beyond a range to find its last line's end.
constexpr std::size_t usualLine = 4096;

} // namespace

void LineReader::start(const LineRange& range)
{
    // A line begins behind a line feed; the one before the range tells whether its start is one.
    m_range = range;
    m_broken = !range.beginsText;
    m_offset = m_broken ? range.begin - 1 : range.begin;
    m_begin = 0;
    m_end = 0;
    m_done = false;
}

/// Moves what is left to the front and reads on behind it.
LinesResult LineReader::fill()
{
    const std::size_t left = m_end - m_begin;
    std::size_t room = m_piece + usualLine;
    while (room < 2 * left)
        room *= 2;
    if (left > longestLine || !m_buffer.resize(room + padding))
        return LinesResult::TooLarge;
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, left);
    m_offset += static_cast<std::int64_t>(m_begin);
    m_begin = 0;
    const std::int64_t from = m_offset + static_cast<std::int64_t>(left);
    const auto toTheEnd =
        static_cast<std::size_t>(std::max<std::int64_t>(m_bytes->size() - from, 0));
    const std::size_t count = std::min(room - left, toTheEnd);
    if (!m_bytes->read(m_buffer.data() + left, count, from))
        return LinesResult::Unreadable;
    m_end = left + count;
    m_textEnds = count == toTheEnd;
    if (m_textEnds && m_end > 0 && m_buffer[m_end - 1] != '\n')
        m_buffer[m_end++] = '\n';
    return LinesResult::Lines;
}

/// Only the first line of the buffer can be too long: the others were not there when it grew.
bool LineReader::beginsWithLongLine() const
{
    const char* const first = m_buffer.data() + m_begin;
    return m_end - m_begin > longestLine && std::memchr(first, '\n', longestLine + 1) == nullptr;
}

/// Drops bytes up to the first line feed. False where the buffer has none.
bool LineReader::skipBrokenLine()
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

/// Skips the line that begins before the range. False where the buffer does not reach its end, or
/// where no line begins in the range, which is then done.
bool LineReader::reachFirstLine()
{
    m_broken = !skipBrokenLine();
    const bool beyond = m_offset + static_cast<std::int64_t>(m_begin) >= m_range.end;
    m_done = beyond || (m_textEnds && m_broken);
    return !m_broken && !beyond;
}

/// End of the whole lines in the buffer that belong to the range.
/// @param last  set when no further line belongs to it
const char* LineReader::linesEnd(bool& last) const
{
    const char* const begin = m_buffer.data() + m_begin;
    const char* const end = m_buffer.data() + m_end;
    last = m_textEnds;
    if (m_range.end - m_offset <= static_cast<std::int64_t>(m_end)) {
        const char* const lastByte =
            std::max(m_buffer.data() + (m_range.end - m_offset - 1), begin);
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

LinesResult LineReader::next(const char*& first, const char*& last)
{
    while (!m_done) {
        if (const LinesResult result = fill(); result != LinesResult::Lines)
            return result;
        if (m_broken && !reachFirstLine())
            continue;
        if (beginsWithLongLine())
            return LinesResult::TooLarge;
        first = m_buffer.data() + m_begin;
        last = linesEnd(m_done);
        m_begin = static_cast<std::size_t>(last - m_buffer.data());
        if (first != last)
            return LinesResult::Lines;
    }
    return LinesResult::End;
}

#pragma once

#include "analysis/PixelArray.h"
#include "input/MapLines.h"

#include <cstddef>
#include <cstdint>
#include <limits>

/// Lines longer than this are no data; a file that has one is refused.
constexpr std::size_t longestMapLine = std::size_t{4} << 20;

/// Offsets in a file. The lines that begin within belong to the range, wherever they end.
struct MapRange {
    static constexpr std::int64_t toTheEnd = std::numeric_limits<std::int64_t>::max();
    std::int64_t begin = 0;
    std::int64_t end = toTheEnd;
    bool beginsFile = true; ///< a line begins at its first byte, whatever stands before
};

/// Reads ranges of lines from an open file; one object serves one thread.
class MapRangeReader
{
public:
    /// @param descriptor  of the open file; its own position is neither used nor changed
    /// @param pieceBytes  the file is read in pieces of about this size
    MapRangeReader(int descriptor, std::size_t pieceBytes) : m_file(descriptor), m_piece(pieceBytes)
    {
    }

    /// Sorts the lines of a range into the chunk.
    /// @return NoMemory also for a line longer than longestMapLine
    MapLinesResult read(const MapRange& range, MapEncoding encoding, MapChunk& chunk);

private:
    bool fill();
    bool skipBrokenLine();
    const char* linesEnd(const MapRange& range, bool& last) const;

    int m_file;
    std::size_t m_piece;
    PixelArray<char> m_buffer;
    std::int64_t m_offset = 0; ///< in the file, of the buffer's first byte
    std::size_t m_begin = 0;   ///< what is not yet read of the buffer
    std::size_t m_end = 0;
    bool m_fileEnds = false;
};

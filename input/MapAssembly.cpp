#include "input/MapAssembly.h"

#include "input/MapLines.h"
#include "text/TextBytes.h"

#include <utility>

bool MapAssembly::append(const MapChunk& chunk, std::size_t bytes)
{
    for (const QByteArray& line : chunk.header)
        readHeaderLine(line);
    const bool first = m_data.mut.empty();
    m_hasReadings = m_hasReadings || chunk.hasReadings;
    return m_positions.append(chunk.positions) && (!first || expectMore(chunk, bytes)) &&
           m_data.mut.append(chunk.mut.data(), chunk.mut.size()) &&
           m_data.variance.append(chunk.variance.data(), chunk.variance.size()) && fits();
}

bool MapAssembly::finish(MapData& data)
{
    const bool hasRecords = !m_data.mut.empty();
    m_data.positions = m_positions.finish();
    if (!m_hasReadings)
        m_data.variance = {};
    if (hasRecords && !m_data.positions)
        return false;
    m_data.valid = m_data.columns > 0 && m_data.rows > 0 && hasRecords;
    data = std::move(m_data);
    return true;
}

/// Takes the first records as typical of the file. Only what is far too large is refused by this.
bool MapAssembly::expectMore(const MapChunk& chunk, std::size_t bytes)
{
    if (bytes == 0 || bytes >= m_fileSize)
        return true;
    const double total = static_cast<double>(chunk.mut.size()) * static_cast<double>(m_fileSize) /
                         static_cast<double>(bytes);
    const std::size_t bytesOfRecord = sizeof(double) + (chunk.gains ? sizeof(float) : 0) +
                                      (m_positions.shared() ? 0 : sizeof(MapPosition));
    if (total * static_cast<double>(bytesOfRecord) > 2.0 * static_cast<double>(m_memory))
        return false;
    constexpr double margin = 1.02;
    const auto expected = static_cast<std::size_t>(total * margin);
    m_positions.expect(expected);
    return m_data.mut.reserve(expected) && (!chunk.gains || m_data.variance.reserve(expected));
}

bool MapAssembly::fits() const
{
    // A header of more than this is no header, and would have to be written with every result.
    constexpr std::size_t largestHeader = std::size_t{64} << 20;
    if (m_headerBytes > largestHeader)
        return false;
    const std::size_t positions = m_positions.shared() ? 0 : m_positions.size();
    const std::size_t numbers =
        m_data.mut.size() * sizeof(double) + m_data.variance.size() * sizeof(float);
    return numbers + positions * sizeof(MapPosition) + m_headerBytes <= m_memory;
}

void MapAssembly::readHeaderLine(const QByteArray& line)
{
    constexpr std::size_t bytesOfString = 64;
    m_headerBytes += bytesOfString + static_cast<std::size_t>(line.size());
    m_data.header.append(line);
    const MapTokens tokens = mapTokens({line.constData(), static_cast<std::size_t>(line.size())});
    const QString keyword = textFromUtf8(tokens[1]).toUpper();
    if (!tokens[7].empty() && keyword == QLatin1String("AXIS")) {
        const int axis = textFromUtf8(tokens[2]).toInt();
        if (axis == 0)
            m_data.columns = textFromUtf8(tokens[7]).toInt();
        else if (axis == 1)
            m_data.rows = textFromUtf8(tokens[7]).toInt();
    }
    if (!tokens[3].empty() && keyword == QLatin1String("ENERGY"))
        m_energies.append(textFromUtf8(tokens[3]));
}

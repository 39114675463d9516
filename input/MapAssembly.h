#pragma once

#include "input/KnownPositions.h"
#include "input/MapChunk.h"
#include "input/MapData.h"

#include <QStringList>
#include <cstddef>

/// Puts the pieces of a 2D data file together, in the order of the file.
class MapAssembly
{
public:
    /// @param fileSize  bytes, for an estimate of what is to come
    /// @param memory    bytes that the data may take
    /// @param known     positions that the file's may be equal to
    MapAssembly(std::size_t fileSize, std::size_t memory, std::vector<SharedPositions> known)
        : m_fileSize(fileSize), m_memory(memory), m_positions(std::move(known))
    {
    }

    /// Adds a piece that took so many bytes of the file. False where the data do not fit.
    bool append(const MapChunk& chunk, std::size_t bytes);
    /// Hands the data over. False where they do not fit.
    bool finish(MapData& data);

    const QStringList& energies() const { return m_energies; }

private:
    bool expectMore(const MapChunk& chunk, std::size_t bytes);
    bool fits() const;
    void readHeaderLine(const QByteArray& line);

    std::size_t m_fileSize;
    std::size_t m_memory;
    std::size_t m_headerBytes = 0;
    MapData m_data;
    PositionCollector m_positions;
    QStringList m_energies;
    bool m_hasReadings = false;
};

#include "input/MapReader.h"

#include "input/KnownPositions.h"
#include "input/MapAssembly.h"
#include "input/MapLines.h"
#include "system/AvailableMemory.h"
#include "system/InputFile.h"
#include "system/OrderedHandOver.h"
#include "text/LineReader.h"
#include "text/TextBytes.h"

#include <atomic>
#include <memory>
#include <new>

namespace
{

/// Reads one text: the ranges of it in parallel, put together in order.
class ParallelRead
{
public:
    ParallelRead(const TextBytes& text, const MapReadOptions& options, std::size_t memory);

    ReadOutcome run(Workers& workers);
    MapAssembly& assembly() { return m_assembly; }

private:
    bool readRange(std::size_t index, LineReader& reader, MapChunk& chunk);

    const MapReadOptions& m_options;
    const ByteSource& m_bytes;
    std::int64_t m_start;
    std::size_t m_count; ///< ranges
    MapAssembly m_assembly;
    std::atomic<bool> m_unreadable{false};
};

ParallelRead::ParallelRead(const TextBytes& text, const MapReadOptions& options, std::size_t memory)
    : m_options(options), m_bytes(text.bytes()), m_start(text.start()),
      m_count(static_cast<std::size_t>(m_bytes.size()) / options.chunkBytes + 1),
      m_assembly(static_cast<std::size_t>(m_bytes.size()), memory,
                 options.knownPositions ? options.knownPositions->all()
                                        : std::vector<SharedPositions>())
{
}

ReadOutcome ParallelRead::run(Workers& workers)
{
    std::vector<LineReader> readers;
    for (unsigned i = 0; i < workers.size(); ++i)
        readers.emplace_back(m_bytes, m_options.chunkBytes);
    const auto produce = [&](std::size_t index, unsigned worker, MapChunk& chunk) {
        chunk.clear();
        chunk.gains = m_options.gains;
        const bool read = readRange(index, readers[worker], chunk);
        if (worker == 0 && m_options.progress)
            m_options.progress(static_cast<double>(index + 1) / static_cast<double>(m_count));
        return read;
    };
    const auto consume = [&](const MapChunk& chunk) {
        return m_assembly.append(chunk, m_options.chunkBytes);
    };
    if (runInOrder<MapChunk>(workers, m_count, produce, consume))
        return ReadOutcome::Read;
    return m_unreadable ? ReadOutcome::Unreadable : ReadOutcome::TooLarge;
}

bool ParallelRead::readRange(std::size_t index, LineReader& reader, MapChunk& chunk)
{
    const auto bytes = static_cast<std::int64_t>(m_options.chunkBytes);
    LineRange range;
    range.begin = index == 0 ? m_start : static_cast<std::int64_t>(index) * bytes;
    range.beginsText = index == 0;
    if (index + 1 < m_count)
        range.end = static_cast<std::int64_t>(index + 1) * bytes;
    reader.start(range);
    const char* first = nullptr;
    const char* last = nullptr;
    LinesResult result = reader.next(first, last);
    for (; result == LinesResult::Lines; result = reader.next(first, last))
        if (!readMapLines(first, last, chunk))
            return false;
    m_unreadable = m_unreadable || result == LinesResult::Unreadable;
    return result == LinesResult::End;
}

ReadOutcome readFrom(const ByteSource& file, MapData& data, MapReadResult& result,
                     const MapReadOptions& options, Workers& workers)
{
    const std::size_t memory = options.memory > 0 ? options.memory : availableMemory();
    if (static_cast<std::size_t>(file.size()) > memory)
        return ReadOutcome::TooLarge;
    const TextBytes text(file, memory);
    if (text.outcome() != ReadOutcome::Read)
        return text.outcome();
    ParallelRead parallel(text, options, memory);
    const ReadOutcome outcome = parallel.run(workers);
    if (outcome != ReadOutcome::Read)
        return outcome;
    if (!parallel.assembly().finish(data))
        return ReadOutcome::TooLarge;
    if (options.knownPositions)
        options.knownPositions->add(data.positions);
    result.energies = parallel.assembly().energies();
    return ReadOutcome::Read;
}

} // namespace

QString mapReason(ReadOutcome outcome, const QString& path)
{
    if (outcome == ReadOutcome::TooLarge)
        return QStringLiteral("The 2D data file [%1] is too large.").arg(path);
    if (outcome == ReadOutcome::Unreadable)
        return QStringLiteral("The 2D data file [%1] cannot be read.").arg(path);
    return {};
}

MapReadResult readMapData(const ByteSource& file, MapData& data, const MapReadOptions& options,
                          Workers& workers)
{
    MapReadResult result;
    data.valid = false;
    MapData read;
    try {
        result.outcome = readFrom(file, read, result, options, workers);
    } catch (const std::bad_alloc&) {
        result.outcome = ReadOutcome::TooLarge;
    }
    if (result.outcome == ReadOutcome::Read)
        data = std::move(read);
    return result;
}

MapReadResult readMapData(const QString& path, MapData& data, const MapReadOptions& options,
                          Workers& workers)
{
    MapReadResult result;
    data.valid = false;
    if (const auto file = InputFile::open(path))
        result = readMapData(*file, data, options, workers);
    result.reason = mapReason(result.outcome, path);
    return result;
}

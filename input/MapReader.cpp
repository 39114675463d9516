#include "input/MapReader.h"

#include "analysis/AvailableMemory.h"
#include "input/MapAssembly.h"
#include "input/MapLines.h"
#include "input/MapRange.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>
#include <QTextStream>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace
{

constexpr int utf8 = 106;
constexpr int latin1 = 4;

/// True for an encoding that reads ASCII as what it is, control characters too.
bool keepsAscii(const QTextCodec& codec)
{
    QByteArray ascii;
    for (int c = 0; c < 0x80; ++c)
        ascii.append(static_cast<char>(c));
    return codec.toUnicode(ascii) == QLatin1String(ascii.constData(), ascii.size());
}

MapEncoding localeEncoding()
{
    const QTextCodec& codec = *QTextCodec::codecForLocale();
    if (codec.mibEnum() == utf8)
        return MapEncoding::Utf8;
    if (codec.mibEnum() == latin1)
        return MapEncoding::Latin1;
    return keepsAscii(codec) ? MapEncoding::Ascii : MapEncoding::Other;
}

/// Encoding of a file and where its text begins.
struct TextStart {
    MapEncoding encoding;
    std::int64_t offset;
};

/// As a text stream finds it: a byte order mark, or the locale's encoding.
TextStart textStart(QFile& file)
{
    constexpr qint64 longestMark = 4;
    const QTextCodec* const marked = QTextCodec::codecForUtfText(file.peek(longestMark), nullptr);
    if (marked == nullptr)
        return {localeEncoding(), 0};
    constexpr std::int64_t utf8MarkSize = 3;
    return marked->mibEnum() == utf8 ? TextStart{MapEncoding::Utf8, utf8MarkSize}
                                     : TextStart{MapEncoding::Other, 0};
}

/// Reads one file: the ranges of it in parallel, put together in order.
class ParallelRead
{
public:
    ParallelRead(QFile& file, const MapReadOptions& options, std::size_t memory);

    MapLinesResult run(Workers& workers);
    MapAssembly& assembly() { return m_assembly; }

private:
    void readRange(std::size_t index, MapRangeReader& reader);
    std::unique_ptr<MapChunk> takeChunk();
    void deliver(std::size_t index, std::unique_ptr<MapChunk> chunk);
    void stop(MapLinesResult reason);

    const MapReadOptions& m_options;
    int m_descriptor;
    TextStart m_start;
    std::int64_t m_size;
    std::size_t m_count; ///< ranges
    MapAssembly m_assembly;

    std::mutex m_mutex; ///< guards what follows and the assembly
    std::map<std::size_t, std::unique_ptr<MapChunk>> m_ready; ///< wait for an earlier one
    std::vector<std::unique_ptr<MapChunk>> m_spare;
    std::size_t m_next = 0; ///< range that the assembly needs next
    std::atomic<bool> m_stopped{false};
    MapLinesResult m_result = MapLinesResult::Read;
};

ParallelRead::ParallelRead(QFile& file, const MapReadOptions& options, std::size_t memory)
    : m_options(options), m_descriptor(file.handle()), m_start(textStart(file)),
      m_size(file.size()), m_count(static_cast<std::size_t>(m_size) / options.chunkBytes + 1),
      m_assembly(static_cast<std::size_t>(m_size), memory)
{
}

MapLinesResult ParallelRead::run(Workers& workers)
{
    if (m_descriptor < 0 || m_start.encoding == MapEncoding::Other)
        return MapLinesResult::NeedsToolkit;
    std::vector<MapRangeReader> readers;
    for (unsigned i = 0; i < workers.size(); ++i)
        readers.emplace_back(m_descriptor, m_options.chunkBytes);
    workers.run(m_count, [&](std::size_t index, unsigned worker) {
        if (m_stopped)
            return;
        readRange(index, readers[worker]);
        if (worker == 0 && m_options.progress)
            m_options.progress(static_cast<double>(index + 1) / static_cast<double>(m_count));
    });
    return m_result;
}

void ParallelRead::readRange(std::size_t index, MapRangeReader& reader)
{
    const auto bytes = static_cast<std::int64_t>(m_options.chunkBytes);
    MapRange range;
    range.begin = index == 0 ? m_start.offset : static_cast<std::int64_t>(index) * bytes;
    range.beginsFile = index == 0;
    if (index + 1 < m_count)
        range.end = static_cast<std::int64_t>(index + 1) * bytes;
    std::unique_ptr<MapChunk> chunk = takeChunk();
    const MapLinesResult result = reader.read(range, m_start.encoding, *chunk);
    if (result == MapLinesResult::Read)
        deliver(index, std::move(chunk));
    else
        stop(result);
}

std::unique_ptr<MapChunk> ParallelRead::takeChunk()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_spare.empty())
        return std::make_unique<MapChunk>();
    std::unique_ptr<MapChunk> chunk = std::move(m_spare.back());
    m_spare.pop_back();
    return chunk;
}

void ParallelRead::deliver(std::size_t index, std::unique_ptr<MapChunk> chunk)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ready.emplace(index, std::move(chunk));
    for (auto first = m_ready.begin(); first != m_ready.end() && first->first == m_next;
         first = m_ready.erase(first), ++m_next) {
        if (m_stopped)
            return;
        if (!m_assembly.append(*first->second, m_options.chunkBytes)) {
            m_result = MapLinesResult::NoMemory;
            m_stopped = true;
        }
        first->second->clear();
        m_spare.push_back(std::move(first->second));
    }
}

void ParallelRead::stop(MapLinesResult reason)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_stopped)
        m_result = reason;
    m_stopped = true;
}

/// Reads the file line by line through the toolkit's text stream; for text that is not to be had
/// line by line from the bytes.
bool readByToolkit(QFile& file, MapAssembly& assembly, const MapReadOptions& options)
{
    constexpr auto limit = static_cast<qint64>(longestMapLine);
    constexpr std::size_t linesAtOnce = 4096;
    file.setTextModeEnabled(true);
    file.seek(0);
    QTextStream in(&file);
    QString line;
    MapChunk chunk;
    for (std::size_t lines = 1; in.readLineInto(&line, limit); ++lines) {
        if (line.size() == limit || !readMapLine(line, chunk))
            return false;
        if (lines % linesAtOnce != 0)
            continue;
        if (!assembly.append(chunk, 0))
            return false;
        chunk.clear();
        if (options.progress)
            options.progress(static_cast<double>(file.pos()) / static_cast<double>(file.size()));
    }
    return assembly.append(chunk, 0);
}

/// Reads an open file into the data; false where it does not fit.
bool readOpenFile(QFile& file, MapData& data, MapReadResult& result, const MapReadOptions& options,
                  Workers& workers)
{
    const std::size_t memory = options.memory > 0 ? options.memory : availableMemory();
    if (static_cast<std::size_t>(file.size()) > memory)
        return false;
    ParallelRead parallel(file, options, memory);
    const MapLinesResult outcome = parallel.run(workers);
    if (outcome == MapLinesResult::NoMemory)
        return false;
    if (outcome == MapLinesResult::Read) {
        result.energies = parallel.assembly().energies();
        return parallel.assembly().finish(data);
    }
    MapAssembly assembly(static_cast<std::size_t>(file.size()), memory);
    if (!readByToolkit(file, assembly, options))
        return false;
    result.energies = assembly.energies();
    return assembly.finish(data);
}

} // namespace

MapReadResult readMapData(const QString& path, MapData& data, const MapReadOptions& options,
                          Workers& workers)
{
    MapReadResult result;
    data.valid = false;
    QFile file(path);
    // Reading a pipe or a device might never end.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return result;
    MapData read;
    if (readOpenFile(file, read, result, options, workers)) {
        result.outcome = MapReadResult::Read;
        data = std::move(read);
        return result;
    }
    result.outcome = MapReadResult::Refused;
    result.energies.clear();
    result.reason = QStringLiteral("The 2D data file [%1] is too large.").arg(path);
    return result;
}

#include "results/ResultFile.h"

#include "analysis/PointRow.h"
#include "results/NumberField.h"
#include "system/SafeFile.h"


#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <new>

namespace
{

/// Pixels that one task turns into text.
constexpr std::size_t blockSize = 8192;

/// Longest line of a pixel: five numbers that may fill their fields and more, blanks, and the empty
/// line behind a row.
constexpr std::size_t longestLine = 5 * (fieldWidth + longestNumber) + 16;

/// One line for a pixel.
char* writePixel(const MapPosition& position, double a, double valence, double t, char* out)
{
    *out++ = ' ';
    out = writeField(position.first, out);
    *out++ = ' ';
    out = writeField(position.second, out);
    out = std::fill_n(out, 4, ' ');
    out = writeField(a, out);
    *out++ = ' ';
    out = writeField(valence, out);
    *out++ = ' ';
    out = writeField(t, out);
    *out++ = '\n';
    return out;
}

/// The results as text, in blocks that follow one another.
class ResultText
{
public:
    ResultText(const MapResults& results, double valence1, double valence2)
        : m_results(results), m_valence1(valence1), m_valence2(valence2)
    {
        if (results.columns > 0 && results.rows > 0)
            m_pixels =
                static_cast<std::size_t>(results.columns) * static_cast<std::size_t>(results.rows);
    }

    std::size_t blocks() const { return (m_pixels + blockSize - 1) / blockSize; }

    /// Writes a block into the buffer and returns its size. False where memory is refused.
    bool write(std::size_t block, PixelArray<char>& text) const
    {
        const std::size_t first = block * blockSize;
        const std::size_t last = std::min(first + blockSize, m_pixels);
        if (!text.resize((last - first) * longestLine))
            return false;
        const auto columns = static_cast<std::size_t>(m_results.columns);
        std::size_t rowEnd = (first / columns + 1) * columns;
        char* out = text.data();
        for (std::size_t i = first; i < last; ++i) {
            const double a = i < m_results.size() ? m_results.a[i] : 0.0;
            const double t = i < m_results.size() ? m_results.t[i] : 0.0;
            out = writePixel(m_results.position(i), a, meanValence(m_valence1, m_valence2, a), t,
                             out);
            if (i + 1 == rowEnd) {
                *out++ = '\n';
                rowEnd += columns;
            }
        }
        return text.resize(static_cast<std::size_t>(out - text.data()));
    }

private:
    const MapResults& m_results;
    double m_valence1;
    double m_valence2;
    std::size_t m_pixels = 0;
};

using Buffer = std::unique_ptr<PixelArray<char>>;

/// Takes blocks of text from several threads and writes them to the file in order. A thread that
/// brings the next block writes it, and those behind it that have come in the meantime; the others
/// go on with their work.
class OrderedWriter
{
public:
    /// @param waiting  so many blocks may wait for one before them
    OrderedWriter(SafeFile& file, std::size_t waiting) : m_file(file), m_maxWaiting(waiting) {}

    bool failed() const { return m_failed; }
    /// Nothing more is written; whoever waits goes on.
    void fail()
    {
        m_failed = true;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_room.notify_all();
    }

    void write(const char* text, std::size_t size)
    {
        if (!m_failed && !m_file.write(text, static_cast<qint64>(size)))
            m_failed = true;
    }

    /// A buffer for a block's text, used before where there is one; null where memory is refused.
    Buffer takeBuffer()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_spare.empty())
            return Buffer(new (std::nothrow) PixelArray<char>);
        Buffer buffer = std::move(m_spare.back());
        m_spare.pop_back();
        return buffer;
    }

    /// Blocks are handed out in rising order: the one that all others wait for is always in work,
    /// and it never waits itself.
    void deliver(std::size_t block, Buffer text)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_room.wait(lock,
                    [&] { return m_failed || block == m_next || m_waiting.size() < m_maxWaiting; });
        if (m_failed)
            return;
        m_waiting.emplace(block, std::move(text));
        while (!m_writing && !m_waiting.empty() && m_waiting.begin()->first == m_next)
            writeNext(lock);
    }

private:
    void writeNext(std::unique_lock<std::mutex>& lock)
    {
        Buffer text = std::move(m_waiting.begin()->second);
        m_waiting.erase(m_waiting.begin());
        m_writing = true;
        lock.unlock();
        write(text->data(), text->size());
        lock.lock();
        m_writing = false;
        m_spare.push_back(std::move(text));
        ++m_next;
        m_room.notify_all();
    }

    SafeFile& m_file;
    std::atomic<bool> m_failed{false};

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_room;
    std::size_t m_maxWaiting;
    std::map<std::size_t, Buffer> m_waiting;
    std::vector<Buffer> m_spare;
    std::size_t m_next = 0; ///< block that the file needs next
    bool m_writing = false;
};

/// The header lines and an empty line; nothing without header.
QByteArray headerText(const QByteArrayList& header)
{
    return header.isEmpty() ? QByteArray() : header.join('\n') + "\n\n";
}

} // namespace

WriteOutcome writeResultFile(const QString& path, const QByteArrayList& header,
                             const MapResults& results, double valence1, double valence2,
                             const std::function<void(double part)>& progress, Workers& workers)
{
    SafeFile file(path);
    if (!file.open())
        return WriteOutcome::CannotOpen;
    constexpr std::size_t waitingForEach = 4;
    OrderedWriter writer(file, waitingForEach * workers.size());
    const QByteArray head = headerText(header);
    writer.write(head.constData(), static_cast<std::size_t>(head.size()));

    const ResultText text(results, valence1, valence2);
    workers.run(text.blocks(), [&](std::size_t block, unsigned worker) {
        Buffer buffer = writer.takeBuffer();
        if (!buffer || writer.failed() || !text.write(block, *buffer))
            return writer.fail();
        writer.deliver(block, std::move(buffer));
        if (worker == 0 && progress)
            progress(static_cast<double>(block + 1) / static_cast<double>(text.blocks()));
    });
    return !writer.failed() && file.commit() ? WriteOutcome::Written : WriteOutcome::CannotWrite;
}

#include "results/ResultFile.h"

#include "system/OrderedHandOver.h"
#include "system/SafeFile.h"
#include "text/NumberField.h"

#include <algorithm>

namespace
{

/// Pixels that one task turns into text.
constexpr std::size_t blockSize = 8192;

/// Longest line of a pixel: five numbers that may fill their fields and more, blanks, and the empty
/// line behind a row.
constexpr std::size_t longestPixelLine = 5 * (fieldWidth + longestNumber) + 16;

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
class MapText
{
public:
    MapText(const MapResults& results, const ReferenceValences& valences)
        : m_results(results), m_valences(valences)
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
        if (!text.resize((last - first) * longestPixelLine))
            return false;
        const auto columns = static_cast<std::size_t>(m_results.columns);
        std::size_t rowEnd = (first / columns + 1) * columns;
        char* out = text.data();
        for (std::size_t i = first; i < last; ++i) {
            const double a = i < m_results.size() ? m_results.a[i] : 0.0;
            const double t = i < m_results.size() ? m_results.t[i] : 0.0;
            out = writePixel(m_results.position(i), a, m_valences.mean(a), t, out);
            if (i + 1 == rowEnd) {
                *out++ = '\n';
                rowEnd += columns;
            }
        }
        return text.resize(static_cast<std::size_t>(out - text.data()));
    }

private:
    const MapResults& m_results;
    ReferenceValences m_valences;
    std::size_t m_pixels = 0;
};

/// The header lines and an empty line; nothing without header.
QByteArray headerText(const QByteArrayList& header)
{
    return header.isEmpty() ? QByteArray() : header.join('\n') + "\n\n";
}

} // namespace

WriteOutcome writeResultFile(const QString& path, const QByteArrayList& header,
                             const MapResults& results, const ReferenceValences& valences,
                             const std::function<void(double part)>& progress, Workers& workers)
{
    SafeFile file(path);
    if (!file.open())
        return WriteOutcome::CannotOpen;
    const QByteArray head = headerText(header);
    const MapText text(results, valences);
    using Buffer = PixelArray<char>;
    const auto write = [&](const Buffer& buffer) {
        return file.write(buffer.data(), static_cast<qint64>(buffer.size()));
    };
    const auto make = [&](std::size_t block, unsigned worker, Buffer& buffer) {
        if (!text.write(block, buffer))
            return false;
        if (worker == 0 && progress)
            progress(static_cast<double>(block + 1) / static_cast<double>(text.blocks()));
        return true;
    };
    const bool written = file.write(head.constData(), head.size()) &&
                         runInOrder<Buffer>(workers, text.blocks(), make, write) && file.commit();
    return written ? WriteOutcome::Written : WriteOutcome::CannotWrite;
}

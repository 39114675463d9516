#include "results/HistogramFile.h"

#include "analysis/HistogramCounts.h"
#include "system/SafeFile.h"
#include "text/NumberField.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <charconv>

namespace
{

/// Three numbers, a count and blanks.
constexpr std::size_t longestBoxLine = 4 * longestNumber + 8;

} // namespace

QString histogramFile(const QString& resultPath, const QString& tag)
{
    const QFileInfo result(resultPath);
    const QString directory = QDir(result.path()).canonicalPath();
    if (directory.isEmpty())
        return {};
    const QString name =
        result.completeBaseName() + QLatin1Char('_') + tag + QLatin1Char('.') + result.suffix();
    const QFileInfo file(directory + QLatin1Char('/') + name);
    return file.isFile() ? file.canonicalFilePath() : QString();
}

bool writeHistogramFile(const HistogramCounts& histogram, const QString& resultPath,
                        const QString& tag)
{
    return writeHistogram(histogram, histogramFile(resultPath, tag));
}

bool writeHistogram(const HistogramCounts& histogram, const QString& path)
{
    SafeFile file(path);
    if (!file.open())
        return false;
    const int bins = static_cast<int>(histogram.counts.size());
    std::array<char, longestBoxLine> line{};
    for (int i = -1; i <= bins; ++i) {
        const int count = i < 0       ? histogram.under
                          : i == bins ? histogram.over
                                      : histogram.counts[static_cast<std::size_t>(i)];
        char* end = writeNumber(i * histogram.width + histogram.from, line.data());
        *end++ = ' ';
        end = writeNumber((i + 0.5) * histogram.width + histogram.from, end);
        *end++ = ' ';
        end = writeNumber((i + 1) * histogram.width + histogram.from, end);
        *end++ = ' ';
        *end++ = ' ';
        end = std::to_chars(end, line.data() + line.size(), count).ptr;
        *end++ = '\n';
        if (!file.write(line.data(), end - line.data()))
            return false;
    }
    return file.commit();
}

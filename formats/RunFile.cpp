#include "formats/RunFile.h"

#include "formats/SharedPixels.h"
#include "formats/StackProcess.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace
{

/// The group of the table: one that no map has.
QByteArray tableName(const RunContents& run)
{
    if (run.targets.isEmpty())
        return {};
    QByteArray name = "targets";
    const auto isName = [&name](const RunContents::Map& map) { return map.name == name; };
    while (std::any_of(run.maps.begin(), run.maps.end(), isName))
        name += '_';
    return name;
}

std::size_t bytesOfMaps(const RunContents& run)
{
    std::size_t bytes = 0;
    for (const RunContents::Map& map : run.maps)
        bytes += static_cast<std::size_t>(QFileInfo(map.file).size());
    return bytes;
}

/// All texts in the order in which the process takes them.
template <class Use>
void forEachText(const RunContents& run, const Use& use)
{
    use(run.job);
    for (const RunContents::Map& map : run.maps) {
        use(map.name);
        use(QFile::encodeName(map.file));
        use(map.inputs);
    }
    for (const ResultTable::Column& column : run.targets.columns)
        for (const QByteArray& text : column.texts)
            use(text);
}

} // namespace

WriteOutcome writeRunFile(const QString& path, const RunContents& run)
{
    const std::size_t rows = run.targets.isEmpty() ? 0 : run.targets.rows();
    std::vector<std::string> words{"write-run",
                                   "program=" + run.program.toStdString(),
                                   "version=" + run.version.toStdString(),
                                   "table=" + tableName(run).toStdString(),
                                   "rows=" + std::to_string(rows),
                                   "maps=" + std::to_string(run.maps.size())};
    std::size_t bytes = 0;
    for (const ResultTable::Column& column : run.targets.columns) {
        words.push_back("column=" + column.name.toStdString() +
                        (column.isNumber ? "\tnumber" : "\ttext"));
        bytes += column.isNumber ? rows * sizeof(double) : 0;
    }
    forEachText(
        run, [&](const QByteArray& text) { bytes += static_cast<std::size_t>(text.size()) + 1; });
    words.push_back("bytes=" + std::to_string(bytes));
    const PixelMemory memory(bytes);
    if (!memory.isThere())
        return WriteOutcome::CannotWrite;
    double* numbers = SharedPixels::doublesAt(memory.data());
    for (const ResultTable::Column& column : run.targets.columns)
        numbers = std::copy(column.numbers.begin(), column.numbers.end(), numbers);
    char* to = static_cast<char*>(static_cast<void*>(numbers));
    forEachText(run, [&](const QByteArray& text) {
        to = std::copy(text.begin(), text.end(), to);
        *to++ = '\0';
    });
    return writeByStackProcess(path, std::move(words), memory, bytesOfMaps(run));
}

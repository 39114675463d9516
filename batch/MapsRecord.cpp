#include "batch/MapsRecord.h"

#include "batch/JobKey.h"
#include "batch/SourceFile.h"

#include <QDir>

#include <algorithm>

namespace
{

std::optional<Digest> digestOfFile(const QString& path)
{
    QString why;
    const std::optional<SourceFile> source = SourceFile::open(path, why);
    return source ? source->digest() : std::nullopt;
}

/// The images' digests; none for one that cannot be read.
std::vector<std::optional<Digest>> imagesOf(const MapJob& map)
{
    std::vector<std::optional<Digest>> digests;
    for (const JobFilePath& image : map.images)
        digests.push_back(image.path.isEmpty() ? std::nullopt : digestOfFile(image.path));
    return digests;
}

} // namespace

std::vector<std::optional<Digest>> digestsOf(const MapJob& map,
                                             const std::vector<RecordedFile>& inputs)
{
    std::vector<std::optional<Digest>> digests;
    auto input = inputs.begin();
    for (const JobFilePath& image : map.images)
        digests.push_back(image.path.isEmpty() || input == inputs.end()
                              ? std::nullopt
                              : std::optional((input++)->digest));
    return digests;
}

bool areInPlace(const std::vector<RecordedFile>& files, const QString& folder)
{
    return std::all_of(files.begin(), files.end(), [&](const RecordedFile& file) {
        return digestOfFile(QDir(folder).filePath(QFile::decodeName(file.path))) == file.digest;
    });
}

std::optional<RecordedFile> writtenFile(const QString& path, const QString& folder)
{
    const std::optional<Digest> digest = digestOfFile(path);
    if (!digest)
        return std::nullopt;
    return RecordedFile{QFile::encodeName(QDir(folder).relativeFilePath(path)), *digest};
}

std::vector<bool> keptMaps(RunRecord& record, const PreparedJob& prepared, Workers& workers)
{
    const std::vector<MapJob>& maps = prepared.list.maps;
    const Digest common = keyOfMaps(prepared.text, prepared.common);
    std::vector<std::optional<RecordedRow>> rows;
    rows.reserve(maps.size());
    for (const MapJob& map : maps)
        rows.push_back(record.row(RowKind::Map, map.name.toUtf8()));
    std::vector<char> kept(maps.size(), 0);
    workers.run(maps.size(), [&](std::size_t i, unsigned) {
        kept[i] = rows[i] && rows[i]->key &&
                  rows[i]->key == keyOfMap(common, maps[i], imagesOf(maps[i])) &&
                  areInPlace(rows[i]->outputs, prepared.job.output.path);
    });
    return {kept.begin(), kept.end()};
}

std::optional<RecordedRow> recordedMap(const PreparedJob& prepared, const MapJob& map,
                                       const MapOutcome& outcome)
{
    RecordedRow row;
    if (!outcome.images.empty())
        row.key = keyOfMap(keyOfMaps(prepared.text, prepared.common), map, outcome.images);
    row.good = outcome.row.isGood();
    row.seconds = outcome.seconds;
    row.fields = mapFields(outcome.row);
    QStringList lines = outcome.row.messages;
    for (const QString& warning : outcome.row.warnings)
        lines += QStringLiteral("warning: ") + warning;
    row.messages = lines.join(QLatin1Char('\n')).toUtf8();
    row.readOut = outcome.readOut;
    const QDir jobFolder(prepared.job.folder);
    for (std::size_t i = 0; i < outcome.images.size(); ++i)
        if (outcome.images[i])
            row.inputs.push_back({QFile::encodeName(jobFolder.relativeFilePath(map.images[i].path)),
                                  *outcome.images[i]});
    for (const QString& path : outcome.files) {
        const auto file = writtenFile(path, prepared.job.output.path);
        if (!file)
            return std::nullopt;
        row.outputs.push_back(*file);
    }
    return row;
}

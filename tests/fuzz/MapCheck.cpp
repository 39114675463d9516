#include "input/MapReader.h"
#include "tests/fuzz/ReaderChecks.h"
#include "tests/fuzz/SameNumber.h"
#include "tests/model/LiteralImage.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

namespace
{

const char* recordDifference(const MapData& data, const literal::Image& expected)
{
    if (static_cast<int>(data.mut.size()) != expected.records.size())
        return "number of records";
    if ((data.positions ? data.positions->size() : 0) != data.mut.size())
        return "number of positions";
    for (std::size_t i = 0; i < data.mut.size(); ++i) {
        const literal::ImageRecord& record = expected.records[static_cast<int>(i)];
        if (!sameNumber(data.mut[i], expected.mutAt(static_cast<qint64>(i))))
            return "mu-t";
        if (!sameNumber((*data.positions)[i].first, record.position1))
            return "position 1";
        if (!sameNumber((*data.positions)[i].second, record.position2))
            return "position 2";
    }
    return nullptr;
}

} // namespace

const char* check::mapDifference(QByteArray text, std::size_t chunkBytes)
{
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("map.dat"));
    static Workers alone(1);
    static Workers two(2);
    Workers& workers = text.size() % 2 == 0 ? alone : two;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return "the file for the reader, which cannot be written";
    file.close();
    MapReadOptions options;
    if (chunkBytes > 0)
        options.chunkBytes = chunkBytes;
    MapData data;
    const MapReadResult result = readMapData(path, data, options, workers);

    QBuffer again(&text);
    again.open(QIODevice::ReadOnly | QIODevice::Text);
    literal::Image expected;
    expected.loadOpened(again);

    if (result.outcome != MapReadResult::Read)
        return "outcome";
    if (data.valid != expected.valid)
        return "validity";
    if (data.header != expected.header)
        return "header";
    if (data.columns != expected.columns || data.rows != expected.rows)
        return "axes";
    if (result.energies != expected.energies)
        return "energies";
    return recordDifference(data, expected);
}

#include "input/MapReader.h"
#include "tests/fuzz/FuzzText.h"
#include "tests/model/LiteralImage.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

// Any bytes as a file of 2D data: the program's reader against the literal one, to the last bit.

namespace
{

void compare(const MapData& data, const MapReadResult& result, const literal::Image& expected)
{
    fuzz::require(result.outcome == MapReadResult::Read, "outcome");
    fuzz::require(data.valid == expected.valid, "validity");
    fuzz::require(data.header == expected.header, "header");
    fuzz::require(data.columns == expected.columns && data.rows == expected.rows, "axes");
    fuzz::require(result.energies == expected.energies, "energies");
    fuzz::require(static_cast<int>(data.mut.size()) == expected.records.size(), "records");
    const std::size_t positions = data.positions ? data.positions->size() : 0;
    fuzz::require(positions == data.mut.size(), "number of positions");
    for (std::size_t i = 0; i < data.mut.size(); ++i) {
        const literal::ImageRecord& record = expected.records[static_cast<int>(i)];
        fuzz::require(fuzz::same(data.mut[i], expected.mutAt(static_cast<qint64>(i))), "mu-t");
        fuzz::require(fuzz::same((*data.positions)[i].first, record.position1), "position 1");
        fuzz::require(fuzz::same((*data.positions)[i].second, record.position2), "position 2");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("map.dat"));
    static Workers workers(2);
    QByteArray text = fuzz::text(bytes, size);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        fuzz::fail("the file for the reader cannot be written");
    file.close();

    MapReadOptions options;
    if (size % 3 != 0)
        options.chunkBytes = 1 + size % 64; // pieces end anywhere in a line
    MapData data;
    const MapReadResult result = readMapData(path, data, options, workers);

    QBuffer again(&text);
    again.open(QIODevice::ReadOnly | QIODevice::Text);
    literal::Image expected;
    expected.loadOpened(again);
    compare(data, result, expected);
    return 0;
}

#include "input/MapReader.h"
#include "tests/fuzz/ReaderChecks.h"
#include "tests/fuzz/SameNumber.h"
#include "tests/model/LiteralImage.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/PlainText.h"

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

const char* check::mapDifference(const QByteArray& text, std::size_t chunkBytes)
{
    static Workers alone(1);
    static Workers two(2);
    Workers& workers = text.size() % 2 == 0 ? alone : two;
    MapReadOptions options;
    if (chunkBytes > 0)
        options.chunkBytes = chunkBytes;
    MapData data;
    const MapReadResult result = readMapData(ArrayBytes(text), data, options, workers);

    literal::Image expected;
    expected.loadBytes(text);

    if (result.outcome != ReadOutcome::Read)
        return "outcome";
    if (data.valid != expected.valid)
        return "validity";
    if (data.header.size() != expected.header.size())
        return "number of header lines";
    for (int i = 0; i < data.header.size(); ++i)
        if (plain::lineText(data.header[i]) != plain::throughUtf8(expected.header[i]))
            return "header";
    if (data.columns != expected.columns || data.rows != expected.rows)
        return "axes";
    if (result.energies != expected.energies)
        return "energies";
    return recordDifference(data, expected);
}

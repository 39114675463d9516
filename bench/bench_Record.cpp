#include "batch/RecordWriter.h"
#include "batch/TargetRow.h"
#include "bench/PairedTimes.h"

#include <benchmark/benchmark.h>

#include <QCryptographicHash>
#include <QTemporaryDir>

namespace
{

constexpr int hashedBytes = 16 << 20;
constexpr int recordedRows = 10000;

/// SHA-256 of the bytes of an input, against the toolkit's.
void digest(benchmark::State& state)
{
    const QByteArray bytes(hashedBytes, 'x');
    PairedTimes times;
    for (auto _ : state) {
        QByteArray ours;
        QByteArray plain;
        times.run(
            state, [&] { ours = toBytes(digestOf(bytes)); },
            [&] { plain = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256); });
        if (ours != plain)
            state.SkipWithError("the digests differ");
    }
    times.report(state);
}
BENCHMARK(digest)->UseManualTime()->Unit(benchmark::kMillisecond);

/// A row as a target leaves it, most of its fields numbers with all their digits.
RecordedRow targetRow(int number)
{
    RecordedRow row;
    row.key = digestOf(QByteArray::number(number));
    row.input = row.key;
    row.good = true;
    row.fields += "scans/sample_" + QByteArray::number(number).rightJustified(6, '0') + ".dat";
    row.fields += "4ps2";
    while (row.fields.size() < targetColumns().size())
        row.fields += QByteArray::number((number + 1) / (row.fields.size() + 1.0), 'g', 17);
    return row;
}

/// Rows into a record on the disk, many in a transaction, up to the last one's being safe.
void rowsIntoRecord(benchmark::State& state)
{
    std::vector<RecordedRow> rows;
    for (int i = 0; i < recordedRows; ++i)
        rows.push_back(targetRow(i));
    for (auto _ : state) {
        const QTemporaryDir dir;
        RunRecord record(dir.filePath(QStringLiteral("run.sqlite")), RunRecord::Access::Write);
        RecordWriter writer(record, {});
        for (const RecordedRow& row : rows)
            writer.put(RowKind::Target, row);
        if (writer.finish())
            state.SkipWithError("the record cannot be written");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * recordedRows);
}
BENCHMARK(rowsIntoRecord)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

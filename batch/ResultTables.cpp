#include "batch/ResultTables.h"

#include "batch/TargetRow.h"
#include "system/SafeFile.h"
#include "text/Csv.h"

namespace
{

bool writeTargets(RunRecord& record, const PreparedJob& prepared, const QString& path,
                  bool& allGood)
{
    SafeFile file(path);
    bool written = file.open();
    const auto write = [&](const QByteArrayList& fields) {
        const QByteArray line = csv::line(fields);
        written = written && file.write(line.constData(), line.size());
    };
    write(targetColumns());
    record.forEach(
        RowKind::Target, prepared.list.targets.size(),
        [&](std::size_t i) { return targetName(prepared.job, prepared.list.targets[i]).toUtf8(); },
        [&](std::size_t, const std::optional<RecordedRow>& row) {
            if (!row)
                return;
            allGood = allGood && row->good;
            write(row->fields);
        });
    return written && file.commit();
}

} // namespace

ResultsWritten writeResults(RunRecord& record, const PreparedJob& prepared)
{
    ResultsWritten written;
    const QString path = RunFolder(prepared.job).results();
    if (writeTargets(record, prepared, path, written.allGood))
        written.files += path;
    else
        written.failed = path;
    return written;
}

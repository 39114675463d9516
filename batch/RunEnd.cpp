#include "batch/RunEnd.h"

#include "batch/Console.h"
#include "batch/ExitStatus.h"
#include "batch/ResultTables.h"

#include <set>

void dropOthers(RunRecord& record, const PreparedJob& prepared)
{
    std::set<QByteArray> targets;
    for (const TargetJob& target : prepared.list.targets)
        targets.insert(targetName(prepared.job, target).toUtf8());
    std::set<QByteArray> maps;
    for (const MapJob& map : prepared.list.maps)
        maps.insert(map.name.toUtf8());
    for (const auto& [kind, own] :
         {std::pair(RowKind::Target, &targets), std::pair(RowKind::Map, &maps)})
        for (const QByteArray& name : record.names(kind))
            if (own->count(name) == 0) {
                record.begin();
                record.drop(kind, name);
            }
    record.commit();
}

int writeAndTell(RunRecord& record, const PreparedJob& prepared, bool quiet)
{
    const ResultsWritten written = writeResults(record, prepared);
    if (!written.failed.isEmpty()) {
        console::say(QStringLiteral("cannot write %1").arg(written.failed));
        return static_cast<int>(ExitStatus::FileFailed);
    }
    if (!quiet && !written.closure.isEmpty())
        console::say(written.closure);
    for (const QString& file : written.files)
        if (!quiet)
            console::say(QStringLiteral("Written: ") + file);
    return static_cast<int>(written.allGood ? ExitStatus::Done : ExitStatus::SomeRefused);
}

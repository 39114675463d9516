#include "batch/TargetsRun.h"

#include "batch/JobKey.h"
#include "batch/MapsRecord.h"
#include "batch/SourceFile.h"
#include "input/SpectrumReader.h"
#include "system/OrderedHandOver.h"
#include "system/Signals.h"

#include <QElapsedTimer>

namespace
{

constexpr double nanosecond = 1e-9;

/// @param source  of the target
TargetRow analyse(const TargetsRun& run, const QString& name, const SourceFile& source,
                  std::optional<Digest>& input)
{
    TargetRow row = analyseTarget(run.job, run.common, name, source.bytes());
    if (!input || source.isStill(*input))
        return row;
    input = std::nullopt;
    return refusedTarget(name, QStringLiteral("%1 changes while it is read").arg(name));
}

TargetStep stepOf(const TargetsRun& run, std::size_t number)
{
    TargetStep step;
    step.number = number;
    if (stopSignal() != 0)
        return step;
    QElapsedTimer timer;
    timer.start();
    const JobFilePath& target = run.targets[number];
    QString why;
    const std::optional<SourceFile> source = SourceFile::open(target.path, why);
    if (source && source->bytes().size() <= largestSpectrum)
        step.input = source->digest();
    if (step.input && run.known[number] == keyOfTarget(run.key, *step.input)) {
        step.state = TargetStep::State::Kept;
        return step;
    }
    const QString name = targetName(run.job, target);
    step.state = TargetStep::State::Calculated;
    step.row = source ? analyse(run, name, *source, step.input)
                      : refusedTarget(name, QStringLiteral("cannot open %1: %2").arg(name, why));
    step.seconds = static_cast<double>(timer.nsecsElapsed()) * nanosecond;
    return step;
}

} // namespace

bool runTargets(const TargetsRun& run, const std::function<bool(const TargetStep&)>& use,
                Workers& workers)
{
    const auto produce = [&](std::size_t i, unsigned, TargetStep& step) {
        step = stepOf(run, i);
        return true;
    };
    return runInOrder<TargetStep>(workers, run.targets.size(), produce, use);
}

std::vector<std::optional<Digest>> knownTargets(RunRecord& record, const PreparedJob& prepared,
                                                bool again)
{
    const std::vector<JobFilePath>& targets = prepared.list.targets;
    std::vector<std::optional<Digest>> keys(targets.size());
    for (std::size_t i = 0; i < keys.size() && !again && !record.isNew(); ++i) {
        const QByteArray name = targetName(prepared.job, targets[i]).toUtf8();
        if (!prepared.job.pictures)
            keys[i] = record.key(RowKind::Target, name);
        else if (const auto row = record.row(RowKind::Target, name);
                 row && areInPlace(row->outputs, prepared.job.output.path))
            keys[i] = row->key;
    }
    return keys;
}

std::optional<RecordedRow> recordedTarget(const TargetsRun& targets, const TargetStep& step)
{
    RecordedRow row;
    row.input = step.input;
    if (step.input)
        row.key = keyOfTarget(targets.key, *step.input);
    row.good = step.row.isGood();
    row.seconds = step.seconds;
    row.fields = targetFields(step.row);
    row.readOut = unseenText(step.row.figures.unseen);
    for (const QString& path : step.row.pictures) {
        const auto file = writtenFile(path, targets.job.output.path);
        if (!file)
            return std::nullopt;
        row.outputs.push_back(*file);
    }
    return row;
}

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

/// What a target is analysed from.
struct Sources {
    QString name;
    std::unique_ptr<TargetSource> target;
    QString foilPath; ///< empty where it has no foil
    std::optional<SourceFile> foil;
    QString why; ///< something cannot be opened
};

std::optional<SourceFile> openSource(const QString& path, const QString& name, QString& why)
{
    QString reason;
    auto source = SourceFile::open(path, reason);
    if (!source)
        why = QStringLiteral("cannot open %1: %2").arg(name, reason);
    return source;
}

Sources sourcesOf(const TargetsRun& run, const TargetJob& target)
{
    Sources sources;
    sources.name = targetName(run.job, target);
    sources.target = openTarget(run.job, target, sources.name, run.digests, sources.why);
    if (run.common.alignment)
        sources.foilPath = run.common.alignment->targetFoil(target.path());
    if (!sources.foilPath.isEmpty() && sources.target)
        sources.foil = openSource(sources.foilPath, run.common.alignment->shown(sources.foilPath),
                                  sources.why);
    return sources;
}

TargetRow analyse(const TargetsRun& run, const Sources& sources, TargetStep& step)
{
    TargetRow row = analyseTarget(
        run.job, run.common,
        {sources.name, *sources.target, sources.foil ? &sources.foil->bytes() : nullptr});
    QString changed = sources.target->changed(step.inputs);
    if (changed.isEmpty() && step.foil && !sources.foil->isStill(step.foil->digest))
        changed = QString::fromUtf8(step.foil->path);
    if (changed.isEmpty())
        return row;
    step.inputs = {};
    step.foil = std::nullopt;
    return refusedTarget(sources.name, QStringLiteral("%1 changes while it is read").arg(changed));
}

/// A foil that is no spectrum by its size is not read for its digest.
std::optional<Digest> digestOfSource(const std::optional<SourceFile>& source)
{
    return source && source->bytes().size() <= largestSpectrum ? source->digest() : std::nullopt;
}

/// What is recorded beside the input itself: the files of a stack, the foil.
std::vector<RecordedFile> othersOf(const TargetStep& step)
{
    std::vector<RecordedFile> files = step.inputs.files;
    if (step.foil)
        files.push_back(*step.foil);
    return files;
}

std::optional<Digest> keyOf(const TargetsRun& run, const TargetStep& step)
{
    return step.inputs.input
               ? std::optional(keyOfTarget(run.key, *step.inputs.input, othersOf(step)))
               : std::nullopt;
}

TargetStep stepOf(const TargetsRun& run, std::size_t number)
{
    TargetStep step;
    step.number = number;
    if (stopSignal() != 0)
        return step;
    QElapsedTimer timer;
    timer.start();
    const Sources sources = sourcesOf(run, run.targets[number]);
    if (sources.target)
        step.inputs = sources.target->inputs();
    if (const auto foil = digestOfSource(sources.foil))
        step.foil = RecordedFile{run.common.alignment->shown(sources.foilPath).toUtf8(), *foil};
    if (const auto key = keyOf(run, step); key && run.known[number] == key) {
        step.state = TargetStep::State::Kept;
        return step;
    }
    step.state = TargetStep::State::Calculated;
    step.row = sources.why.isEmpty() ? analyse(run, sources, step)
                                     : refusedTarget(sources.name, sources.why);
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
    const std::vector<TargetJob>& targets = prepared.list.targets;
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
    row.input = step.inputs.input;
    // A stack may have failed for want of time or memory, and is tried again.
    if (step.row.isRead || !targets.targets[step.number].region)
        row.key = keyOf(targets, step);
    row.inputs = othersOf(step);
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

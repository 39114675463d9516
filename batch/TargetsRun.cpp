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
    std::optional<SourceFile> target;
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

Sources sourcesOf(const TargetsRun& run, const QString& path, const QString& name)
{
    Sources sources;
    sources.name = name;
    sources.target = openSource(path, name, sources.why);
    if (run.common.alignment)
        sources.foilPath = run.common.alignment->targetFoil(path);
    if (!sources.foilPath.isEmpty() && sources.target)
        sources.foil = openSource(sources.foilPath, run.common.alignment->shown(sources.foilPath),
                                  sources.why);
    return sources;
}

TargetRow analyse(const TargetsRun& run, const Sources& sources, TargetStep& step)
{
    TargetRow row = analyseTarget(
        run.job, run.common,
        {sources.name, sources.target->bytes(), sources.foil ? &sources.foil->bytes() : nullptr});
    QString changed;
    if (step.input && !sources.target->isStill(*step.input))
        changed = sources.name;
    else if (step.foil && !sources.foil->isStill(step.foil->digest))
        changed = QString::fromUtf8(step.foil->path);
    if (changed.isEmpty())
        return row;
    step.input = std::nullopt;
    step.foil = std::nullopt;
    return refusedTarget(sources.name, QStringLiteral("%1 changes while it is read").arg(changed));
}

/// A file that is no spectrum by its size is not read for its digest.
std::optional<Digest> digestOfSource(const std::optional<SourceFile>& source)
{
    return source && source->bytes().size() <= largestSpectrum ? source->digest() : std::nullopt;
}

std::optional<Digest> foilOf(const std::optional<RecordedFile>& foil)
{
    return foil ? std::optional(foil->digest) : std::nullopt;
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
    const Sources sources = sourcesOf(run, target.path, targetName(run.job, target));
    step.input = digestOfSource(sources.target);
    if (const auto foil = digestOfSource(sources.foil))
        step.foil = RecordedFile{run.common.alignment->shown(sources.foilPath).toUtf8(), *foil};
    if (step.input && run.known[number] == keyOfTarget(run.key, *step.input, foilOf(step.foil))) {
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
        row.key = keyOfTarget(targets.key, *step.input, foilOf(step.foil));
    if (step.foil)
        row.inputs = {*step.foil};
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

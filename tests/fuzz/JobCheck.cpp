#include "jobs/JobFile.h"
#include "tests/fuzz/LiteralJob.h"
#include "tests/fuzz/ReaderChecks.h"

namespace
{

bool samePoints(const Job& job, const Job& expected)
{
    if (job.points.has_value() != expected.points.has_value())
        return false;
    if (!job.points)
        return true;
    return std::equal(job.points->begin(), job.points->end(), expected.points->begin(),
                      expected.points->end(), [](const JobPoint& a, const JobPoint& b) {
                          return a.energy == b.energy && a.use == b.use && a.tRatio == b.tRatio &&
                                 a.vPoint == b.vPoint && a.map.path == b.map.path;
                      });
}

bool sameStack(const std::optional<JobStack>& a, const std::optional<JobStack>& b)
{
    if (!a || !b)
        return a.has_value() == b.has_value();
    const StackSource& x = a->source;
    const StackSource& y = b->source;
    return x.path == y.path && x.kind == y.kind && x.data == y.data && x.energies == y.energies &&
           x.values == y.values && x.flat == y.flat && x.dark == y.dark &&
           x.darkLevel == y.darkLevel && x.reference == y.reference && x.pixelSize == y.pixelSize &&
           x.shift == y.shift && a->tilt == b->tilt && a->row0 == b->row0 &&
           a->region.x == b->region.x && a->region.y == b->region.y &&
           a->region.width == b->region.width && a->region.height == b->region.height;
}

bool sameSource(const SpectrumSource& a, const SpectrumSource& b)
{
    const ChosenColumns& x = a.columns;
    const ChosenColumns& y = b.columns;
    return a.kind == b.kind && x.energy == y.energy && x.mut == y.mut && x.i0 == y.i0 &&
           x.i == y.i && x.unit == y.unit && x.spacing == y.spacing;
}

bool samePath(const JobFilePath& a, const JobFilePath& b)
{
    return a.path == b.path && sameSource(a.source, b.source);
}

bool sameMaps(const Job& job, const Job& expected)
{
    return std::equal(job.maps.begin(), job.maps.end(), expected.maps.begin(), expected.maps.end(),
                      [](const JobMap& a, const JobMap& b) {
                          return a.name == b.name && samePath(a.pattern, b.pattern) &&
                                 sameStack(a.stack, b.stack) &&
                                 std::equal(a.images.begin(), a.images.end(), b.images.begin(),
                                            b.images.end(), samePath);
                      });
}

bool sameStackTargets(const Job& job, const Job& expected)
{
    return std::equal(job.stackTargets.begin(), job.stackTargets.end(),
                      expected.stackTargets.begin(), expected.stackTargets.end(),
                      [](const JobStackTarget& a, const JobStackTarget& b) {
                          return a.name == b.name && sameStack(a.stack, b.stack);
                      });
}

bool sameHistograms(const Job& job, const Job& expected)
{
    const auto same = [](const JobHistogram& a, const JobHistogram& b) {
        return a.from == b.from && a.to == b.to && a.boxes == b.boxes;
    };
    return same(job.valenceHistogram, expected.valenceHistogram) &&
           same(job.thicknessHistogram, expected.thicknessHistogram);
}

bool sameOutput(const Job& job, const Job& expected)
{
    return job.pictures == expected.pictures && job.report == expected.report &&
           job.mapFiles == expected.mapFiles && job.tiff == expected.tiff &&
           job.hdf5 == expected.hdf5 && job.language == expected.language;
}

bool sameNoise(const Job& job, const Job& expected)
{
    return job.noise == expected.noise && job.gain == expected.gain &&
           job.gain0 == expected.gain0 && job.level == expected.level &&
           job.mapScatter == expected.mapScatter && job.uneven == expected.uneven &&
           job.rankCounts == expected.rankCounts && job.rankThickness == expected.rankThickness;
}

bool sameAlignment(const JobAlignment& a, const JobAlignment& b)
{
    return a.table.path == b.table.path && samePath(a.foil, b.foil) &&
           std::equal(a.shifts.begin(), a.shifts.end(), b.shifts.begin(),
                      [](const JobShift& x, const JobShift& y) { return x.energy == y.energy; });
}

bool samePaths(const Job& job, const Job& expected)
{
    if (job.output.path != expected.output.path || job.targets.size() != expected.targets.size())
        return false;
    for (std::size_t i = 0; i < job.targets.size(); ++i)
        if (job.targets[i].path != expected.targets[i].path)
            return false;
    return job.mapResult.path == expected.mapResult.path &&
           std::equal(job.spectra.begin(), job.spectra.end(), expected.spectra.begin(), samePath);
}

const char* settingsDifference(const Job& job, const Job& expected)
{
    if (!samePaths(job, expected))
        return "paths";
    if (job.edge != expected.edge || job.preEdgeEnd != expected.preEdgeEnd ||
        job.postEdgeStart != expected.postEdgeStart)
        return "edge";
    if (job.valence1 != expected.valence1 || job.valence2 != expected.valence2)
        return "valences";
    if (job.thickness != expected.thickness ||
        job.referencesMinusVictreen != expected.referencesMinusVictreen ||
        job.targetMinusVictreen != expected.targetMinusVictreen ||
        job.victreenIsPre != expected.victreenIsPre || job.exactMethod != expected.exactMethod)
        return "conditions";
    if (job.calculateTarget != expected.calculateTarget ||
        job.calculateLcf != expected.calculateLcf || job.calculateMap != expected.calculateMap)
        return "calculations";
    if (!sameStackTargets(job, expected))
        return "targets of stacks";
    if (!sameMaps(job, expected))
        return "maps";
    if (!sameHistograms(job, expected))
        return "histograms";
    if (!sameNoise(job, expected))
        return "noise";
    if (!sameOutput(job, expected))
        return "output";
    if (!sameAlignment(job.alignment, expected.alignment))
        return "alignment";
    return samePoints(job, expected) ? nullptr : "rows";
}

} // namespace

const char* check::jobDifference(const QByteArray& text)
{
    const QString folder = QStringLiteral("/data");
    JobError error;
    const std::optional<Job> job = parseJob(text, folder, error);
    // The literal reading goes as deep as the text does, and so deep no stack holds it.
    constexpr int bottomless = 5000;
    if (!job && text.count('.') + text.count('[') + text.count('{') > bottomless)
        return nullptr;
    Job expected;
    if (literal::readJob(text, folder, expected) != job.has_value())
        return "whether it is a job";
    if (job)
        return settingsDifference(*job, expected);
    if (error.place.line < 1 || error.place.line > text.count('\n') + 1)
        return "the line of the refusal";
    const QString shown = errorText(QStringLiteral("job"), error);
    if (error.reason.isEmpty() || shown.contains(QLatin1Char('\n')))
        return "the reason of the refusal";
    return nullptr;
}

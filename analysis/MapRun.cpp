#include "analysis/MapRun.h"

#include "analysis/MapKernels.h"
#include "analysis/ThreadedCounts.h"
#include "system/AvailableMemory.h"

#include <algorithm>
#include <vector>

namespace
{

/// Whether the bins of both histograms fit in memory beside the results.
bool binsFit(const MapTask& task, const MapResults& earlier, const MapHistograms& histograms)
{
    constexpr std::size_t always = std::size_t{1} << 20;
    const std::size_t bytes =
        histograms.valenceSettings.bytes() + histograms.thicknessSettings.bytes();
    return bytes <= always ||
           bytes + mapBytes(task.columns, task.rows, earlier) <= availableMemory();
}

MapTask taskOf(const AnalysisInput& input, const std::vector<MapSource>& sources)
{
    MapTask task;
    task.points = input.table;
    task.choice = choosePoints(task.points);
    for (const MapSource& source : sources)
        task.images.push_back(source.image);
    const MapSource& owner = sources[task.choice.vPoint];
    task.columns = owner.columns;
    task.rows = owner.rows;
    task.positions = owner.positions;
    return task;
}

} // namespace

std::optional<Refusal> checkMap(const MapTask& task, const MapResults& earlier,
                                const MapHistograms& histograms)
{
    if (!histograms.valenceSettings.acceptable() || !histograms.thicknessSettings.acceptable())
        return Refusal::TooManyBoxes;
    const std::size_t measured = task.positions ? task.positions->size() : 0;
    if (!mapFits(task.columns, task.rows, measured, earlier))
        return Refusal::MapTooLarge;
    if (!binsFit(task, earlier, histograms))
        return Refusal::TooManyBoxes;
    return std::nullopt;
}

std::optional<Refusal> calculateMap(const MapTask& task, MapResults& results,
                                    const MapHistograms& histograms, Workers& workers)
{
    if (const auto refusal = checkMap(task, results, histograms))
        return refusal;
    ThreadedCounts valence(histograms.valenceSettings, workers.size());
    ThreadedCounts thickness(histograms.thicknessSettings, workers.size());
    std::vector<std::vector<double>> valences(workers.size(), std::vector<double>(kernelBlock));
    const auto count = [&](unsigned worker, const double* a, const double* t, std::size_t n) {
        std::vector<double>& values = valences[worker];
        for (std::size_t i = 0; i < n; ++i)
            values[i] = histograms.valences.mean(a[i]);
        valence.add(worker, values.data(), n);
        thickness.add(worker, t, n);
    };
    if (!calculatePixels(task, results, count, workers))
        return Refusal::MapTooLarge;
    histograms.valence = valence.take();
    histograms.thickness = thickness.take();
    return std::nullopt;
}

MapRun mapResult(const AnalysisInput& input, const std::vector<MapSource>& sources,
                 MapResults& results, const MapHistograms& histograms, Workers& workers,
                 MapSigmas* sigmas)
{
    PointRows counted = input.table;
    for (std::size_t i = 0; i < counted.size(); ++i)
        counted[i].use &= sources[i].valid;
    MapRun run;
    const RunDecision decision =
        decideMapRun(choosePoints(counted), input.spectra, input.conditions);
    if (const auto* refusal = std::get_if<RunRefusal>(&decision)) {
        run.refusal = *refusal;
        return run;
    }
    MapTask task = taskOf(input, sources);
    task.method = std::get<Method>(decision);
    task.sigmas = sigmas;
    run.gridRow = task.choice.vPoint;
    std::optional<Refusal> refusal = checkMap(task, results, histograms);
    if (!refusal && task.method != Method::ThreePoint) {
        run.ratios = thicknessRatios(input);
        task.rho = run.ratios->selected(input.conditions.thickness);
    }
    if (!refusal)
        refusal = calculateMap(task, results, histograms, workers);
    if (refusal)
        run.refusal = RunRefusal{*refusal, task.choice.count};
    else
        run.method = task.method;
    return run;
}

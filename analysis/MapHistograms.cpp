#include "analysis/MapHistograms.h"

#include "analysis/MapKernels.h"
#include "analysis/ThreadedCounts.h"
#include "system/AvailableMemory.h"

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

} // namespace

MapOutcome checkMap(const MapTask& task, const MapResults& earlier, const MapHistograms& histograms)
{
    if (!histograms.valenceSettings.acceptable() || !histograms.thicknessSettings.acceptable())
        return MapOutcome::TooManyBoxes;
    const std::size_t measured = task.positions ? task.positions->size() : 0;
    if (!mapFits(task.columns, task.rows, measured, earlier))
        return MapOutcome::GridTooLarge;
    return binsFit(task, earlier, histograms) ? MapOutcome::Calculated : MapOutcome::TooManyBoxes;
}

MapOutcome calculateMap(const MapTask& task, MapResults& results, const MapHistograms& histograms,
                        Workers& workers)
{
    const MapOutcome outcome = checkMap(task, results, histograms);
    if (outcome != MapOutcome::Calculated)
        return outcome;
    ThreadedCounts valence(histograms.valenceSettings, workers.size());
    ThreadedCounts thickness(histograms.thicknessSettings, workers.size());
    std::vector<std::vector<double>> valences(workers.size(), std::vector<double>(kernelBlock));
    const auto count = [&](unsigned worker, const double* a, const double* t, std::size_t n) {
        std::vector<double>& values = valences[worker];
        for (std::size_t i = 0; i < n; ++i)
            values[i] = meanValence(histograms.valence1, histograms.valence2, a[i]);
        valence.add(worker, values.data(), n);
        thickness.add(worker, t, n);
    };
    if (!calculateMap(task, results, count, workers))
        return MapOutcome::GridTooLarge;
    histograms.valence = valence.take();
    histograms.thickness = thickness.take();
    return MapOutcome::Calculated;
}

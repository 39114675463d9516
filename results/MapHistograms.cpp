#include "results/MapHistograms.h"

#include <vector>

namespace
{

/// What one thread counts.
struct Part {
    HistogramCounts valence;
    HistogramCounts thickness;
    std::vector<double> values;
};

} // namespace

MapOutcome checkMap(const MapTask& task, const MapResults& earlier, const MapHistograms& histograms)
{
    if (!histograms.valenceSettings.acceptable() || !histograms.thicknessSettings.acceptable())
        return MapOutcome::TooManyBoxes;
    const std::size_t measured = task.positions ? task.positions->size() : 0;
    return mapFits(task.columns, task.rows, measured, earlier) ? MapOutcome::Calculated
                                                               : MapOutcome::GridTooLarge;
}

MapOutcome calculateMap(const MapTask& task, MapResults& results, const MapHistograms& histograms,
                        Workers& workers)
{
    const MapOutcome outcome = checkMap(task, results, histograms);
    if (outcome != MapOutcome::Calculated)
        return outcome;
    std::vector<Part> parts(workers.size());
    for (Part& part : parts) {
        part.valence.reset(histograms.valenceSettings);
        part.thickness.reset(histograms.thicknessSettings);
    }
    const auto count = [&](unsigned worker, const double* a, const double* t, std::size_t n) {
        Part& part = parts[worker];
        part.values.resize(n);
        for (std::size_t i = 0; i < n; ++i)
            part.values[i] = meanValence(histograms.valence1, histograms.valence2, a[i]);
        part.valence.add(part.values.data(), n);
        part.thickness.add(t, n);
    };
    if (!calculateMap(task, results, count, workers))
        return MapOutcome::GridTooLarge;
    histograms.valence.reset(histograms.valenceSettings);
    histograms.thickness.reset(histograms.thicknessSettings);
    for (const Part& part : parts) {
        histograms.valence.merge(part.valence);
        histograms.thickness.merge(part.thickness);
    }
    return MapOutcome::Calculated;
}

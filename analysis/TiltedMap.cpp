#include "analysis/TiltedMap.h"

#include <algorithm>
#include <mutex>

namespace
{

/// The table of a row: all energies moved.
PointRows tableOf(const AnalysisInput& input, std::vector<ChosenPoint> points, double shift)
{
    for (ChosenPoint& point : points)
        if (point.energy)
            *point.energy += shift;
    return pointTable(points, input.spectra, input.conditions);
}

/// A row of the map, whose thickness ratio of the references is that of all rows.
MapTask taskOf(const PointRows& table, const std::vector<MapSource>& sources, const MapRun& whole,
               ThicknessType thickness, std::size_t row)
{
    MapTask task;
    task.method = *whole.method;
    task.points = table;
    task.choice = choosePoints(table);
    const MapSource& owner = sources[whole.gridRow];
    task.columns = owner.columns;
    task.rows = 1;
    task.positions = owner.positions;
    if (whole.ratios)
        task.rho = whole.ratios->selected(thickness);
    for (const MapSource& source : sources) {
        MapImage image = source.image;
        const auto columns = static_cast<std::size_t>(std::max(image.columns, 0));
        const std::size_t begin = std::min(row * columns, image.size);
        image.mut += image.mut != nullptr ? begin : 0;
        image.size = std::min(columns, image.size - begin);
        task.images.push_back(image);
    }
    return task;
}

/// The noise of a row of the map.
MapSigmas sigmasOf(const MapSigmas& whole, const std::vector<MapSource>& sources, std::size_t row)
{
    MapSigmas sigmas;
    sigmas.noise = whole.noise;
    for (std::size_t i = 0; i < sources.size(); ++i)
        if (const MapImage& image = sources[i].image; sigmas.noise[i].each != nullptr)
            sigmas.noise[i].each +=
                std::min(row * static_cast<std::size_t>(std::max(image.columns, 0)), image.size);
    return sigmas;
}

} // namespace

MapRun tiltedMapResult(const AnalysisInput& input, const std::vector<ChosenPoint>& points,
                       const std::vector<MapSource>& sources, const EnergyTilt& tilt,
                       MapResults& results, const MapHistograms& histograms, Workers& workers,
                       MapSigmas* sigmas)
{
    // Refuses what is to be refused, and makes room; its numbers are then written over.
    const MapRun whole = mapResult(input, sources, results, histograms, workers, sigmas);
    if (whole.refusal || tilt.evPerRow == 0.0)
        return whole;
    histograms.valence.reset(histograms.valenceSettings);
    histograms.thickness.reset(histograms.thicknessSettings);
    const auto columns = static_cast<std::size_t>(results.columns);
    std::vector<MapSums> sums(static_cast<std::size_t>(results.rows));
    std::mutex mutex; // guards the histograms
    workers.run(static_cast<std::size_t>(results.rows), [&](std::size_t row, unsigned) {
        const double shift = tilt.evPerRow * (static_cast<double>(row) - tilt.row0);
        HistogramCounts valence;
        HistogramCounts thickness;
        MapResults line;
        Workers alone(1);
        MapTask task =
            taskOf(tableOf(input, points, shift), sources, whole, input.conditions.thickness, row);
        MapSigmas own = sigmas != nullptr ? sigmasOf(*sigmas, sources, row) : MapSigmas();
        task.sigmas = sigmas != nullptr ? &own : nullptr;
        calculateMap(task, line,
                     {valence, thickness, histograms.valenceSettings, histograms.thicknessSettings,
                      histograms.valences},
                     alone);
        std::copy(line.a.begin(), line.a.end(), results.a.begin() + row * columns);
        std::copy(line.t.begin(), line.t.end(), results.t.begin() + row * columns);
        if (sigmas != nullptr) {
            std::copy(own.a.begin(), own.a.end(), sigmas->a.begin() + row * columns);
            std::copy(own.t.begin(), own.t.end(), sigmas->t.begin() + row * columns);
            sums[row] = own.sums;
        }
        const std::lock_guard<std::mutex> lock(mutex);
        histograms.valence.merge(valence);
        histograms.thickness.merge(thickness);
    });
    if (sigmas != nullptr) {
        sigmas->sums = MapSums();
        for (const MapSums& row : sums)
            sigmas->sums += row;
    }
    return whole;
}

#include "analysis/MapRun.h"
#include "bench/PairedTimes.h"
#include "bench/PlainMapRun.h"
#include "examples/MapSample.h"
#include "input/KnownPositions.h"
#include "input/MapReader.h"
#include "results/ResultFile.h"
#include "tests/support/MapTable.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <map>

namespace
{

const PointRows& table()
{
    static const PointRows rows = mapTable();
    return rows;
}

/// Square maps, written once for each size.
QString folderOf(int side)
{
    static const QTemporaryDir dir;
    static std::map<int, QString> made;
    QString& folder = made[side];
    if (folder.isEmpty()) {
        folder = dir.filePath(QString::number(side));
        MapSample map;
        map.columns = side;
        map.rows = side;
        if (!writeMap(folder, map).isEmpty())
            qFatal("the maps cannot be written");
    }
    return folder;
}

QString pathOf(int side, int image)
{
    return QDir(folderOf(side)).filePath(mapFileName(image));
}

struct ProgramMaps {
    KnownPositions positions;
    std::vector<MapData> data{4};
    MapResults results;
    HistogramCounts valences;
    HistogramCounts thicknesses;

    explicit ProgramMaps(int side)
    {
        for (int i = 0; i < 4; ++i)
            readMapData(pathOf(side, i), data[static_cast<std::size_t>(i)], options());
    }

    MapReadOptions options()
    {
        MapReadOptions shared;
        shared.knownPositions = &positions;
        return shared;
    }

    void calculate(Method method, Workers& workers, MapSigmas* sigmas = nullptr)
    {
        const std::size_t count = method == Method::ThreePoint ? 3 : 4;
        MapTask task;
        task.method = method;
        task.points = {table().begin(), table().begin() + static_cast<std::ptrdiff_t>(count)};
        task.choice = choosePoints(task.points);
        for (std::size_t i = 0; i < count; ++i)
            task.images.push_back(data[i].image());
        task.columns = data[2].columns;
        task.rows = data[2].rows;
        task.positions = data[2].positions;
        task.rho = 1.1;
        task.sigmas = sigmas;
        const MapHistograms histograms{
            valences, thicknesses, {1.5, 3.5, 41, false}, {-0.2, 1.2, 41, false}, 2.0, 3.0};
        calculateMap(task, results, histograms, workers);
    }
};

/// The plain maps of a size; reading them takes long.
plain::MapRun& plainMaps(int side)
{
    static std::map<int, plain::MapRun> made;
    plain::MapRun& run = made[side];
    if (run.images.isEmpty()) {
        run.images.resize(3);
        run.images[0].read(pathOf(side, 0));
        run.images[1].read(pathOf(side, 1));
        run.images[2].read(pathOf(side, 3));
        run.imageV.read(pathOf(side, 2));
    }
    return run;
}

bool same(const plain::MapRun& run, const ProgramMaps& program)
{
    bool equal = static_cast<std::size_t>(run.results.size()) == program.results.size() &&
                 run.valences.counts == program.valences.counts &&
                 run.thicknesses.counts == program.thicknesses.counts;
    for (int i = 0; i < run.results.size() && equal; ++i) {
        const auto k = static_cast<std::size_t>(i);
        equal = run.results[i].a == program.results.a[k] &&
                run.results[i].t == program.results.t[k] &&
                run.results[i].first == program.results.position(k).first;
    }
    return equal;
}

/// One 2D data file, mu-t included.
void readMap(benchmark::State& state)
{
    const QString path = pathOf(static_cast<int>(state.range(0)), 2);
    KnownPositions positions;
    MapReadOptions options;
    options.knownPositions = &positions;
    MapData data;
    plain::MapFile file;
    std::vector<double> mut;
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state, [&] { readMapData(path, data, options); },
            [&] {
                file.read(path);
                mut.clear();
                for (const plain::MapFile::Record& record : file.records)
                    mut.push_back(record.mut());
            });
    }
    times.report(state);
    if (mut != std::vector<double>(data.mut.begin(), data.mut.end()))
        state.SkipWithError("the two ways differ");
}

/// One recalculation, histograms included.
void calculate(benchmark::State& state, Method method)
{
    const auto side = static_cast<int>(state.range(0));
    ProgramMaps program(side);
    plain::MapRun run = plainMaps(side);
    const bool three = method == Method::ThreePoint;
    run.rho = 1.1;
    for (const std::size_t i : {0U, 1U, 3U})
        run.table.points.push_back(plain::point(table()[i], 0.0));
    if (three) {
        run.table.points.pop_back();
        run.images.removeLast();
    }
    run.table.v = plain::point(table()[2], 0.0);
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state, [&] { program.calculate(method, Workers::shared()); },
            [&] {
                run.calculate([&](const plain::PixelInput& in) {
                    if (method == Method::ThreePoint)
                        return plain::threePoint(in);
                    if (method == Method::FourPointExact)
                        return plain::fourPointExact(in, run.rho);
                    return plain::fourPointLeastSquares(in, run.rho);
                });
            });
    }
    times.report(state);
    if (!same(run, program))
        state.SkipWithError("the two ways differ");
}

/// A map with the standard deviation of every pixel, and without; the noise is the same for all
/// images, or another one for each.
void sigmas(benchmark::State& state, Method method, bool sameNoise)
{
    ProgramMaps with(static_cast<int>(state.range(0)));
    ProgramMaps without(static_cast<int>(state.range(0)));
    MapSigmas sigmas;
    for (int i = 0; i < 4; ++i)
        sigmas.noise.push_back({1e-6 * (sameNoise ? 1 : 1 + i), nullptr});
    PairedTimes times;
    for (auto _ : state)
        times.run(
            state, [&] { with.calculate(method, Workers::shared(), &sigmas); },
            [&] { without.calculate(method, Workers::shared()); });
    times.report(state);
    if (!std::equal(with.results.a.begin(), with.results.a.end(), without.results.a.begin()))
        state.SkipWithError("the two ways differ");
}

/// The result file of a map.
void writeResults(benchmark::State& state)
{
    const auto side = static_cast<int>(state.range(0));
    ProgramMaps program(side);
    program.calculate(Method::FourPointExact, Workers::shared());
    plain::MapRun& run = plainMaps(side);
    run.results.clear();
    for (std::size_t i = 0; i < program.results.size(); ++i) {
        const MapPosition position = program.results.position(i);
        run.results.append(
            {position.first, position.second, program.results.a[i], program.results.t[i]});
    }
    const QString path = QDir(folderOf(side)).filePath(QStringLiteral("result.dat"));
    const QString plainPath = QDir(folderOf(side)).filePath(QStringLiteral("plain.dat"));
    PairedTimes times;
    for (auto _ : state) {
        QFile::remove(path); // overwriting would wait for the disk
        QFile::remove(plainPath);
        times.run(
            state,
            [&] {
                writeResultFile(path, program.data[2].header, program.results, {2.0, 3.0});
            },
            [&] { run.write(plainPath); });
    }
    times.report(state);
    QFile one(path);
    QFile other(plainPath);
    if (!one.open(QIODevice::ReadOnly) || !other.open(QIODevice::ReadOnly) ||
        one.readAll() != other.readAll())
        state.SkipWithError("the two ways differ");
}

/// The program's way alone, for several sizes and numbers of threads.
using Work = void (*)(ProgramMaps& maps, int side, Workers& workers);

void alone(benchmark::State& state, Work work)
{
    const auto side = static_cast<int>(state.range(0));
    Workers workers(static_cast<unsigned>(state.range(1)));
    ProgramMaps maps(side);
    maps.calculate(Method::FourPointLeastSquares, workers);
    std::vector<double> seconds;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        work(maps, side, workers);
        seconds.push_back(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        state.SetIterationTime(seconds.back());
    }
    const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
    std::nth_element(seconds.begin(), middle, seconds.end());
    state.counters["ns_a_pixel"] = *middle * 1e9 / (static_cast<double>(side) * side);
}

void readAgain(ProgramMaps& maps, int side, Workers& workers)
{
    readMapData(pathOf(side, 2), maps.data[2], maps.options(), workers);
}

template <Method method>
void calculateAgain(ProgramMaps& maps, int, Workers& workers)
{
    maps.calculate(method, workers);
}

void writeAgain(ProgramMaps& maps, int side, Workers& workers)
{
    const QString path = QDir(folderOf(side)).filePath(QStringLiteral("result.dat"));
    QFile::remove(path); // overwriting would wait for the disk
    writeResultFile(path, maps.data[2].header, maps.results, {2.0, 3.0}, {}, workers);
}

constexpr int pairs = 15;
constexpr int megapixel = 1024;

void inPairs(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("side")
        ->Arg(megapixel)
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(pairs);
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"side", "threads"})->Unit(benchmark::kMillisecond)->UseManualTime();
    for (const int threads : {1, 2})
        for (const int side : {256, 512, 1024, 2048, 4096})
            benchmark->Args({side, threads});
}

BENCHMARK(readMap)->Apply(inPairs);
BENCHMARK_CAPTURE(calculate, threePoint, Method::ThreePoint)->Apply(inPairs);
BENCHMARK_CAPTURE(calculate, exact, Method::FourPointExact)->Apply(inPairs);
BENCHMARK_CAPTURE(calculate, leastSquares, Method::FourPointLeastSquares)->Apply(inPairs);
BENCHMARK_CAPTURE(sigmas, threePoint, Method::ThreePoint, true)->Apply(inPairs);
BENCHMARK_CAPTURE(sigmas, exact, Method::FourPointExact, true)->Apply(inPairs);
BENCHMARK_CAPTURE(sigmas, leastSquares, Method::FourPointLeastSquares, true)->Apply(inPairs);
BENCHMARK_CAPTURE(sigmas, ownNoises, Method::FourPointLeastSquares, false)->Apply(inPairs);
BENCHMARK(writeResults)->Apply(inPairs);
BENCHMARK_CAPTURE(alone, read, readAgain)->Apply(sizes);
BENCHMARK_CAPTURE(alone, threePoint, calculateAgain<Method::ThreePoint>)->Apply(sizes);
BENCHMARK_CAPTURE(alone, leastSquares, calculateAgain<Method::FourPointLeastSquares>)->Apply(sizes);
BENCHMARK_CAPTURE(alone, write, writeAgain)->Apply(sizes);

} // namespace

BENCHMARK_MAIN();

#include "analysis/BlockLogarithm.h"
#include "batch/JobData.h"
#include "bench/PairedTimes.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "examples/StackFiles.h"
#include "formats/StackMaps.h"
#include "formats/StackProcess.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <cmath>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int side = 2048;

/// A stack of four frames of 16 bits with flats and dark, in the layouts that are measured.
struct Layout {
    const char* name;
    const char* keys;     ///< of its [[map]]
    bool isAsked = false; ///< drovik-stack reads it, as it does where images are compressed
};
constexpr const char* tiffKeys = "stack = \"pages.tif\"\nvalues = \"counts\"\n"
                                 "flat = \"pages-flat.tif\"\ndark = \"pages-dark.tif\"\n";
constexpr const char* exchangeKeys = "stack = \"exchange.h5\"\n";
constexpr std::array<Layout, 6> layouts{
    {{"img", "stack = \"scan.dat\"\nreference = \"scan.dat.ref\"\n"},
     {"his", "stack = \"scan.his\"\nenergies = \"scan.his.txt\"\nflat = \"scan.his.flat\"\ndark = "
             "\"scan.his.dark\"\n"},
     {"tiff", tiffKeys},
     {"exchange", exchangeKeys},
     {"tiff, asked", tiffKeys, true},
     {"exchange, asked", exchangeKeys, true}}};

/// A folder on a disk, from which the files are then read; none for memory.
const QByteArray& coldFolder()
{
    static const QByteArray folder = qgetenv("DROVIK_COLD_FOLDER");
    return folder;
}

/// The files, in memory, as a page cache has them, or on a disk.
class Files
{
public:
    Files()
        : m_dir(QFile::decodeName(coldFolder().isEmpty() ? "/dev/shm" : coldFolder()) +
                QStringLiteral("/stacks-XXXXXX"))
    {
        MapSample map;
        map.columns = map.rows = side;
        if (!writeStackExample(m_dir.path(), map).isEmpty())
            qFatal("no place for the files");
    }

    Job job(const Layout& layout) const
    {
        const QByteArray text =
            "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = \"blank.dat\"\n"
            "[conditions]\nthickness = \"sum-by-sum\"\nreferences_minus_victreen = false\n"
            "[output]\nfolder = \"out\"\n[[point]]\nenergy = 8313\n[[point]]\nenergy = 8381\n"
            "[[point]]\nenergy = 8390\nv_point = true\n[[point]]\nenergy = 8404.5\n"
            "[[map]]\nname = \"m\"\n" +
            QByteArray(layout.keys);
        JobError error;
        const auto job = parseJob(text, m_dir.path(), error);
        if (!job)
            qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
        return *job;
    }

    /// Has the page cache forget files on a disk.
    void forget() const
    {
        for (const QFileInfo& info : QDir(m_dir.path()).entryInfoList(QDir::Files)) {
            QFile file(info.filePath());
            if (!file.open(QIODevice::ReadOnly) || fsync(file.handle()) != 0 ||
                posix_fadvise(file.handle(), 0, 0, POSIX_FADV_DONTNEED) != 0)
                qFatal("%s stays in the page cache", qPrintable(info.filePath()));
        }
    }

private:
    QTemporaryDir m_dir;
};

/// From the files to a and t/ts of every pixel in memory.
void mapOfStack(benchmark::State& state)
{
    static const Files files;
    const Layout& layout = layouts[static_cast<std::size_t>(state.range(0))];
    const Job job = files.job(layout);
    StackLimits limits;
    limits.alwaysAsked = layout.isAsked;
    setStackProgram(QStringLiteral(STACK_PROGRAM), limits);
    JobError error;
    const auto common = readJobData(job, error);
    const JobStack& given = *job.maps.front().stack;
    Workers workers(2);
    std::size_t pixels = 0;
    for (auto _ : state) {
        if (!coldFolder().isEmpty()) {
            state.PauseTiming();
            files.forget();
            state.ResumeTiming();
        }
        FileFault fault;
        const std::unique_ptr<Stack> stack = openStack(given.source, fault);
        std::vector<MapData> images;
        if (!stack || stackMaps(*stack, given.source.path, mapEnergies(), {}, images, workers))
            qFatal("%s cannot be read", layout.name);
        std::vector<MapSource> sources(common->input.table.size());
        for (std::size_t i = 0; i < images.size(); ++i)
            sources[i] = images[i].source();
        MapResults results;
        HistogramCounts valence;
        HistogramCounts thickness;
        const Settings& settings = common->settings;
        mapResult(common->input, sources, results,
                  {valence, thickness, settings.valenceHistogram, settings.thicknessHistogram,
                   settings.valences},
                  workers);
        pixels = results.size();
    }
    if (pixels != std::size_t{side} * side)
        state.SkipWithError("pixels are missing");
    state.SetLabel(layout.name);
}
BENCHMARK(mapOfStack)
    ->DenseRange(0, 5)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// Logarithms of a million ratios of counts, in the blocks that pixels are taken in, beside
/// std::log.
void logarithms(benchmark::State& state)
{
    constexpr std::size_t block = 512;
    constexpr int blocks = 2048;
    std::vector<double> incident(block);
    std::vector<double> transmitted(block);
    std::vector<double> program(block);
    std::vector<double> plain(block);
    for (std::size_t i = 0; i < block; ++i) {
        incident[i] = 50000.0 + static_cast<double>(i);
        transmitted[i] = 1000.0 + static_cast<double>(i * 7919 % 40000);
    }
    PairedTimes times;
    for (auto _ : state)
        times.run(
            state,
            [&] {
                for (int k = 0; k < blocks; ++k) {
                    logarithmsOfRatios(incident.data(), transmitted.data(), block, program.data());
                    benchmark::ClobberMemory();
                }
            },
            [&] {
                for (int k = 0; k < blocks; ++k) {
                    for (std::size_t i = 0; i < block; ++i)
                        plain[i] = std::log(incident[i] / transmitted[i]);
                    benchmark::ClobberMemory();
                }
            });
    for (std::size_t i = 0; i < block; ++i)
        if (std::abs(program[i] - plain[i]) > 1e-15)
            state.SkipWithError("the logarithms differ");
    times.report(state);
}
BENCHMARK(logarithms)->UseManualTime()->Iterations(501)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

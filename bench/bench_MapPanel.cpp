#include "app/Body.h"
#include "app/FourPs.h"
#include "app/MapWindow.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "input/AEPoint.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <unistd.h>
#include <vector>

namespace
{

/// Resident memory of this process, bytes.
double residentBytes()
{
    std::ifstream file("/proc/self/statm");
    double size = 0.0;
    double resident = 0.0;
    file >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// The main window and the graph window with a map of four files.
struct Session {
    QTemporaryDir dir;
    Body body;
    double emptyBytes = 0.0;

    explicit Session(int side)
    {
        MapSample map;
        map.columns = side;
        map.rows = side;
        if (!writeSample(dir.path(), map.sample, std::nullopt).isEmpty() ||
            !writeMap(dir.path(), map).isEmpty())
            qFatal("the example cannot be written");
        body.show();
        panel().displays->show();
        panel().displays->resize(1200, 900); // of one size on every screen
        panel().RefFile1->setFile(dir.filePath(fileName(Measurement::Ref1)));
        panel().RefFile2->setFile(dir.filePath(fileName(Measurement::Ref2)));
        QApplication::processEvents();
        emptyBytes = residentBytes();
        QStringList paths;
        for (int i = 0; i < 4; ++i)
            paths << dir.filePath(mapFileName(i));
        panel().mapFileSelect->newFiles(paths);
        panel().calcMap();
        QApplication::processEvents();
    }

    FourPs& panel() const { return *body.panel(); }
};

/// A click on a thickness button: the map of four rows, histograms, and the repaint of "t/a" and
/// both histograms; and of the window of the map, where that is open.
void click(benchmark::State& state)
{
    const auto side = static_cast<int>(state.range(0));
    const Session session(side);
    const bool mapOpen = state.range(1) != 0;
    if (mapOpen) {
        session.panel().mapWindow().show();
        QApplication::processEvents();
    }
    const double pixels = static_cast<double>(side) * side;
    const double bytes = residentBytes() - session.emptyBytes;
    bool mean = false;
    std::vector<double> seconds;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        (mean ? session.panel().TRMean : session.panel().TRVic2)->click();
        QApplication::processEvents();
        seconds.push_back(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        state.SetIterationTime(seconds.back());
        mean = !mean;
    }
    std::sort(seconds.begin(), seconds.end());
    state.counters["median_ms"] = seconds[seconds.size() / 2] * 1e3;
    state.counters["bytes_a_pixel"] = bytes / pixels;
    if (session.panel().lastMap().size() != static_cast<std::size_t>(pixels))
        state.SkipWithError("no map");
}

BENCHMARK(click)
    ->ArgNames({"side", "map_window"})
    ->Args({1024, 0})
    ->Args({1024, 1})
    ->Args({2048, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(41);

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

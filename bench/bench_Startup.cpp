#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace
{

/// Seconds from the start of a program to its end.
double run(const char* program)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice()); // remarks of the platform
    process.start(QString::fromLocal8Bit(program), QStringList());
    process.waitForFinished(-1);
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

/// Starts both programs in turn, so that both see the same machine.
void startUp(benchmark::State& state)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    std::vector<double> empty;
    std::vector<double> drovik;
    for (auto _ : state) {
        empty.push_back(run(START_EMPTY));
        drovik.push_back(run(START_DROVIK));
        state.SetIterationTime(drovik.back());
    }
    state.counters["empty_ms"] = median(empty) * 1e3;
    state.counters["drovik_ms"] = median(drovik) * 1e3;
    state.counters["ratio"] = median(drovik) / median(empty);
}

BENCHMARK(startUp)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(41);

} // namespace

BENCHMARK_MAIN();

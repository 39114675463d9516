#include "formats/SpectrumFile.h"
#include "system/Workers.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include <atomic>
#include <cmath>

namespace
{

constexpr int files = 200;
constexpr int rows = 500;

/// XDI files as a beamline writes them, 500 rows of four columns.
void makeFiles(const QTemporaryDir& dir)
{
    for (int k = 0; k < files; ++k) {
        QByteArray text = "# XDI/1.0\n# Column.1: energy eV\n# Column.2: i0\n# Column.3: itrans\n"
                          "# Column.4: irefer\n# ///\n# ---\n# energy i0 itrans irefer\n";
        for (int i = 0; i < rows; ++i)
            text += QByteArray::number(7000.0 + 0.5 * i, 'f', 4) + "  " +
                    QByteArray::number(153421.5 + i + k, 'f', 3) + "  " +
                    QByteArray::number(52133.25 + i, 'f', 3) + "  " +
                    QByteArray::number(12033.125 + i, 'f', 3) + "\n";
        QFile file(dir.filePath(QString::number(k)));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("no place for the files");
    }
}

void readXdi(benchmark::State& state)
{
    const QTemporaryDir dir;
    makeFiles(dir);
    Workers workers(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        std::atomic<std::size_t> points{0};
        workers.run(files, [&](std::size_t k, unsigned) {
            const auto outcome = readSpectrumFile(
                dir.filePath(QString::number(static_cast<qulonglong>(k))), SpectrumSource());
            points += std::get<FoundSpectrum>(outcome).points.size();
        });
        if (points != std::size_t{files} * rows)
            state.SkipWithError("points are missing");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * files);
}
BENCHMARK(readXdi)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

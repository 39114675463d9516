#include "app/Body.h"
#include "app/FourPs.h"
#include "bench/BenchSpectrum.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>

namespace
{

struct Session {
    QTemporaryDir dir;
    Body body;
    QString target;

    explicit Session(bool graphs)
    {
        const auto path = [&](const char* name) { return dir.filePath(QLatin1String(name)); };
        body.resize(1280, 760);
        body.show();
        FourPs* panel = body.panel();
        panel->ePoints[0]->TRatCB->setChecked(true);
        panel->ePoints[3]->TRatCB->setChecked(true);
        panel->RefFile1->setFile(writeBenchSpectrum(path("ref1.dat"), 0.5));
        panel->RefFile2->setFile(writeBenchSpectrum(path("ref2.dat"), 0.1));
        target = writeBenchSpectrum(path("target.dat"), 0.3);
        panel->TargetFile->setFile(target);
        if (graphs)
            panel->displays->show();
        QApplication::processEvents();
    }
};

/// One full reaction to a new target: read, fit, fill the column, both methods, LCF, repaint.
void newTarget(benchmark::State& state)
{
    Session session(state.range(0) != 0);
    for (auto _ : state) {
        session.body.panel()->TargetFile->setFile(session.target);
        QApplication::processEvents();
    }
    if (!session.body.panel()->CalcRes->text().startsWith(QLatin1String("4ps2: a = ")))
        state.SkipWithError("no result");
}

BENCHMARK(newTarget)
    ->ArgName("graphs")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(9);

/// Display-only files that are chosen all at once.
void displayFiles(benchmark::State& state)
{
    Session session(false);
    FourPs* panel = session.body.panel();
    QStringList paths;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        paths << session.target;
    for (auto _ : state) {
        panel->receiveNewDispFiles(paths);
        QApplication::processEvents();
        state.PauseTiming();
        while (panel->SelectedFs->count() > 0)
            panel->removeAFile();
        state.ResumeTiming();
    }
}

BENCHMARK(displayFiles)
    ->ArgName("files")
    ->Arg(250)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

#include "app/Body.h"
#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cmath>

namespace
{

/// Writes 1000 points from 8200 to 8700 eV with a bump at 8390 eV.
QString writeSpectrum(const QString& path, double bump)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(" D= 3.1355316\n Offset\n");
    for (int i = 0; i < 1000; ++i) {
        const double e = 8200 + 0.5 * i;
        const double angle =
            std::asin(12398.424360387684 / (2 * 3.1355316 * e)) * 180 / 3.1415926535;
        const double x = (e - 8390) / 4;
        const double mut = 0.2 + (e > 8350 ? 1.0 : 0.0) + bump * std::exp(-x * x);
        file.write(QByteArray::number(i) + ' ' + QByteArray::number(angle, 'f', 12) +
                   " 1.00 1000000.0 " + QByteArray::number(1000000 * std::exp(-mut), 'f', 6) +
                   '\n');
    }
    return path;
}

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
        panel->RefFile1->setFile(writeSpectrum(path("ref1.dat"), 0.5));
        panel->RefFile2->setFile(writeSpectrum(path("ref2.dat"), 0.1));
        target = writeSpectrum(path("target.dat"), 0.3);
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

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

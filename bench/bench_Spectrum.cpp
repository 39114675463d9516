#include "analysis/LinearCombinationFit.h"
#include "bench/PairedTimes.h"
#include "input/AXafsData.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/PlainReader.h"
#include "tests/support/SpectrumFile.h"

#include <QTemporaryDir>

#include <cmath>
#include <cstdio>

namespace
{

double ironLike(double energy)
{
    return 0.4 + (energy < 7120 ? 0.0 : 1.2) - 0.0002 * (energy - 7120);
}

/// Rows of fixed width as the beamline's programs write them, about 50 bytes each.
QByteArray rowsOf(const SpectrumPoints& points)
{
    QByteArray text = "  9809 made\n Mono :  SI(111)  D=  3.13551 A\n    Offset 0 0 0.000 0.000\n";
    for (const SpectrumPoint& point : points) {
        const double angle =
            std::asin(12398.424360387684 / (2 * 3.13551 * point.energy)) * 180 / 3.1415926535;
        char row[100];
        std::snprintf(row, sizeof row, "%10.5f%10.5f%10.2f%10.0f%10.1f\n", angle, angle, 1.0,
                      1e6 * std::exp(point.mut), 1e6);
        text += row;
    }
    return text;
}

AXafsData withIronRange()
{
    AXafsData data;
    data.preEdgeEnd = 7090;
    data.edge = 7120;
    data.postEdgeStart = 7220;
    return data;
}

/// Reading a file of so many rows and fitting its lines, as a drop of the file does.
void readAndFit(benchmark::State& state)
{
    const QTemporaryDir dir;
    const double step = 1000.0 / static_cast<double>(state.range(0) - 1);
    const QString path = spectra::write(
        dir, "iron.dat", rowsOf(spectra::sampled(spectra::grid(6900, 7900.001, step), ironLike)));
    AXafsData program = withIronRange();
    AXafsData plainly = withIronRange();
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state, [&] { program.read(path); },
            [&] {
                plainly.points = plain::readSpectrum(path);
                plainly.fitVictreens();
            });
    }
    times.report(state);
    state.counters["rows"] = static_cast<double>(program.points.size());
    if (program.points.size() != plainly.points.size() || program.edgeJump() != plainly.edgeJump())
        state.SkipWithError("the two ways differ");
}

/// The linear combination fit over all points, against a walk through the references for each.
void combine(benchmark::State& state)
{
    const double step = 1000.0 / static_cast<double>(state.range(0) - 1);
    AXafsData ref1 = withIronRange();
    ref1.points = spectra::sampled(spectra::grid(6900, 7900.001, step), ironLike);
    ref1.fitVictreens();
    AXafsData ref2 = ref1;
    AXafsData target = ref1;
    for (SpectrumPoint& point : ref2.points)
        point.mut += std::exp(-std::pow((point.energy - 7130) / 10, 2));
    for (SpectrumPoint& point : target.points)
        point.mut += 0.3 * std::exp(-std::pow((point.energy - 7130) / 10, 2));
    const auto literal = [](const AXafsData& data) {
        const auto line = [](const VictreenLine& l) {
            return formulas::Victreen{l.c, l.a, l.b, 0, 0};
        };
        return formulas::Spectrum<SpectrumPoints>{data.points, line(data.preVic),
                                                  line(data.postVic)};
    };
    const formulas::Spectrum<SpectrumPoints> plain1 = literal(ref1);
    const formulas::Spectrum<SpectrumPoints> plain2 = literal(ref2);
    const formulas::Spectrum<SpectrumPoints> plainTarget = literal(target);
    double program = 0.0;
    double plainly = 0.0;
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state,
            [&] {
                program = fitLinearCombination(ref1, ref2, target, {6900, 7900}).share1();
            },
            [&] { plainly = formulas::combine(plain1, plain2, plainTarget, 6900, 7900, 2, 3).a; });
    }
    times.report(state);
    if (program != plainly)
        state.SkipWithError("the two ways differ");
}

BENCHMARK(readAndFit)
    ->ArgName("rows")
    ->Arg(1001)
    ->Arg(10001)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(101);
BENCHMARK(combine)
    ->ArgName("rows")
    ->Arg(1001)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(101);

} // namespace

BENCHMARK_MAIN();

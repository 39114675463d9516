#include "analysis/MapKernels.h"
#include "analysis/MapRun.h"
#include "bench/PairedTimes.h"
#include "bench/StandardWays.h"
#include "examples/MapSample.h"
#include "input/MapLines.h"
#include "system/PixelArray.h"
#include "system/Workers.h"
#include "tests/support/MapTable.h"
#include "text/NumberField.h"
#include "text/NumberText.h"

#include <QtConcurrent>

#include <tbb/parallel_for.h>

#include <malloc.h>

#include <numeric>
#include <random>
#include <thread>

/// Parts written by hand (the "program") and the library that does the same (the "plain" way).
namespace
{

constexpr std::size_t million = 1000000;

/// Lines of 2D data whose I0 of 0 spares both ways the logarithm, and sixteen bytes behind them.
QByteArray mapText()
{
    QByteArray text;
    for (int i = 0; i < 262144; ++i)
        text += QByteArray::number(0.02 * (i % 512), 'f', 2) + ' ' +
                QByteArray::number(0.02 * (i / 512), 'f', 2) + ' ' +
                QByteArray::number(1e6 * std::exp(-0.0001 * (i % 9973)), 'f', 1) + " 0\n";
    return text + QByteArray(16, '\0');
}

/// The lines of 2D data; the library reads the numbers only.
template <class Parse>
void readNumbers(benchmark::State& state, Parse parse)
{
    const QByteArray text = mapText();
    const char* const last = text.constData() + text.size() - 16;
    MapChunk own;
    MapChunk standard;
    PairedTimes times;
    for (auto _ : state) {
        own.clear();
        standard.clear();
        times.run(
            state, [&] { readMapLines(text.constData(), last, own); },
            [&] { readStandardLines(text.constData(), last, parse, standard); });
    }
    times.report(state);
    if (!std::equal(own.mut.begin(), own.mut.end(), standard.mut.begin(), standard.mut.end()) ||
        own.mut.empty())
        state.SkipWithError("the two ways differ");
}

/// The least-squares fit of each pixel: in vectors by hand, or one by one for the compiler to make
/// vectors of, for the same two processors.
void solve(benchmark::State& state)
{
    const PointRows rows = mapTable();
    const PointChoice choice = choosePoints(rows);
    const FourPointLeastSquares method(rows, choice);
    const VPointFraction fraction = vPointFraction(rows, choice, 1.1);
    const StandardPixels pixels(method.size());
    StandardResults own;
    StandardResults standard;
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state,
            [&] { leastSquaresBlock(method, fraction, pixels.inputs(), own.of(kernelBlock)); },
            [&] {
                leastSquaresOneByOne(method, fraction, pixels.inputs(), standard.of(kernelBlock));
            });
    }
    times.report(state);
    if (own.a != standard.a || own.t != standard.t)
        state.SkipWithError("the two ways differ");
}

/// So many tasks of a few microseconds each.
template <class ForEach>
void shareOut(benchmark::State& state, ForEach forEach)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<double> own(count);
    std::vector<double> standard(count);
    const auto task = [](std::vector<double>& sums, std::size_t i) {
        double sum = 0.0;
        for (int k = 1; k < 500; ++k)
            sum += std::log(static_cast<double>(i) + k);
        sums[i] = sum;
    };
    Workers& workers = Workers::shared();
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state, [&] { workers.run(count, [&](std::size_t i, unsigned) { task(own, i); }); },
            [&] { forEach(count, [&](std::size_t i) { task(standard, i); }); },
            [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }); // all are at rest
    }
    times.report(state);
    if (own != standard)
        state.SkipWithError("the two ways differ");
}

struct WithTbb {
    template <class Task>
    void operator()(std::size_t count, const Task& task) const
    {
        tbb::parallel_for(std::size_t{0}, count, task);
    }
};

struct WithQtConcurrent {
    template <class Task>
    void operator()(std::size_t count, const Task& task) const
    {
        std::vector<std::size_t> numbers(count);
        std::iota(numbers.begin(), numbers.end(), std::size_t{0});
        QtConcurrent::blockingMap(numbers, [&](std::size_t& i) { task(i); });
    }
};

/// A large array, made, written once and given back.
void fillArray(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    double own = 0.0;
    double standard = 0.0;
    const auto fill = [](double* first, std::size_t n) {
        std::iota(first, first + n, 1.0);
        return first[n / 2];
    };
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state,
            [&] {
                PixelArray<double> array;
                own = array.resize(count) ? fill(array.data(), count) : 0.0;
            },
            [&] {
                std::vector<double, DefaultInitialised<double>> array(count);
                standard = fill(array.data(), count);
            },
            [] { malloc_trim(0); }); // arrays are made anew, seldom where another one was
    }
    times.report(state);
    if (own != standard)
        state.SkipWithError("the two ways differ");
}

/// Numbers of a result file: fractions and ratios, and what stands between two texts.
std::vector<double> resultNumbers()
{
    std::mt19937_64 engine(1);
    std::normal_distribution<double> fraction(0.5, 0.3);
    std::vector<double> numbers(million);
    for (double& number : numbers)
        number = fraction(engine);
    // Exact halves of the sixth digit, and what was a negative number before it became nothing.
    for (std::size_t i = 0; i < 1000; ++i)
        numbers[i * 1000] = 100000.5 + static_cast<double>(i);
    numbers[1] = -0.0;
    return numbers;
}

/// How many texts of the library differ from the program's, which are those of the toolkit.
template <class Write>
std::size_t differentTexts(const std::vector<double>& numbers, Write write)
{
    std::array<char, 64> own{};
    std::array<char, 64> standard{};
    std::size_t count = 0;
    for (const double number : numbers)
        count += !std::equal(own.data(), writeField(number, own.data()), standard.data(),
                             write(number, standard.data()));
    return count;
}

/// Numbers to texts in columns.
template <class Write>
void writeNumbers(benchmark::State& state, Write write)
{
    const std::vector<double> numbers = resultNumbers();
    std::vector<char> text((numbers.size() + 1) * longestNumber);
    const auto writeAll = [&](auto&& writeOne) {
        char* p = text.data();
        for (const double number : numbers)
            p = writeOne(number, p);
    };
    PairedTimes times;
    for (auto _ : state)
        times.run(
            state, [&] { writeAll(writeField); }, [&] { writeAll(write); });
    times.report(state);
    state.counters["different_texts"] = static_cast<double>(differentTexts(numbers, write));
}

void inPairs(benchmark::internal::Benchmark* benchmark)
{
    constexpr int pairs = 31;
    benchmark->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(pairs);
}

BENCHMARK_CAPTURE(readNumbers, from_chars, &parseWithFromChars)->Apply(inPairs);
BENCHMARK_CAPTURE(readNumbers, fast_float, &parseWithFastFloat)->Apply(inPairs);
BENCHMARK(solve)->Apply(inPairs)->Iterations(5001)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(shareOut, tbb, WithTbb())->Apply(inPairs)->Arg(16)->Arg(1024)->Iterations(61);
BENCHMARK_CAPTURE(shareOut, QtConcurrent, WithQtConcurrent())
    ->Apply(inPairs)
    ->Arg(16)
    ->Arg(1024)
    ->Iterations(61);
BENCHMARK(fillArray)->Apply(inPairs)->Arg(1 << 16)->Arg(1 << 20)->Arg(1 << 22);
BENCHMARK_CAPTURE(writeNumbers, to_chars, &fieldWithToChars)->Apply(inPairs);
BENCHMARK_CAPTURE(writeNumbers, fmt, &fieldWithFmt)->Apply(inPairs);

} // namespace

BENCHMARK_MAIN();

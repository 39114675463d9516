#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

/// Times of the program's way and of the plain way to do the same work, taken in turn so that both
/// see the same machine.
class PairedTimes
{
public:
    /// Runs both once; the benchmark's own time is that of the program's way.
    template <typename Program, typename Plain>
    void run(benchmark::State& state, const Program& program, const Plain& plain)
    {
        run(state, program, plain, [] {});
    }

    /// The same with something that happens before each of them and is not timed.
    template <typename Program, typename Plain, typename Before>
    void run(benchmark::State& state, const Program& program, const Plain& plain,
             const Before& before)
    {
        before();
        m_plain.push_back(seconds(plain));
        before();
        m_program.push_back(seconds(program));
        state.SetIterationTime(m_program.back());
    }

    /// Shows the medians and their ratio.
    void report(benchmark::State& state)
    {
        const double program = median(m_program);
        const double plain = median(m_plain);
        state.counters["program_ms"] = program * 1e3;
        state.counters["plain_ms"] = plain * 1e3;
        state.counters["ratio"] = program / plain;
    }

private:
    template <typename Work>
    static double seconds(const Work& work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    static double median(std::vector<double>& values)
    {
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }

    std::vector<double> m_program;
    std::vector<double> m_plain;
};

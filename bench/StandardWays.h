#pragma once

#include "analysis/MapKernels.h"
#include "input/MapChunk.h"
#include "input/MapLines.h"
#include "text/NumberField.h"

#include <fast_float/fast_float.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <random>
#include <vector>

// What one writes with a library instead of the parts that the program has of its own.

/// Reads a number; the place behind it, or nullptr where there is none.
inline const char* parseWithFromChars(const char* p, const char* last, double& value)
{
    const auto [end, error] = std::from_chars(p, last, value);
    return error == std::errc() ? end : nullptr;
}

inline const char* parseWithFastFloat(const char* p, const char* last, double& value)
{
    const auto [end, error] = fast_float::from_chars(p, last, value);
    return error == std::errc() ? end : nullptr;
}

inline const char* skipBlanks(const char* p)
{
    while (*p == ' ' || *p == '\t')
        ++p;
    return p;
}

/// Whole lines of two positions, I and I0; empty ones are left out.
template <class Parse>
void readStandardLines(const char* first, const char* last, Parse parse, MapChunk& chunk)
{
    const std::size_t atMost = static_cast<std::size_t>(last - first) / 6 + 1;
    if (!chunk.mut.resize(atMost) || !chunk.positions.resize(atMost))
        return;
    std::size_t count = 0;
    for (const char* p = first; p != nullptr && p != last; ++p) {
        if (*p == '\n')
            continue;
        std::array<double, 4> numbers{};
        for (double& number : numbers) {
            p = parse(skipBlanks(p), last, number);
            if (p == nullptr)
                return;
        }
        while (*p != '\n')
            ++p;
        chunk.positions[count] = {numbers[0], numbers[1]};
        chunk.mut[count] = pixelMut(numbers[2], numbers[3]);
        ++count;
    }
    chunk.mut.resize(count);
    chunk.positions.resize(count);
}

/// The same fit pixel by pixel; the compiler makes it for two processors.
#if defined(__x86_64__) && defined(__GNUC__)
[[gnu::target_clones("default", "avx2"), gnu::flatten]]
#endif
inline void
leastSquaresOneByOne(const FourPointLeastSquares& method, const VPointFraction& fraction,
                     const BlockInputs& in, const BlockResults& out)
{
    std::array<double, 8> t{};
    for (std::size_t i = 0; i < out.count; ++i) {
        for (std::size_t k = 0; k < method.size(); ++k)
            t[k] = in.t[k][i];
        const TargetScale scale = method.scale(t.data());
        out.a[i] = fraction.at(scale, in.tV[i]);
        out.t[i] = scale.thickness();
    }
}

/// A block of target values between 0.1 and 1.5.
class StandardPixels
{
public:
    explicit StandardPixels(std::size_t points) : m_values(points + 1)
    {
        std::mt19937_64 engine(1);
        std::uniform_real_distribution<double> mut(0.1, 1.5);
        for (std::vector<double>& values : m_values) {
            values.resize(kernelBlock);
            std::generate(values.begin(), values.end(), [&] { return mut(engine); });
        }
    }

    BlockInputs inputs() const
    {
        BlockInputs in;
        for (std::size_t k = 0; k + 1 < m_values.size(); ++k)
            in.t.push_back(m_values[k].data());
        in.tV = m_values.back().data();
        return in;
    }

private:
    std::vector<std::vector<double>> m_values;
};

struct StandardResults {
    std::vector<double> a = std::vector<double>(kernelBlock);
    std::vector<double> t = std::vector<double>(kernelBlock);

    BlockResults of(std::size_t count) { return {a.data(), t.data(), count}; }
};

/// Leaves the elements of a vector as they are where nothing is given for them.
template <class T>
struct DefaultInitialised : std::allocator<T> {
    template <class U>
    struct rebind {
        using other = DefaultInitialised<U>;
    };

    template <class U>
    void construct(U* place)
    {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Values>
    void construct(U* place, Values&&... values)
    {
        ::new (static_cast<void*>(place)) U(std::forward<Values>(values)...);
    }
};

/// A number in general format with six digits, right-aligned as writeField() does.
inline char* fieldWithToChars(double value, char* out)
{
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    const auto size = end.ptr - text.data();
    out = std::fill_n(out, std::max<std::ptrdiff_t>(0, fieldWidth - size), ' ');
    return std::copy(text.data(), end.ptr, out);
}

inline char* fieldWithFmt(double value, char* out)
{
    return fmt::format_to(out, FMT_STRING("{:>10.6g}"), value);
}

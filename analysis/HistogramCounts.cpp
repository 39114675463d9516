#include "analysis/HistogramCounts.h"

#include "system/WideVectors.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace
{

/// A canvas has a few thousand columns; ten million bins cost 40 megabytes.
constexpr double maxBoxes = 1e7;

constexpr double beyondInt = 2147483648.0;

/// Truncates toward zero; the most negative integer for not-a-number and beyond 32 bits, where a
/// bare cast would be undefined.
int truncated(double value)
{
    if (value > -beyondInt - 1.0 && value < beyondInt)
        return static_cast<int>(value);
    return std::numeric_limits<int>::min();
}

/// Values are counted in groups; a histogram of more bins is not worth it.
constexpr std::size_t valuesAtOnce = 1024;
constexpr std::size_t maxBinsAtOnce = 126;

/// Equal values follow one another; counting them in turn in several tables keeps one count from
/// waiting for the one before. A table has the values below, the bins, and the values above.
constexpr std::size_t tables = 4;
using TableCounts = std::array<std::array<int, maxBinsAtOnce + 2>, tables>;

/// Finds each value's place in a table. The loop has no branches: it becomes vector code.
struct PlaceLoop {
    const double* values;
    std::size_t count;
    double from;
    double width;
    double bins;
    std::int32_t* places;

    [[gnu::always_inline]] void operator()() const
    {
        const double* __restrict const in = values;
        std::int32_t* __restrict const out = places;
        const double first = from;
        const double step = width;
        const double end = bins;
        for (std::size_t i = 0; i < count; ++i) {
            const double quotient = (in[i] - first) / step;
            const double known = quotient > -1.0 ? quotient : -1.0; // not-a-number is below too
            const double inside = known < beyondInt ? known : -1.0;
            out[i] = static_cast<std::int32_t>(inside < end ? inside : end) + 1;
        }
    }
};

} // namespace

bool HistogramSettings::acceptable() const
{
    return !(boxes >= maxBoxes + 1.0);
}

std::size_t HistogramSettings::bytes() const
{
    return static_cast<std::size_t>(std::max(truncated(boxes), 0)) * sizeof(int);
}

bool HistogramCounts::reset(const HistogramSettings& settings)
{
    if (!settings.acceptable())
        return false;
    from = settings.first;
    to = settings.last;
    boxes = truncated(settings.boxes);
    autoRange = settings.autoRange;
    width = (to - from) / (static_cast<double>(boxes) - 1.0);
    from -= width / 2;
    to += width / 2;
    counts.assign(static_cast<std::size_t>(std::max(boxes, 0)), 0);
    maxCount = 0;
    under = 0;
    over = 0;
    return true;
}

void HistogramCounts::add(double value)
{
    const int i = truncated((value - from) / width);
    if (i < 0)
        ++under;
    else if (static_cast<std::size_t>(i) >= counts.size())
        ++over;
    else
        maxCount = std::max(maxCount, ++counts[static_cast<std::size_t>(i)]);
}

void HistogramCounts::add(const double* values, std::size_t count)
{
    if (counts.size() > maxBinsAtOnce) {
        std::for_each(values, values + count, [this](double value) { add(value); });
        return;
    }
    for (std::size_t i = 0; i < count; i += valuesAtOnce)
        addSome(values + i, std::min(valuesAtOnce, count - i));
}

void HistogramCounts::addSome(const double* values, std::size_t count)
{
    std::array<std::int32_t, valuesAtOnce> places; // all that are read are set
    callWide(
        PlaceLoop{values, count, from, width, static_cast<double>(counts.size()), places.data()});
    TableCounts found{};
    for (std::size_t i = 0; i < count; ++i)
        ++found[i % tables][static_cast<std::size_t>(places[i])];
    const auto sum = [&](std::size_t place) {
        int result = 0;
        for (const auto& table : found)
            result += table[place];
        return result;
    };
    under += sum(0);
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        counts[bin] += sum(bin + 1);
        maxCount = std::max(maxCount, counts[bin]);
    }
    over += sum(counts.size() + 1);
}

void HistogramCounts::merge(const HistogramCounts& part)
{
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i] += part.counts[i];
        maxCount = std::max(maxCount, counts[i]);
    }
    under += part.under;
    over += part.over;
}

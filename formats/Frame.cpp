#include "formats/Frame.h"

#include "analysis/Constants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{

/// Pixels that are taken at once; their intensities stay in the core's first cache.
constexpr std::size_t block = 512;
using Block = std::array<double, block>;

template <class T>
void convert(const char* from, std::size_t first, std::size_t count, double* to)
{
    const char* p = from + first * sizeof(T);
    for (std::size_t i = 0; i < count; ++i, p += sizeof(T)) {
        T value;
        std::memcpy(&value, p, sizeof value);
        to[i] = static_cast<double>(value);
    }
}

void load(const Plane& plane, std::size_t first, std::size_t count, double* to)
{
    switch (plane.type) {
    case PixelType::U8:
        return convert<std::uint8_t>(plane.pixels, first, count, to);
    case PixelType::U16:
        return convert<std::uint16_t>(plane.pixels, first, count, to);
    case PixelType::U32:
        return convert<std::uint32_t>(plane.pixels, first, count, to);
    case PixelType::I8:
        return convert<std::int8_t>(plane.pixels, first, count, to);
    case PixelType::I16:
        return convert<std::int16_t>(plane.pixels, first, count, to);
    case PixelType::I32:
        return convert<std::int32_t>(plane.pixels, first, count, to);
    case PixelType::F32:
        return convert<float>(plane.pixels, first, count, to);
    case PixelType::F64:
        return convert<double>(plane.pixels, first, count, to);
    }
}

/// ln(incident / transmitted) of pixels; both finite and positive, or it is missing.
double logarithm(double incident, double transmitted)
{
    const bool makesSense = incident > 0.0 && transmitted > 0.0 && std::isfinite(incident) &&
                            std::isfinite(transmitted);
    return makesSense ? std::log(incident / transmitted) : notANumber;
}

void loadDark(const Frame& frame, std::size_t first, std::size_t count, Block& dark)
{
    if (frame.dark.pixels != nullptr)
        load(frame.dark, first, count, dark.data());
    else
        std::fill_n(dark.begin(), count, frame.darkLevel);
}

void logarithmsOfCounts(const Frame& frame, std::size_t first, std::size_t count, double* values)
{
    Block flat;
    Block dark;
    load(frame.flat, first, count, flat.data());
    loadDark(frame, first, count, dark);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = logarithm(flat[i] - dark[i], values[i] - dark[i]) + frame.added;
}

/// Turns a block of numbers, as they are stored, into mu-t.
void toMut(const Frame& frame, std::size_t first, std::size_t count, double* values)
{
    if (frame.values == StackValues::Counts)
        logarithmsOfCounts(frame, first, count, values);
    else if (frame.values == StackValues::Transmission)
        std::transform(values, values + count, values, [](double t) { return logarithm(1.0, t); });
    else
        std::transform(values, values + count, values,
                       [](double mut) { return std::isfinite(mut) ? mut : notANumber; });
}

/// Adds the sums of some pixels, no more than a block.
void addSums(const Frame& frame, std::size_t first, std::size_t count, FrameSums& sums)
{
    Block values;
    Block flat;
    Block dark;
    FrameSums here;
    load(frame.frame, first, count, values.data());
    if (frame.values == StackValues::Counts) {
        load(frame.flat, first, count, flat.data());
        loadDark(frame, first, count, dark);
    } else {
        std::fill_n(flat.begin(), count, 1.0);
        std::fill_n(dark.begin(), count, 0.0);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const double incident = flat[i] - dark[i];
        const double transmitted = values[i] - dark[i];
        if (!std::isfinite(incident) || !std::isfinite(transmitted))
            continue;
        here.incident += incident;
        here.transmitted += transmitted;
        ++here.pixels;
    }
    sums.incident += here.incident;
    sums.transmitted += here.transmitted;
    sums.pixels += here.pixels;
}

} // namespace

double FrameSums::meanMut(const Frame& frame) const
{
    if (frame.values != StackValues::MuT)
        return logarithm(incident, transmitted) + frame.added;
    return pixels > 0 ? transmitted / incident : notANumber;
}

FrameSums sumsOf(const Frame& frame, std::size_t count)
{
    FrameSums sums;
    for (std::size_t done = 0; done < count; done += block)
        addSums(frame, done, std::min(block, count - done), sums);
    return sums;
}

void addMut(const Frame& frame, std::size_t first, std::size_t count, double* mut, bool add)
{
    Block values;
    for (std::size_t done = 0; done < count; done += block) {
        const std::size_t n = std::min(block, count - done);
        load(frame.frame, first + done, n, values.data());
        toMut(frame, first + done, n, values.data());
        for (std::size_t i = 0; i < n; ++i)
            mut[done + i] = (add ? mut[done + i] : 0.0) + frame.weight * values[i];
    }
}

void addVariance(const Frame& frame, const DetectorGains& gains, bool ownFlat, std::size_t first,
                 std::size_t count, float* variance, bool add)
{
    Block values;
    Block flat;
    Block dark;
    const DetectorGains counted{ownFlat ? gains.incident : 0.0, gains.transmitted};
    const double square = frame.weight * frame.weight;
    for (std::size_t done = 0; done < count; done += block) {
        const std::size_t n = std::min(block, count - done);
        load(frame.frame, first + done, n, values.data());
        load(frame.flat, first + done, n, flat.data());
        loadDark(frame, first + done, n, dark);
        for (std::size_t i = 0; i < n; ++i)
            variance[done + i] = static_cast<float>(
                (add ? static_cast<double>(variance[done + i]) : 0.0) +
                square * countingVariance({flat[i] - dark[i], values[i] - dark[i]}, counted));
    }
}

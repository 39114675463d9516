#include "formats/Frame.h"

#include "analysis/BlockLogarithm.h"
#include "analysis/Constants.h"
#include "formats/PlaneNumbers.h"
#include "system/WideVectors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using Block = std::array<double, pixelBlock>;

void loadDark(const Frame& frame, std::size_t first, std::size_t count, Block& dark)
{
    if (frame.dark.pixels != nullptr)
        loadNumbers(frame.dark, first, count, dark.data());
    else
        std::fill_n(dark.begin(), count, frame.darkLevel);
}

/// Takes the dark off.
struct SubtractLoop {
    const double* dark;
    std::size_t count;
    double* incident;
    double* transmitted;

    [[gnu::always_inline]] void operator()() const
    {
        for (std::size_t i = 0; i < count; ++i) {
            incident[i] -= dark[i];
            transmitted[i] -= dark[i];
        }
    }
};

/// Intensities before and behind the sample, of a transmission 1 and itself.
/// @param transmitted  the numbers as they are stored
void takeIntensities(const Frame& frame, std::size_t first, std::size_t count, Block& incident,
                     Block& transmitted)
{
    if (frame.values != StackValues::Counts) {
        std::fill_n(incident.begin(), count, 1.0);
        return;
    }
    Block dark;
    loadNumbers(frame.flat, first, count, incident.data());
    loadDark(frame, first, count, dark);
    callWide(SubtractLoop{dark.data(), count, incident.data(), transmitted.data()});
}

/// Turns a block of numbers, as they are stored, into mu-t.
/// @param numbers  may be changed
void toMut(const Frame& frame, std::size_t first, std::size_t count, Block& numbers, Block& mut)
{
    if (frame.values == StackValues::MuT) {
        std::transform(numbers.begin(), numbers.begin() + count, mut.begin(),
                       [](double number) { return std::isfinite(number) ? number : notANumber; });
        return;
    }
    Block incident;
    takeIntensities(frame, first, count, incident, numbers);
    logarithmsOfRatios(incident.data(), numbers.data(), count, mut.data());
}

/// Adds weighted mu-t to others, or puts them there.
struct AddLoop {
    const double* values;
    std::size_t count;
    double added; ///< to each mu-t
    double weight;
    bool add;
    double* mut;

    [[gnu::always_inline]] void operator()() const
    {
        for (std::size_t i = 0; i < count; ++i)
            mut[i] = (add ? mut[i] : 0.0) + weight * (values[i] + added);
    }
};

/// Adds the sums of some pixels, no more than a block.
void addSums(const Frame& frame, std::size_t first, std::size_t count, FrameSums& sums)
{
    Block incident;
    Block transmitted;
    FrameSums here;
    loadNumbers(frame.frame, first, count, transmitted.data());
    takeIntensities(frame, first, count, incident, transmitted);
    for (std::size_t i = 0; i < count; ++i) {
        if (!std::isfinite(incident[i]) || !std::isfinite(transmitted[i]))
            continue;
        here.incident += incident[i];
        here.transmitted += transmitted[i];
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
        return logarithmOfRatio(incident, transmitted) + frame.added;
    return pixels > 0 ? transmitted / incident : notANumber;
}

FrameSums sumsOf(const Frame& frame, std::size_t count)
{
    FrameSums sums;
    for (std::size_t done = 0; done < count; done += pixelBlock)
        addSums(frame, done, std::min(pixelBlock, count - done), sums);
    return sums;
}

void addMut(const Frame& frame, std::size_t first, std::size_t count, double* mut, bool add)
{
    Block numbers;
    Block values;
    const double added = frame.values == StackValues::Counts ? frame.added : 0.0;
    for (std::size_t done = 0; done < count; done += pixelBlock) {
        const std::size_t n = std::min(pixelBlock, count - done);
        loadNumbers(frame.frame, first + done, n, numbers.data());
        toMut(frame, first + done, n, numbers, values);
        callWide(AddLoop{values.data(), n, added, frame.weight, add, mut + done});
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
    for (std::size_t done = 0; done < count; done += pixelBlock) {
        const std::size_t n = std::min(pixelBlock, count - done);
        loadNumbers(frame.frame, first + done, n, values.data());
        loadNumbers(frame.flat, first + done, n, flat.data());
        loadDark(frame, first + done, n, dark);
        for (std::size_t i = 0; i < n; ++i)
            variance[done + i] = static_cast<float>(
                (add ? static_cast<double>(variance[done + i]) : 0.0) +
                square * countingVariance({flat[i] - dark[i], values[i] - dark[i]}, counted));
    }
}

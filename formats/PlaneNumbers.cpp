#include "formats/PlaneNumbers.h"

#include "system/WideVectors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace
{

/// Numbers as they are stored, at any address.
template <class T>
struct ConvertLoop {
    const char* from;
    std::size_t count;
    double* to;

    [[gnu::always_inline]] void operator()() const
    {
        for (std::size_t i = 0; i < count; ++i) {
            T value;
            std::memcpy(&value, from + i * sizeof value, sizeof value);
            to[i] = static_cast<double>(value);
        }
    }
};

template <class T>
void convert(const char* from, std::size_t first, std::size_t count, double* to)
{
    callWide(ConvertLoop<T>{from + first * sizeof(T), count, to});
}

struct AddNumbersLoop {
    const double* numbers;
    std::size_t count;
    double weight;
    bool first; ///< of the images
    double* sum;

    [[gnu::always_inline]] void operator()() const
    {
        for (std::size_t i = 0; i < count; ++i)
            sum[i] = (first ? 0.0 : sum[i]) + weight * numbers[i];
    }
};

} // namespace

void loadNumbers(const Plane& plane, std::size_t first, std::size_t count, double* to)
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

void addToMean(MeanWay way, const Plane& plane, std::size_t count, std::size_t image,
               std::size_t of, double* mean)
{
    std::array<double, pixelBlock> numbers{};
    const bool parts = way == MeanWay::SumOfParts;
    const auto images = static_cast<double>(of);
    for (std::size_t first = 0; first < count; first += pixelBlock) {
        const std::size_t here = std::min(pixelBlock, count - first);
        loadNumbers(plane, first, here, numbers.data());
        if (parts)
            std::replace_if(
                numbers.begin(), numbers.end(), [](double x) { return !std::isfinite(x); },
                std::numeric_limits<double>::quiet_NaN());
        callWide(AddNumbersLoop{numbers.data(), here, parts ? 1.0 / images : 1.0, image == 0,
                                mean + first});
        if (!parts && image + 1 == of)
            for (std::size_t i = first; i < first + here; ++i)
                mean[i] /= images;
    }
}

#include "formats/PlaneNumbers.h"

#include "system/WideVectors.h"

#include <cstdint>
#include <cstring>

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

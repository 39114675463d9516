#include "text/NumberField.h"

#include "text/NumberText.h"
#include "text/PowersOfTen.h"

#include <QtEndian>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{

constexpr int digitCount = 6;

/// 0.0001 is written without an exponent, 0.00001 with one.
constexpr int smallestPlainPoint = -3;

constexpr int maxPower = 22;

/// Powers of ten from 1e-17 on, to find a number's exponent.
constexpr int firstPower = -17;
constexpr std::array<double, 46> powerOfTen = {
    1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6,
    1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,  1e4,  1e5,  1e6,
    1e7,   1e8,   1e9,   1e10,  1e11,  1e12,  1e13,  1e14,  1e15, 1e16, 1e17, 1e18,
    1e19,  1e20,  1e21,  1e22,  1e23,  1e24,  1e25,  1e26,  1e27, 1e28};

/// Three digits as characters and, in the highest byte, how many are left without trailing zeros.
struct Triplets {
    std::array<std::uint32_t, 1000> entries{};

    constexpr Triplets()
    {
        for (std::uint32_t i = 0; i < 1000; ++i) {
            const std::uint32_t kept = i == 0 ? 0 : i % 100 == 0 ? 1 : i % 10 == 0 ? 2 : 3;
            entries[i] =
                ('0' + i / 100) | ('0' + i / 10 % 10) << 8 | ('0' + i % 10) << 16 | kept << 24;
        }
    }
};

constexpr Triplets triplets;

/// value = 0.dddddd * 10^point, rounded.
struct Decimal {
    std::uint32_t digits; ///< 100000 to 999999, or 0
    int point;
};

/// magnitude * 10^power with a single rounding.
double scaled(double magnitude, int power)
{
    return power >= 0 ? magnitude * exactPowersOfTen[static_cast<std::size_t>(power)]
                      : magnitude / exactPowersOfTen[static_cast<std::size_t>(-power)];
}

/// True if magnitude * 10^power lies below its rounded value.
bool roundedUp(double magnitude, int power, double product)
{
    const double ten = exactPowersOfTen[static_cast<std::size_t>(std::abs(power))];
    return power >= 0 ? std::fma(magnitude, ten, -product) < 0.0
                      : std::fma(-product, ten, magnitude) < 0.0;
}

/// Six digits of a number, exact ties away from zero. False where its power of ten is beyond the
/// exact ones.
bool sixDigits(double magnitude, Decimal& decimal)
{
    if (magnitude == 0.0) {
        decimal = {0, 1};
        return true;
    }
    std::uint64_t word = 0;
    std::memcpy(&word, &magnitude, sizeof word);
    const int binary = static_cast<int>(word >> 52) - 1023;
    // floor(binary log10 2): the exponent of the first digit, or one less.
    int exponent = (binary * 78913) >> 18;
    if (exponent < firstPower || exponent >= maxPower)
        return false;
    exponent += magnitude >= powerOfTen[static_cast<std::size_t>(exponent + 1 - firstPower)];
    const int power = digitCount - 1 - exponent;
    const double product = scaled(magnitude, power);
    auto digits = static_cast<std::uint32_t>(product);
    // The product's own rounding cannot carry it across a half, only onto it.
    const double rest = product - digits;
    if (rest == 0.5)
        digits += !roundedUp(magnitude, power, product);
    else
        digits += rest > 0.5;
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    decimal = {digits, exponent + 1};
    return true;
}

/// The text of a number: what it consists of and how long it is.
struct Layout {
    std::uint64_t digits; ///< six characters, the first one in the lowest byte
    int count;            ///< of digits without trailing zeros
    int point;            ///< place of the decimal point behind the first digit's left
    bool negative;
    int size;

    bool plain() const { return point >= smallestPlainPoint && point <= digitCount; }
};

Layout layoutOf(double value, const Decimal& decimal)
{
    constexpr std::uint32_t characters = 0xffffff;
    const std::uint32_t high = triplets.entries[decimal.digits / 1000];
    const std::uint32_t low = triplets.entries[decimal.digits % 1000];
    const std::uint32_t count = low >> 24 != 0 ? 3 + (low >> 24) : high >> 24;
    Layout layout{static_cast<std::uint64_t>(low & characters) << 24 | (high & characters),
                  static_cast<int>(count), decimal.point, value < 0.0, value < 0.0 ? 1 : 0};
    if (!layout.plain())
        layout.size += layout.count + (layout.count > 1) + 4;
    else if (layout.point <= 0)
        layout.size += 2 - layout.point + layout.count;
    else
        layout.size += layout.count <= layout.point ? layout.point : layout.count + 1;
    return layout;
}

/// Stores eight characters; those behind the text are overwritten by what follows.
void store(std::uint64_t characters, char* out)
{
    const quint64 ordered = qToLittleEndian(quint64{characters});
    std::memcpy(out, &ordered, sizeof ordered);
}

/// Writes digits with a decimal point behind the first ones.
void writeWithPoint(std::uint64_t digits, int before, char* out)
{
    store(digits, out);
    out[before] = '.';
    store(digits >> (8 * before), out + before + 1);
}

void writeExponent(int exponent, char* out)
{
    const auto magnitude = static_cast<std::size_t>(std::abs(exponent)); // two digits here
    constexpr std::uint32_t minus = 'e' | '-' << 8;
    constexpr std::uint32_t plus = 'e' | '+' << 8;
    store((exponent < 0 ? minus : plus) | triplets.entries[magnitude] >> 8 << 16, out);
}

/// Writes the text; its end is layout.size characters on.
void writeText(const Layout& layout, char* out)
{
    *out = '-';
    char* const start = out + layout.negative;
    if (!layout.plain()) {
        writeWithPoint(layout.digits, 1, start);
        writeExponent(layout.point - 1, out + layout.size - 4);
    } else if (layout.point <= 0) {
        store(0x3030302e30, start); // "0.000"
        store(layout.digits, start + 2 - layout.point);
    } else {
        writeWithPoint(layout.digits, layout.point, start);
    }
}

/// Writes what has no six digits within reach of the exact powers of ten.
/// @param width  that the text is right-aligned in
char* writeOther(double value, int width, char* out)
{
    const QByteArray text = textFromNumber(value).toLatin1().rightJustified(width);
    std::memcpy(out, text.constData(), static_cast<std::size_t>(text.size()));
    return out + text.size();
}

} // namespace

char* writeNumber(double value, char* out)
{
    Decimal decimal{};
    if (!sixDigits(std::abs(value), decimal))
        return writeOther(value, 0, out);
    const Layout layout = layoutOf(value, decimal);
    writeText(layout, out);
    return out + layout.size;
}

char* writeField(double value, char* out)
{
    Decimal decimal{};
    if (!sixDigits(std::abs(value), decimal))
        return writeOther(value, fieldWidth, out);
    const Layout layout = layoutOf(value, decimal);
    std::memset(out, ' ', fieldWidth);
    out += layout.size < fieldWidth ? fieldWidth - layout.size : 0;
    writeText(layout, out);
    return out + layout.size;
}

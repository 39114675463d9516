#include "results/NumberField.h"

#include "input/NumberText.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{

constexpr int digitCount = 6;

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> exactPower = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                               1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                               1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int maxPower = 22;

/// Three digits and, in the fourth byte, how many of them are left without trailing zeros.
struct Triplets {
    std::array<char, 4000> text{};

    constexpr Triplets()
    {
        for (std::size_t i = 0; i < 1000; ++i) {
            text[4 * i] = static_cast<char>('0' + i / 100);
            text[4 * i + 1] = static_cast<char>('0' + i / 10 % 10);
            text[4 * i + 2] = static_cast<char>('0' + i % 10);
            text[4 * i + 3] = i == 0 ? 0 : i % 100 == 0 ? 1 : i % 10 == 0 ? 2 : 3;
        }
    }
    const char* of(std::uint32_t i) const { return text.data() + std::size_t{4} * i; }
};

constexpr Triplets triplets;

/// value = 0.dddddd * 10^point, rounded.
struct Decimal {
    std::uint32_t digits; ///< 100000 to 999999
    int point;
};

/// magnitude * 10^power with a single rounding.
double scaled(double magnitude, int power)
{
    return power >= 0 ? magnitude * exactPower[static_cast<std::size_t>(power)]
                      : magnitude / exactPower[static_cast<std::size_t>(-power)];
}

/// True if magnitude * 10^power lies below its rounded value.
bool roundedUp(double magnitude, int power, double product)
{
    const double ten = exactPower[static_cast<std::size_t>(std::abs(power))];
    return power >= 0 ? std::fma(magnitude, ten, -product) < 0.0
                      : std::fma(-product, ten, magnitude) < 0.0;
}

/// Six digits of a number, exact ties away from zero. False where its power of ten is beyond the
/// exact ones.
bool sixDigits(double magnitude, Decimal& decimal)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &magnitude, sizeof bits);
    const int binary = static_cast<int>(bits >> 52) - 1023;
    // floor(binary log10 2): the exponent of the first digit, or one less.
    int exponent = (binary * 78913) >> 18;
    int power = digitCount - 1 - exponent;
    if (power > maxPower || power <= -maxPower)
        return false;
    double product = scaled(magnitude, power);
    if (product >= 1e6) {
        ++exponent;
        --power;
        product = scaled(magnitude, power);
    }
    auto digits = static_cast<std::uint32_t>(product);
    // The product's own rounding cannot carry it across a half, only onto it.
    const double rest = product - digits;
    if (rest > 0.5 || (rest == 0.5 && !roundedUp(magnitude, power, product)))
        ++digits;
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    decimal = {digits, exponent + 1};
    return true;
}

/// The digits of a number that is not written with an exponent.
char* writePlain(const char* digits, int count, int point, char* out)
{
    if (point <= 0) {
        std::memcpy(out, "0.000", 5);
        out += 2 - point;
        std::memcpy(out, digits, digitCount);
        return out + count;
    }
    std::memcpy(out, digits, digitCount);
    if (count <= point)
        return out + point;
    out[point] = '.';
    std::memcpy(out + point + 1, digits + point, digitCount);
    return out + count + 1;
}

/// The digits of a number with an exponent, which here has two digits.
char* writeExponential(const char* digits, int count, int point, char* out)
{
    *out++ = digits[0];
    if (count > 1) {
        *out++ = '.';
        std::memcpy(out, digits + 1, digitCount);
        out += count - 1;
    }
    const int exponent = point - 1;
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    std::memcpy(out, triplets.of(static_cast<std::uint32_t>(std::abs(exponent))) + 1, 2);
    return out + 2;
}

char* writeByToolkit(double value, char* out)
{
    const QByteArray text = textFromNumber(value).toLatin1();
    std::memcpy(out, text.constData(), static_cast<std::size_t>(text.size()));
    return out + text.size();
}

} // namespace

char* writeNumber(double value, char* out)
{
    if (value == 0.0) {
        *out = '0';
        return out + 1;
    }
    Decimal decimal{};
    if (!sixDigits(std::abs(value), decimal))
        return writeByToolkit(value, out);
    const char* const high = triplets.of(decimal.digits / 1000);
    const char* const low = triplets.of(decimal.digits % 1000);
    // Room for the copies of a fixed length, which may begin at any digit.
    std::array<char, 2 * digitCount> digits{};
    std::memcpy(digits.data(), high, 4);
    std::memcpy(digits.data() + 3, low, 4);
    const int count = low[3] != 0 ? 3 + low[3] : high[3];
    *out = '-';
    out += value < 0.0;
    constexpr int smallestPlain = -3;
    if (decimal.point < smallestPlain || decimal.point > digitCount)
        return writeExponential(digits.data(), count, decimal.point, out);
    return writePlain(digits.data(), count, decimal.point, out);
}

char* writeField(double value, char* out)
{
    std::array<char, longestNumber> text{};
    const auto length = static_cast<int>(writeNumber(value, text.data()) - text.data());
    std::memset(out, ' ', fieldWidth);
    out += length < fieldWidth ? fieldWidth - length : 0;
    std::memcpy(out, text.data(), longestNumber);
    return out + length;
}

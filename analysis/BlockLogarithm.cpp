#include "analysis/BlockLogarithm.h"

#include "analysis/Constants.h"
#include "system/WideVectors.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace
{

/// The number of one pixel, and its bits.
struct OnePixel {
    using Number = double;
    using Bits = std::uint64_t;
};

/// Those of four neighbouring pixels. Comparisons select pixel by pixel.
struct FourPixels {
    static constexpr std::size_t count = 4;
    using Number = double __attribute__((vector_size(count * sizeof(double))));
    using Bits = std::uint64_t __attribute__((vector_size(count * sizeof(double))));
    using Mask = std::int64_t __attribute__((vector_size(count * sizeof(double))));
};

constexpr int mantissaBits = 52;
constexpr std::uint64_t mantissaMask = (std::uint64_t{1} << mantissaBits) - 1;
constexpr std::uint64_t oneBits = 0x3ff0000000000000;
constexpr std::uint64_t halfRootBits = 0x3fe6a09e667f3bcd; ///< of the root of 1/2
constexpr std::uint64_t twoTo52Bits = 0x4330000000000000;  ///< of 2^52
constexpr double exponentOfOne = 0x1p52 + 1023.0;          ///< an exponent's bits as those of 2^52
constexpr double leastNormal = std::numeric_limits<double>::min();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// ln 2 in two parts: the first has so few digits that its product with an exponent is exact.
constexpr double ln2High = 0x1.62e42feep-1;
constexpr double ln2Low = 0x1.a39ef35793c76p-33;

/// ln((1 + s) / (1 - s)) / s - 2, the series 2/3 s^2 + 2/5 s^4 + ..., from s^2. Its coefficients
/// are those of the polynomial through the Chebyshev nodes of 0 <= |s| <= 3 - 8^(1/2); what it errs
/// by is 1/25 of what rounding does.
template <class Number>
[[gnu::always_inline]] inline void seriesOf(const Number& square, Number& sum)
{
    constexpr double c1 = 0x1.5555555555558p-1;
    constexpr double c2 = 0x1.99999999952e2p-2;
    constexpr double c3 = 0x1.2492492df148dp-2;
    constexpr double c4 = 0x1.c71c62e5800a1p-3;
    constexpr double c5 = 0x1.7462b4ab2ef6bp-3;
    constexpr double c6 = 0x1.39fe606542ddep-3;
    constexpr double c7 = 0x1.2b584aae78a57p-3;
    const Number fourth = square * square;
    const Number odd = c1 + fourth * (c3 + fourth * (c5 + fourth * c7));
    const Number even = c2 + fourth * (c4 + fourth * c6);
    sum = square * (odd + square * even);
}

/// The logarithm of normal numbers above zero: x = 2^k (1 + f) with 1 + f between the roots of 1/2
/// and 2, and ln x = k ln 2 + ln(1 + f), of which s = f / (2 + f) has a series
/// (J.-M. Muller, Elementary Functions; P. T. P. Tang, ACM Trans. Math. Softw. 16 (1990) 378).
template <class Pixels>
[[gnu::always_inline]] inline void naturalLogarithm(const typename Pixels::Number& x,
                                                    typename Pixels::Number& result)
{
    using Number = typename Pixels::Number;
    using Bits = typename Pixels::Bits;
    Bits bits;
    std::memcpy(&bits, &x, sizeof bits);
    bits += oneBits - halfRootBits;
    const Bits power = (bits >> mantissaBits) | twoTo52Bits;
    const Bits part = (bits & mantissaMask) + halfRootBits;
    Number k;
    Number f;
    std::memcpy(&k, &power, sizeof k);
    std::memcpy(&f, &part, sizeof f);
    k -= exponentOfOne;
    f -= 1.0;
    const Number s = f / (2.0 + f);
    const Number square = s * s;
    Number series;
    seriesOf<Number>(square, series);
    const Number half = 0.5 * f * f; // ln(1 + f) = f - (half - s * (half + series))
    result = k * ln2High - ((half - (s * (half + series) + k * ln2Low)) - f);
}

bool isIntensity(double number)
{
    return number > 0.0 && number < infinite;
}

/// Marks what is no normal number as missing; the rare ones that are something are calculated anew.
struct RatiosLoop {
    const double* incident;
    const double* transmitted;
    std::size_t count;
    double* logarithms;

    [[gnu::always_inline]] void operator()() const
    {
        using Number = FourPixels::Number;
        FourPixels::Mask all = FourPixels::Mask{} - 1;
        std::size_t i = 0;
        for (; i + FourPixels::count <= count; i += FourPixels::count) {
            Number before;
            Number behind;
            std::memcpy(&before, incident + i, sizeof before);
            std::memcpy(&behind, transmitted + i, sizeof behind);
            const Number ratio = before / behind;
            const FourPixels::Mask isNormal =
                (before > 0.0) & (ratio >= leastNormal) & (ratio < infinite);
            Number logarithm;
            naturalLogarithm<FourPixels>(ratio, logarithm);
            logarithm = isNormal ? logarithm : Number{} + notANumber;
            all &= isNormal;
            std::memcpy(logarithms + i, &logarithm, sizeof logarithm);
        }
        const bool mayMiss = (all[0] & all[1] & all[2] & all[3]) == 0;
        for (std::size_t k = mayMiss ? 0 : i; k < count; ++k)
            if (k >= i || std::isnan(logarithms[k]))
                logarithms[k] = logarithmOfRatio(incident[k], transmitted[k]);
    }
};

} // namespace

double logarithmOfRatio(double incident, double transmitted)
{
    constexpr double scale = 0x1p54;
    constexpr double scaleLogarithm = 0x1.2b708872320e2p+5; // ln 2^54
    if (!isIntensity(incident) || !isIntensity(transmitted))
        return notANumber;
    const double ratio = incident / transmitted;
    if (ratio == 0.0 || ratio == infinite)
        return ratio == 0.0 ? -infinite : infinite;
    const bool isSubnormal = ratio < leastNormal;
    double logarithm = 0.0;
    naturalLogarithm<OnePixel>(isSubnormal ? ratio * scale : ratio, logarithm);
    return isSubnormal ? logarithm - scaleLogarithm : logarithm;
}

void logarithmsOfRatios(const double* incident, const double* transmitted, std::size_t count,
                        double* logarithms)
{
    callWide(RatiosLoop{incident, transmitted, count, logarithms});
}

#include "results/RoundSteps.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double roundFactors[] = {1.0, 2.0, 5.0, 10.0};

/// Beyond, a whole number is written with an exponent.
constexpr double largestPlain = 1e6;
constexpr int mostDecimals = 6;

bool isUsable(double value)
{
    return value > 0.0 && value < 1e300;
}

double powerBelow(double value)
{
    return std::pow(10.0, std::floor(std::log10(value)));
}

/// Rounding of the division is no reason for another number.
constexpr double almost = 1e-9;

QString markText(double value, double step)
{
    const int decimals = static_cast<int>(std::ceil(-std::log10(step) - almost));
    if (decimals <= mostDecimals && (decimals > 0 || std::fabs(value) < largestPlain))
        return QString::number(value, 'f', std::max(0, decimals));
    const double digits = value == 0.0 ? 1.0 : std::ceil(std::log10(std::fabs(value) / step)) + 1.0;
    return QString::number(value, 'g', static_cast<int>(std::clamp(digits, 1.0, 15.0)));
}

} // namespace

double roundNumberFrom(double value)
{
    if (!isUsable(value))
        return 1.0;
    const double power = powerBelow(value);
    for (const double factor : roundFactors)
        if (factor * power >= value * (1.0 - almost))
            return factor * power;
    return 10.0 * power;
}

double roundNumberUpTo(double value)
{
    if (!isUsable(value))
        return 1.0;
    const double power = powerBelow(value);
    double found = power;
    for (const double factor : roundFactors)
        if (factor * power <= value * (1.0 + almost))
            found = factor * power;
    return found;
}

AxisMarks axisMarks(double from, double to, int most)
{
    AxisMarks marks;
    const double low = std::min(from, to);
    const double high = std::max(from, to);
    if (!std::isfinite(high - low) || high <= low)
        return marks;
    const double step = roundNumberFrom((high - low) / std::max(1, most));
    const double first = std::ceil(low / step - almost);
    const double last = std::floor(high / step + almost);
    if (!(std::fabs(first) < 1e13 && std::fabs(last) < 1e13 &&
          last - first <= 2.0 * std::max(1, most)))
        return marks; // steps too small to be told apart at such a distance from 0
    for (double i = first; i <= last; i += 1.0) {
        const double value = i * step;
        marks.values.push_back(value);
        marks.texts.push_back(markText(value, step));
    }
    return marks;
}

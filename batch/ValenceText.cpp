#include "batch/ValenceText.h"

#include "text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr int mostDecimals = 12;

/// Decimals with which a number shows so many digits; whole numbers have none.
int decimalsOf(double number, int digits)
{
    const auto first = static_cast<int>(std::floor(std::log10(std::abs(number))));
    return std::clamp(digits - 1 - first, 0, mostDecimals);
}

bool hasDigits(double number)
{
    return std::isfinite(number) && number != 0.0;
}

QString deviationText(double deviation, int decimals)
{
    if (!hasDigits(deviation))
        return textFromNumber(deviation);
    const QString text = QString::number(deviation, 'f', decimals);
    return text.toDouble() != 0.0 ? text
                                  : QString::number(deviation, 'f', decimalsOf(deviation, 1));
}

} // namespace

QString changeText(double change)
{
    if (!hasDigits(change))
        return textFromNumber(change);
    const QString text = QString::number(change, 'f', decimalsOf(change, 2));
    return change > 0.0 ? QLatin1Char('+') + text : text;
}

QString endText(double end, double width)
{
    return hasDigits(width) ? QString::number(end, 'f', decimalsOf(width, 2)) : textFromNumber(end);
}

QString valenceText(const ValenceErrors& errors, const OutputWords& words)
{
    const double both = std::hypot(errors.own.value_or(0.0), errors.common.value_or(0.0));
    const int decimals = hasDigits(both) ? decimalsOf(both, 1) : 0;
    QString text = hasDigits(both) ? QString::number(errors.valence, 'f', decimals)
                                   : textFromNumber(errors.valence);
    if (errors.own)
        text += words(" ± %1 (counting)").arg(deviationText(*errors.own, decimals));
    if (errors.common)
        text += words(" ± %1 (references)").arg(deviationText(*errors.common, decimals));
    if (errors.shift)
        text += words(", %1 for +0.1 eV").arg(changeText(*errors.shift));
    return text;
}

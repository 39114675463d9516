#include "batch/ClosureLine.h"

#include <algorithm>

namespace
{

QString threeDecimals(double value)
{
    constexpr double none = 0.0005;
    return QString::number(value > -none && value < none ? 0.0 : value, 'f', 3);
}

/// The middle one; of an even number that above the middle.
double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

QString closureLine(const Closure& closure, std::vector<double> fractions,
                    const ReferenceValences& valences)
{
    if (!closure.ref1.point || !closure.ref2.point)
        return {};
    QString line = QStringLiteral("closure: Ref 1 as target has a = %1, Ref 2 a = %2; they should "
                                  "have 1 and 0")
                       .arg(threeDecimals(*closure.ref1.point), threeDecimals(*closure.ref2.point));
    if (!fractions.empty()) {
        const double a = medianOf(std::move(fractions));
        const double off = *closure.errorAt(a) * (valences.ref1 - valences.ref2);
        line += QStringLiteral(". At a = %1, the targets' median, a valence is off by %2")
                    .arg(threeDecimals(a), threeDecimals(off));
    }
    return closure.isDoubtful() ? QStringLiteral("warning: ") + line : line;
}

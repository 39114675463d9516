#include "tests/model/LiteralHistogram.h"

#include <limits>

namespace literal
{

int truncated(double value)
{
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

void Histogram::reset(const QString& fromText, const QString& toText, const QString& boxesText)
{
    from = fromText.toDouble();
    const double to = toText.toDouble();
    const int boxes = truncated(boxesText.toDouble());
    width = (to - from) / (static_cast<double>(boxes) - 1);
    from -= width / 2;
    counts.fill(0, boxes > 0 ? boxes : 0);
    under = 0;
    over = 0;
}

void Histogram::add(double value)
{
    const int i = truncated((value - from) / width);
    if (i < 0)
        under += 1;
    else if (i >= counts.size())
        over += 1;
    else
        counts[i] += 1;
}

QString Histogram::fileText() const
{
    QString text;
    const int n = counts.size();
    for (int i = -1; i <= n; ++i) {
        int count = over;
        if (i == -1)
            count = under;
        else if (i < n)
            count = counts[i];
        text += QStringLiteral("%1 %2 %3  %4\n")
                    .arg(i * width + from)
                    .arg((i + 0.5) * width + from)
                    .arg((i + 1) * width + from)
                    .arg(count);
    }
    return text;
}

} // namespace literal

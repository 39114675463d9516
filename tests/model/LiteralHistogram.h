#pragma once

#include <QString>
#include <QVector>

namespace literal
{

/// Counts of one quantity; the first and the last bin are centred on the two settings.
class Histogram
{
public:
    /// The texts of the three settings.
    void reset(const QString& fromText, const QString& toText, const QString& boxesText);
    void add(double value);
    QString fileText() const;

private:
    double from = 0.0;
    double width = 0.0;
    QVector<int> counts;
    int under = 0;
    int over = 0;
};

/// A double as the program cuts it to a 32-bit integer: the most negative one where it is
/// not-a-number or does not fit.
int truncated(double value);

} // namespace literal

#pragma once

#include "analysis/Spectrum.h"
#include "tests/model/LiteralFormulas.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <QTextStream>

/// The rules of the spectrum file read in the plainest way the toolkit offers: line by line through
/// a text stream, each line simplified and split by a regular expression. Slow, and the measure of
/// the program's own reader.
namespace plain
{

inline QStringList tokens(const QString& line)
{
    return line.simplified().split(QRegularExpression(QStringLiteral("\\s+")));
}

inline SpectrumPoint spectrumPoint(const QStringList& row, double d)
{
    const double theta = row[1].toDouble();
    return {theta, formulas::energyAt(theta, d),
            formulas::muTOf(row[3].toDouble(), row[4].toDouble())};
}

inline SpectrumPoints readSpectrum(QTextStream& in)
{
    SpectrumPoints points;
    double d = 3.1355316;
    bool started = false;
    while (!in.atEnd()) {
        const QStringList row = tokens(in.readLine());
        if (started && row.size() > 4) {
            points.push_back(spectrumPoint(row, d));
            continue;
        }
        if (row.contains(QStringLiteral("Offset")))
            started = true;
        const int at = row.indexOf(QStringLiteral("D="));
        if (at >= 0 && at + 1 < row.size())
            d = row[at + 1].toDouble();
    }
    return points;
}

inline SpectrumPoints readSpectrum(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QTextStream in(&file);
    return readSpectrum(in);
}

} // namespace plain

#pragma once

#include <QFile>
#include <QString>

#include <cmath>

/// Writes 1000 points from 8200 to 8700 eV with a bump at 8390 eV.
inline QString writeBenchSpectrum(const QString& path, double bump)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(" D= 3.1355316\n Offset\n");
    for (int i = 0; i < 1000; ++i) {
        const double e = 8200 + 0.5 * i;
        const double angle =
            std::asin(12398.424360387684 / (2 * 3.1355316 * e)) * 180 / 3.1415926535;
        const double x = (e - 8390) / 4;
        const double mut = 0.2 + (e > 8350 ? 1.0 : 0.0) + bump * std::exp(-x * x);
        file.write(QByteArray::number(i) + ' ' + QByteArray::number(angle, 'f', 12) +
                   " 1.00 1000000.0 " + QByteArray::number(1000000 * std::exp(-mut), 'f', 6) +
                   '\n');
    }
    return path;
}

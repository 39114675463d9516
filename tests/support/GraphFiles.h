#pragma once

#include "examples/MixedSample.h"

#include <QFile>
#include <QString>

#include <cmath>

/// Writes 2D data at an energy (eV): a grows along the first axis from 0 to 1, the thickness along
/// the second one from a quarter to once that of the example's target.
inline void writeMapFile(const QString& path, double energy, int columns, int rows)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("%s cannot be written", qPrintable(path));
    file.write("# mixtures\n# AXIS 0 x share step 1 " + QByteArray::number(columns) +
               " points\n# AXIS 1 y thickness step 1 " + QByteArray::number(rows) + " points\n");
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            MixedSample sample;
            sample.blank = 0.0; // map values keep the blank, so there is none
            sample.fraction = x / (columns - 1.0);
            sample.thicknessT *= 0.25 + 0.75 * y / (rows - 1.0);
            const double mut = muT(sample, Measurement::Target, energy);
            file.write(QByteArray::number(x) + ' ' + QByteArray::number(y) + ' ' +
                       QByteArray::number(1e6 * std::exp(-mut), 'g', 17) + " 1000000\n");
        }
    }
}

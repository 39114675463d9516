#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/PointRow.h"
#include "tests/support/PlainMapMethods.h"
#include "tests/support/PlainMapReader.h"

#include <QFile>
#include <QString>
#include <QTextStream>
#include <QVector>

/// A map in the plainest way: records as they are read, pixel by pixel, one result appended after
/// the other and counted at once, the valences read from their texts each time.
namespace plain
{

struct MapResult {
    double first;
    double second;
    double a;
    double t;
};

struct MapRun {
    QVector<MapFile> images; ///< normalization points in the table's order
    MapFile imageV;
    PixelInput table; ///< its target values are set anew for each pixel
    QString valence1 = QStringLiteral("2");
    QString valence2 = QStringLiteral("3");
    double rho = 1.0;

    QVector<MapResult> results;
    HistogramCounts valences;
    HistogramCounts thicknesses;

    static double value(const MapFile& image, int x, int y)
    {
        const int i = y * image.columns + x;
        if (i < 0 || i >= image.records.size())
            return -1.0;
        return image.records[i].mut();
    }

    template <class MethodOfPixel>
    void calculate(const MethodOfPixel& method)
    {
        valences.reset({1.5, 3.5, 41, false});
        thicknesses.reset({-0.2, 1.2, 41, false});
        results.clear();
        for (int y = 0; y < imageV.rows; ++y) {
            for (int x = 0; x < imageV.columns; ++x) {
                for (int k = 0; k < images.size(); ++k)
                    table.points[static_cast<std::size_t>(k)].t = value(images[k], x, y);
                table.v.t = value(imageV, x, y);
                const PixelResult pixel = method(table);
                const MapFile::Record& record = imageV.records[y * imageV.columns + x];
                results.append({record.first, record.second, pixel.a, pixel.t});
                valences.add(valence1.toDouble() * pixel.a + valence2.toDouble() * (1 - pixel.a));
                thicknesses.add(pixel.t);
            }
        }
    }

    bool write(const QString& path) const
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
            return false;
        QTextStream out(&file);
        for (const QString& line : imageV.header)
            out << line << "\n";
        if (!imageV.header.isEmpty())
            out << "\n";
        for (int y = 0; y < imageV.rows; ++y) {
            for (int x = 0; x < imageV.columns; ++x) {
                const MapResult& result = results[y * imageV.columns + x];
                const double valence =
                    valence1.toDouble() * result.a + valence2.toDouble() * (1 - result.a);
                out << QStringLiteral(" %1 %2    %3 %4 %5\n")
                           .arg(result.first, 10)
                           .arg(result.second, 10)
                           .arg(result.a, 10)
                           .arg(valence, 10)
                           .arg(result.t, 10);
            }
            out << "\n";
        }
        return true;
    }
};

} // namespace plain

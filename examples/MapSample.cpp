#include "examples/MapSample.h"

#include "examples/AbsorptionModel.h"
#include "examples/WayTo.h"

#include <QDir>
#include <QSaveFile>

#include <cmath>

namespace
{

/// Photons before the sample.
constexpr double photonsBefore = 1e6;

double referenceThickness(const MapSample& map)
{
    return 0.5 * (map.sample.thickness1 + map.sample.thickness2);
}

bool writeImage(const QString& path, const MapSample& map, double energy)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    bool written = file.write(mapHeader(map, energy)) >= 0;
    for (int y = 0; y < map.rows && written; ++y)
        written = file.write(mapRow(map, energy, y)) >= 0;
    return written && file.commit();
}

QByteArray truthText(const MapSample& map)
{
    const auto number = [](double value) { return QByteArray::number(value, 'g', 10); };
    return "# What the images in this folder were made with, and what a map should find: a rises "
           "evenly\n# from the first column to the last, t/ts from the first row to the last.\n\n"
           "columns = " +
           QByteArray::number(map.columns) + "\nrows = " + QByteArray::number(map.rows) +
           "\na = [" + number(map.fraction(0)) + ", " + number(map.fraction(map.columns - 1)) +
           "]\nvalence = [" + number(map.valence(0)) + ", " + number(map.valence(map.columns - 1)) +
           "]\nt_over_ts = [" + number(map.thicknessRatio(0)) + ", " +
           number(map.thicknessRatio(map.rows - 1)) + "]\n";
}

} // namespace

double MapSample::fraction(int x) const
{
    return wayTo(x, columns);
}

double MapSample::thickness(int y) const
{
    return referenceThickness(*this) * (0.25 + 0.75 * wayTo(y, rows));
}

double MapSample::valence(int x) const
{
    return MixedSample::valence1 * fraction(x) + MixedSample::valence2 * (1.0 - fraction(x));
}

double MapSample::thicknessRatio(int y) const
{
    return thickness(y) / referenceThickness(*this);
}

double MapSample::muT(int x, int y, double energy) const
{
    using absorption::State;
    const double a = fraction(x);
    return thickness(y) * (a * absorption::ofState(State::Two, energy) +
                           (1.0 - a) * absorption::ofState(State::Three, energy)) +
           sample.backgroundMu0 + sample.backgroundK * energy;
}

std::vector<double> mapEnergies()
{
    return {8313.0, 8381.0, 8390.0, 8404.5};
}

QByteArray mapHeader(const MapSample& map, double energy)
{
    return mapHeader(map.columns, map.rows, energy);
}

QByteArray mapHeader(int columns, int rows, double energy)
{
    const auto axis = [](int number, const char* name, int size) {
        return "# AXIS " + QByteArray::number(number) + " " + name + " mm step " +
               QByteArray::number(MapSample::positionStep) + " " + QByteArray::number(size) +
               " points\n";
    };
    return "# made map of a nickel-like sample\n" + axis(0, "x", columns) + axis(1, "y", rows) +
           "# ENERGY = " + QByteArray::number(energy, 'g', 10) + " eV\n";
}

QByteArray mapRow(const MapSample& map, double energy, int y)
{
    return mapRow(map.columns, y, [&](int x) { return map.muT(x, y, energy); });
}

QByteArray mapRow(int columns, int y, const std::function<double(int x)>& muT)
{
    constexpr int digits = 16;
    const QByteArray position = QByteArray::number(y * MapSample::positionStep);
    const QByteArray before = " " + QByteArray::number(photonsBefore, 'f', 0) + "\n";
    QByteArray text;
    for (int x = 0; x < columns; ++x)
        text += QByteArray::number(x * MapSample::positionStep) + " " + position + " " +
                QByteArray::number(photonsBefore * std::exp(-muT(x)), 'g', digits) + before;
    return text + "\n";
}

QString mapFileName(int i)
{
    return QStringLiteral("map_%1.dat").arg(i + 1);
}

QString writeMap(const QString& folder, const MapSample& map)
{
    if (!QDir().mkpath(folder))
        return folder;
    const QDir dir(folder);
    int i = 0;
    for (const double energy : mapEnergies()) {
        QString path = dir.filePath(mapFileName(i++));
        if (!writeImage(path, map, energy))
            return path;
    }
    QString path = dir.filePath(QStringLiteral("map-truth.toml"));
    QSaveFile truth(path);
    const QByteArray text = truthText(map);
    const bool written =
        truth.open(QIODevice::WriteOnly) && truth.write(text) == text.size() && truth.commit();
    if (written)
        path.clear();
    return path;
}

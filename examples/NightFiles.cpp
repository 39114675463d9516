#include "examples/AbsorptionModel.h"
#include "examples/BeamlineFile.h"
#include "examples/ExampleFile.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "examples/NightSample.h"

#include <QDir>

#include <algorithm>
#include <cmath>

namespace
{

constexpr std::uint_fast64_t seed = 2;

QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 10);
}

QByteArray sampleText(int i)
{
    const auto scanned =
        scan(night::sample(i), Measurement::Target,
             seed * 1000 + static_cast<std::uint_fast64_t>(i), night::quickEnergies());
    return beamlineText(
        "Made example, a night of nickel-like samples : " + night::sampleFile(i).toUtf8(), scanned);
}

double meanThickness()
{
    const MixedSample sample;
    return 0.5 * (sample.thickness1 + sample.thickness2);
}

/// @param image  0 for the first energy
QByteArray imageText(const night::Map& map, std::size_t image)
{
    using absorption::State;
    const std::vector<double> energies = mapEnergies();
    const double energy = energies[image];
    const double two = absorption::ofState(State::Two, energy);
    const double three = absorption::ofState(State::Three, energy);
    const MixedSample sample;
    QByteArray text = mapHeader(map.columns, map.rows, energy);
    const int measured = image + 1 == energies.size() ? map.measuredRows : map.rows;
    for (int y = 0; y < measured; ++y)
        text += mapRow(map.columns, y, [&](int x) {
            const double a = map.fraction(x, y);
            return meanThickness() * map.thickness(x, y) * (a * two + (1.0 - a) * three) +
                   sample.backgroundMu0 + sample.backgroundK * energy;
        });
    return text;
}

/// Mean, median and standard deviation, each behind a comma.
QByteArray spread(std::vector<double> values)
{
    const auto count = static_cast<double>(values.size());
    double sum = 0.0; // against the first one, so that equal values have a mean without rounding
    for (const double value : values)
        sum += value - values.front();
    const double mean = values.front() + sum / count;
    double squares = 0.0;
    for (const double value : values)
        squares += (value - mean) * (value - mean);
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    const double median =
        values.size() % 2 == 1 ? values[half] : 0.5 * (values[half - 1] + values[half]);
    return ',' + number(mean) + ',' + number(median) + ',' +
           number(std::sqrt(squares / (count - 1.0)));
}

QByteArray targetTruth()
{
    QByteArray text = "target,a,valence,t_ts\r\n";
    for (int i = 0; i < night::samples; ++i) {
        const MixedSample sample = night::sample(i);
        text += night::sampleFile(i).toUtf8() + ',' + number(sample.fraction) + ',' +
                number(sample.valence()) + ',' + number(sample.thicknessRatio()) + "\r\n";
    }
    return text;
}

QByteArray mapTruth()
{
    QByteArray text = "map,columns,rows,pixels,missing,valence_mean,valence_median,valence_sd,"
                      "t_mean,t_median,t_sd\r\n";
    for (const night::Map& map : night::maps()) {
        std::vector<double> valences;
        std::vector<double> thicknesses;
        for (int y = 0; y < map.measuredRows; ++y) {
            for (int x = 0; x < map.columns; ++x) {
                const double a = map.fraction(x, y);
                valences.push_back(MixedSample::valence1 * a + MixedSample::valence2 * (1.0 - a));
                thicknesses.push_back(map.thickness(x, y));
            }
        }
        const int missing = (map.rows - map.measuredRows) * map.columns;
        text += QByteArray(map.name) + ',' + QByteArray::number(map.columns) + ',' +
                QByteArray::number(map.rows) + ',' + QByteArray::number(map.columns * map.rows) +
                ',' + QByteArray::number(missing) + spread(valences) + spread(thicknesses) + "\r\n";
    }
    return text;
}

QString writeScans(const QDir& dir)
{
    for (int i = 0; i < night::samples; ++i) {
        QString path = dir.filePath(night::sampleFile(i));
        if (!writeExampleFile(path, sampleText(i)))
            return path;
    }
    return {};
}

QString writeImages(const QDir& dir)
{
    for (const night::Map& map : night::maps()) {
        for (std::size_t image = 0; image < mapEnergies().size(); ++image) {
            QString path = dir.filePath(
                QStringLiteral("images/%1_%2.txt").arg(QLatin1String(map.name)).arg(image + 1));
            if (!writeExampleFile(path, imageText(map, image)))
                return path;
        }
    }
    return {};
}

} // namespace

QString night::write(const QString& folder)
{
    const QDir dir(folder);
    for (const char* below : {"scans", "images"})
        if (!dir.mkpath(QLatin1String(below)))
            return dir.filePath(QLatin1String(below));
    for (const Measurement measurement :
         {Measurement::Ref1, Measurement::Ref2, Measurement::Blank}) {
        const QString name = fileName(measurement);
        QString path = dir.filePath(name);
        const auto steps =
            scan(MixedSample(), measurement, seed * 4 + static_cast<unsigned>(measurement));
        if (!writeExampleFile(path,
                              beamlineText("Made example, nickel-like : " + name.toUtf8(), steps)))
            return path;
    }
    for (const auto& [name, text] :
         {std::pair("truth-targets.csv", targetTruth()), std::pair("truth-maps.csv", mapTruth())}) {
        QString path = dir.filePath(QLatin1String(name));
        if (!writeExampleFile(path, text))
            return path;
    }
    const QString failed = writeScans(dir);
    return failed.isEmpty() ? writeImages(dir) : failed;
}

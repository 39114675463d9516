#include "batch/MapImages.h"

#include <limits>

ResultImages resultImages(const QString& name, const JobData& data, const MapResults& results,
                          const MissingPixels& missing, bool hasThickness)
{
    const ReferenceValences valences = data.settings.valences;
    const auto unlessMissing = [&missing](const auto& value) {
        return [&missing, value](std::size_t i) {
            return missing(i) ? std::numeric_limits<double>::quiet_NaN() : value(i);
        };
    };
    ResultImages map;
    map.name = name.toStdString();
    map.columns = results.columns;
    map.rows = results.rows;
    map.positions = results.positions;
    map.pixelWidth = data.pixelWidth;
    map.pixelHeight = data.pixelHeight;
    map.images.push_back({"valence", "valence", unlessMissing([&results, valences](std::size_t i) {
                              return valences.mean(results.a[i]);
                          })});
    map.images.push_back({"a", "fraction of Ref 1",
                          unlessMissing([&results](std::size_t i) { return results.a[i]; })});
    if (hasThickness)
        map.images.push_back(
            {"t_ts", "t/ts", unlessMissing([&results](std::size_t i) { return results.t[i]; })});
    return map;
}

QString mapTiffFile(const QString& stem, const ResultImage& image)
{
    return stem + QLatin1Char('-') + QString::fromStdString(image.name) + QStringLiteral(".tif");
}

QString mapHdf5File(const QString& stem)
{
    return stem + QStringLiteral(".h5");
}

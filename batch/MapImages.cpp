#include "batch/MapImages.h"

#include <cmath>
#include <limits>

namespace
{

/// Values of the pixels that have a result.
class PixelValues
{
public:
    using Value = std::function<double(std::size_t)>;

    PixelValues(const MissingPixels& missing, const MapSigmas* sigmas)
        : m_missing(missing), m_sigmas(sigmas)
    {
    }

    Value known(const Value& value) const
    {
        return
            [&missing = m_missing, value](std::size_t i) { return missing(i) ? none : value(i); };
    }

    /// Standard deviations times a factor.
    Value sigma(PixelArray<float> MapSigmas::*values, double factor) const
    {
        if (m_sigmas == nullptr)
            return {};
        return known([&sigmas = m_sigmas->*values, factor](std::size_t i) {
            const double sigma = factor * static_cast<double>(sigmas[i]);
            return std::isfinite(sigma) ? sigma : none;
        });
    }

private:
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    const MissingPixels& m_missing;
    const MapSigmas* m_sigmas;
};

} // namespace

ResultImages resultImages(const QString& name, const JobData& data, const MapResults& results,
                          const MissingPixels& missing, const MapSigmas* sigmas, bool hasThickness)
{
    const ReferenceValences valences = data.settings.valences;
    const PixelValues values(missing, sigmas);
    const auto a = [&results](std::size_t i) { return results.a[i]; };
    const auto t = [&results](std::size_t i) { return results.t[i]; };
    const auto valence = [&results, valences](std::size_t i) {
        return valences.mean(results.a[i]);
    };
    ResultImages map;
    map.name = name.toStdString();
    map.columns = results.columns;
    map.rows = results.rows;
    map.positions = results.positions;
    map.pixelWidth = data.pixelWidth;
    map.pixelHeight = data.pixelHeight;
    map.images.push_back({"valence", "valence", values.known(valence),
                          values.sigma(&MapSigmas::a, std::fabs(valences.ref1 - valences.ref2))});
    map.images.push_back(
        {"a", "fraction of Ref 1", values.known(a), values.sigma(&MapSigmas::a, 1.0)});
    if (hasThickness)
        map.images.push_back({"t_ts", "t/ts", values.known(t), values.sigma(&MapSigmas::t, 1.0)});
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

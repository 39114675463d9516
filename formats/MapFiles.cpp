#include "formats/MapFiles.h"

#include "formats/SharedPixels.h"
#include "formats/StackProcess.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// All digits, whatever the language.
std::string numberWord(const char* key, double value)
{
    return std::string(key) + '=' + QByteArray::number(value, 'g', 17).toStdString();
}

std::vector<std::string> wordsOf(const char* verb, const ResultImages& map)
{
    return {verb, "columns=" + std::to_string(map.columns), "rows=" + std::to_string(map.rows),
            numberWord("pixel-width", map.pixelWidth), numberWord("pixel-height", map.pixelHeight)};
}

double* put(double* to, const std::vector<double>& numbers)
{
    return std::copy(numbers.begin(), numbers.end(), to);
}

/// First and second positions of all pixels.
double* putPositions(double* to, const ResultImages& map)
{
    const std::size_t measured = map.positions ? map.positions->size() : 0;
    for (double MapPosition::*const member : {&MapPosition::first, &MapPosition::second})
        for (std::size_t i = 0; i < map.size(); ++i)
            *to++ = i < measured ? (*map.positions)[i].*member : notANumber;
    return to;
}

/// Values of all images, each with its standard deviations behind it where they are known.
void putImages(double* to, const ResultImages& map)
{
    for (const ResultImage& image : map.images)
        for (const auto* const numbers : {&image.value, &image.sigma})
            for (std::size_t i = 0; *numbers && i < map.size(); ++i)
                *to++ = (*numbers)(i);
}

bool rises(const std::vector<double>& axis)
{
    for (std::size_t i = 1; i < axis.size(); ++i)
        if (!std::isfinite(axis[i]) || !(axis[i] > axis[i - 1]))
            return false;
    return true;
}

bool isAxis(std::vector<double> axis)
{
    if (axis.size() > 1 && axis.front() > axis.back())
        std::reverse(axis.begin(), axis.end());
    return !axis.empty() && std::isfinite(axis.front()) && rises(axis);
}

} // namespace

std::optional<MapAxes> axesOf(const ResultImages& map)
{
    const auto columns = static_cast<std::size_t>(map.columns);
    const std::size_t measured =
        map.positions ? std::min(map.positions->size(), map.size()) : std::size_t{0};
    if (measured < columns)
        return std::nullopt;
    MapAxes axes;
    for (std::size_t i = 0; i < measured; ++i) {
        const MapPosition& position = (*map.positions)[i];
        if (i < columns)
            axes.x.push_back(position.first);
        if (i % columns == 0)
            axes.y.push_back(position.second);
        if (position.first != axes.x[i % columns] || position.second != axes.y.back())
            return std::nullopt;
    }
    const std::size_t known = axes.y.size();
    const double step = known > 1 ? axes.y[known - 1] - axes.y[known - 2] : 1.0;
    while (axes.y.size() < static_cast<std::size_t>(map.rows))
        axes.y.push_back(axes.y.back() + step);
    return isAxis(axes.x) && isAxis(axes.y) ? std::optional(axes) : std::nullopt;
}

WriteOutcome writeTiff(const QString& path, const ResultImages& map, const ResultImage& image)
{
    const PixelMemory pixels(map.size() * sizeof(float));
    if (!pixels.isThere())
        return WriteOutcome::CannotWrite;
    auto* const numbers = static_cast<float*>(static_cast<void*>(pixels.data()));
    for (std::size_t i = 0; i < map.size(); ++i)
        numbers[i] = static_cast<float>(image.value(i));
    std::vector<std::string> words = wordsOf("write-tiff", map);
    words.push_back("description=" + image.longName);
    return writeByStackProcess(path, std::move(words), pixels);
}

WriteOutcome writeHdf5(const QString& path, const ResultImages& map)
{
    const std::optional<MapAxes> axes = axesOf(map);
    std::vector<std::string> words = wordsOf("write-map", map);
    words.push_back("name=" + map.name);
    words.emplace_back(axes ? "axes=1" : "axes=2");
    std::size_t images = 0;
    for (const ResultImage& image : map.images) {
        words.push_back("data=" + image.name + '\t' + image.longName + '\t' +
                        (image.sigma ? '1' : '0'));
        images += image.sigma ? 2 : 1;
    }
    const std::size_t places = axes ? axes->x.size() + axes->y.size() : 2 * map.size();
    const PixelMemory pixels((places + images * map.size()) * sizeof(double));
    if (!pixels.isThere())
        return WriteOutcome::CannotWrite;
    double* const to = SharedPixels::doublesAt(pixels.data());
    putImages(axes ? put(put(to, axes->x), axes->y) : putPositions(to, map), map);
    return writeByStackProcess(path, std::move(words), pixels);
}

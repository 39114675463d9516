#include "results/GridLines.h"

#include "display/Pixel.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double valenceStep = 0.1;
constexpr double countStep = 10.0;
constexpr int steppedOneByOne = 10000;

// One direction of a graph, without its sense.
struct Axis {
    double p0, p1; ///< ends of the plot area, pixels
    double r0, r1; ///< data there

    double toScreen(double v) const { return p0 + (p1 - p0) / (r1 - r0) * (v - r0); }
    double fromScreen(double p) const { return r0 + (r1 - r0) / (p1 - p0) * (p - p0); }
};

// True if one of the lines from `first` on lies between two values.
bool holdsLine(const GridSteps& steps, double first, double end1, double end2)
{
    const double low = std::min(end1, end2);
    const double high = std::max(end1, end2);
    const double ahead = std::max(0.0, std::ceil((low - first) / steps.step));
    const double line = first + ahead * steps.step;
    return line < high && steps.contains(line);
}

std::vector<int> gridPixels(const Axis& axis, int last, const GridSteps& steps)
{
    std::vector<bool> marked(static_cast<std::size_t>(std::max(0, last) + 1), false);
    double v = steps.first;
    for (int i = 0; i < steppedOneByOne && steps.contains(v); ++i) {
        const double p = axis.toScreen(v);
        if (p > -1.0 && p < last + 1.0)
            marked[static_cast<std::size_t>(truncToInt(p))] = true;
        v += steps.step;
    }
    std::vector<int> pixels;
    for (int p = 0; p <= last; ++p) {
        if (marked[static_cast<std::size_t>(p)] ||
            holdsLine(steps, v, axis.fromScreen(p), axis.fromScreen(p + 1)))
            pixels.push_back(p);
    }
    return pixels;
}

} // namespace

GridSteps valenceSteps(double valence1, double valence2)
{
    return {valence1, valenceStep, valence2 + valenceStep / 2.0, false};
}

GridSteps countSteps(int maxCount)
{
    return {0.0, countStep, static_cast<double>(maxCount), true};
}

std::vector<double> tenths()
{
    std::vector<double> values;
    double v = 0.0;
    for (int i = 0; i <= 10; ++i) {
        values.push_back(v);
        v += 0.1;
    }
    return values;
}

std::vector<int> gridColumns(const ChCoord& coord, const GridSteps& steps)
{
    return gridPixels({coord.px0, coord.px1, coord.rx0, coord.rx1}, coord.canvasSize().width(),
                      steps);
}

std::vector<int> gridRows(const ChCoord& coord, const GridSteps& steps)
{
    return gridPixels({coord.py0, coord.py1, coord.ry0, coord.ry1}, coord.canvasSize().height(),
                      steps);
}

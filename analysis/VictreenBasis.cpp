#include "analysis/VictreenBasis.h"

#include "analysis/Victreen.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace
{

double cube(double energy)
{
    const double l = wavelength(energy);
    return l * l * l;
}

double fourth(double energy)
{
    return cube(energy) * wavelength(energy);
}

} // namespace

VictreenBasis VictreenBasis::below(const SpectrumPoints& points, double limit)
{
    return {points, limit, false};
}

VictreenBasis VictreenBasis::above(const SpectrumPoints& points, double limit)
{
    return {points, limit, true};
}

VictreenBasis::VictreenBasis(const SpectrumPoints& points, double limit, bool isAbove)
    : m_limit(limit), m_isAbove(isAbove)
{
    std::vector<double> cubes;
    std::vector<double> fourths;
    for (const SpectrumPoint& point : points) {
        if (!selects(point.energy))
            continue;
        cubes.push_back(cube(point.energy));
        fourths.push_back(fourth(point.energy));
        m_mean3 += cubes.back();
        m_mean4 += fourths.back();
    }
    const auto n = static_cast<double>(cubes.size());
    m_mean3 /= n;
    m_mean4 /= n;
    double firstNorm = 0.0;
    double product = 0.0;
    for (std::size_t i = 0; i < cubes.size(); ++i) {
        const double first = cubes[i] - m_mean3;
        firstNorm += first * first;
        product += first * (fourths[i] - m_mean4);
    }
    m_slope = product / firstNorm;
    double secondNorm = 0.0;
    for (std::size_t i = 0; i < cubes.size(); ++i) {
        const double second = fourths[i] - m_mean4 - m_slope * (cubes[i] - m_mean3);
        secondNorm += second * second;
    }
    m_scale = {1.0 / std::sqrt(n), 1.0 / std::sqrt(firstNorm), 1.0 / std::sqrt(secondNorm)};
}

Vector<3> VictreenBasis::at(double energy) const
{
    const double first = cube(energy) - m_mean3;
    const double second = fourth(energy) - m_mean4 - m_slope * first;
    return {m_scale[0], first * m_scale[1], second * m_scale[2]};
}

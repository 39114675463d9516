#include "analysis/VictreenBasis.h"

#include "analysis/Victreen.h"

#include <cmath>

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
    double n = 0.0;
    for (const SpectrumPoint& point : points) {
        if (!selects(point.energy))
            continue;
        n += 1.0;
        m_mean3 += cube(point.energy);
        m_mean4 += fourth(point.energy);
    }
    m_mean3 /= n;
    m_mean4 /= n;
    double norm = 0.0;
    double product = 0.0;
    for (const SpectrumPoint& point : points) {
        if (!selects(point.energy))
            continue;
        const double first = cube(point.energy) - m_mean3;
        norm += first * first;
        product += first * (fourth(point.energy) - m_mean4);
    }
    m_slope = product / norm;
    m_scale = {1.0 / std::sqrt(n), 1.0 / std::sqrt(norm), 1.0};
    norm = 0.0;
    for (const SpectrumPoint& point : points) {
        if (!selects(point.energy))
            continue;
        const double second = at(point.energy)[2];
        norm += second * second;
    }
    m_scale[2] = 1.0 / std::sqrt(norm);
}

Vector<3> VictreenBasis::at(double energy) const
{
    const double first = cube(energy) - m_mean3;
    const double second = fourth(energy) - m_mean4 - m_slope * first;
    return {m_scale[0], first * m_scale[1], second * m_scale[2]};
}

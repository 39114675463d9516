#include "analysis/CubicSpline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

CubicSpline::CubicSpline(const SpectrumPoints& points)
{
    for (const SpectrumPoint& point : points) {
        if (!std::isfinite(point.energy) || !std::isfinite(point.mut))
            continue;
        if (!m_x.empty() && !(point.energy > m_x.back()))
            continue;
        m_x.push_back(point.energy);
        m_y.push_back(point.mut);
    }
    findBends();
}

/// The tridiagonal equations of continuous slopes, with no bend at either end.
void CubicSpline::findBends()
{
    const std::size_t n = m_x.size();
    m_bends.assign(n, 0.0);
    if (n < 3)
        return;
    std::vector<double> upper(n, 0.0);
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double left = m_x[i] - m_x[i - 1];
        const double right = m_x[i + 1] - m_x[i];
        const double change = 6.0 * ((m_y[i + 1] - m_y[i]) / right - (m_y[i] - m_y[i - 1]) / left);
        const double pivot = 2.0 * (left + right) - left * upper[i - 1];
        upper[i] = right / pivot;
        m_bends[i] = (change - left * m_bends[i - 1]) / pivot;
    }
    for (std::size_t i = n - 2; i > 0; --i)
        m_bends[i] -= upper[i] * m_bends[i + 1];
}

double CubicSpline::at(double energy) const
{
    const auto found = std::lower_bound(m_x.begin() + 1, m_x.end() - 1, energy);
    const auto right = static_cast<std::size_t>(found - m_x.begin());
    const std::size_t left = right - 1;
    const double width = m_x[right] - m_x[left];
    const double b = (energy - m_x[left]) / width;
    const double a = 1.0 - b;
    const double square = width * width / 6.0;
    return a * m_y[left] + b * m_y[right] +
           ((a * a * a - a) * m_bends[left] + (b * b * b - b) * m_bends[right]) * square;
}

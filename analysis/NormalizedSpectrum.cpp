#include "analysis/NormalizedSpectrum.h"

#include <algorithm>
#include <cmath>
#include <numeric>

NormalizedSpectrum::NormalizedSpectrum(const SpectrumPoints& points, const VictreenLine& pre,
                                       const VictreenLine& post)
    : m_points(points), m_pre(pre), m_post(post)
{
    for (const SpectrumPoint& point : points)
        if (!std::isnan(point.energy))
            m_energies.push_back(point.energy);
    std::sort(m_energies.begin(), m_energies.end());
    m_energies.erase(std::unique(m_energies.begin(), m_energies.end()), m_energies.end());
    m_right.assign(2 * m_energies.size(), 0);
    std::vector<std::size_t> nextFree(m_right.size() + 1);
    std::iota(nextFree.begin(), nextFree.end(), std::size_t{0});
    for (std::size_t i = 1; i < points.size(); ++i)
        assign(i, nextFree);
}

void NormalizedSpectrum::assign(std::size_t right, std::vector<std::size_t>& nextFree)
{
    const double low = m_points[right - 1].energy;
    const double high = m_points[right].energy;
    if (!(low <= high))
        return;
    const auto place = [this](double energy) {
        const auto found = std::lower_bound(m_energies.begin(), m_energies.end(), energy);
        return 2 * static_cast<std::size_t>(found - m_energies.begin());
    };
    const auto free = [&nextFree](std::size_t at) {
        while (nextFree[at] != at) {
            nextFree[at] = nextFree[nextFree[at]];
            at = nextFree[at];
        }
        return at;
    };
    const std::size_t last = place(high);
    for (std::size_t at = free(place(low)); at <= last; at = free(at)) {
        m_right[at] = right;
        nextFree[at] = at + 1;
    }
}

std::size_t NormalizedSpectrum::rightNeighbour(double energy) const
{
    if (m_points.size() < 2 || energy < m_points.front().energy || energy > m_points.back().energy)
        return 0;
    const auto found = std::lower_bound(m_energies.begin(), m_energies.end(), energy);
    if (found == m_energies.end())
        return 0;
    const std::size_t place = 2 * static_cast<std::size_t>(found - m_energies.begin());
    if (*found == energy)
        return m_right[place];
    return place == 0 ? 0 : m_right[place - 1];
}

double NormalizedSpectrum::at(double energy) const
{
    const std::size_t right = rightNeighbour(energy);
    if (right == 0)
        return 0.0;
    return normalizedBetween(m_points[right - 1], m_points[right], m_pre, m_post, energy);
}

#include "analysis/SteepestRise.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace
{

constexpr double halfWidth = 2.0; // eV

/// Sums of the first points, so that a mean of any run of them is at hand.
class RunningMeans
{
public:
    explicit RunningMeans(const SpectrumPoints& points) : m_first(points.front().energy)
    {
        m_energies.reserve(points.size() + 1);
        m_muts.reserve(points.size() + 1);
        for (const SpectrumPoint& point : points) {
            m_energies.push_back(m_energies.back() + (point.energy - m_first));
            m_muts.push_back(m_muts.back() + point.mut);
        }
    }

    double energy(std::size_t from, std::size_t to) const { return mean(m_energies, from, to); }
    double mut(std::size_t from, std::size_t to) const { return mean(m_muts, from, to); }

private:
    static double mean(const std::vector<double>& sums, std::size_t from, std::size_t to)
    {
        return (sums[to] - sums[from]) / static_cast<double>(to - from);
    }

    double m_first;
    std::vector<double> m_energies{0.0};
    std::vector<double> m_muts{0.0};
};

} // namespace

std::optional<double> steepestRise(SpectrumPoints points)
{
    const auto noNumber = [](const SpectrumPoint& p) {
        return !std::isfinite(p.energy) || !std::isfinite(p.mut);
    };
    points.erase(std::remove_if(points.begin(), points.end(), noNumber), points.end());
    if (points.size() < 3)
        return std::nullopt;
    std::sort(points.begin(), points.end(),
              [](const SpectrumPoint& a, const SpectrumPoint& b) { return a.energy < b.energy; });
    const RunningMeans means(points);
    double largest = 0.0;
    std::optional<double> found;
    std::size_t begin = 0;
    std::size_t end = 0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        while (points[begin].energy < points[i].energy - halfWidth)
            ++begin;
        while (end < points.size() && points[end].energy <= points[i].energy + halfWidth)
            ++end;
        const std::size_t from = std::min(begin, i - 1);
        const std::size_t to = std::max(end, i + 2);
        const double width = means.energy(i + 1, to) - means.energy(from, i);
        const double rise = means.mut(i + 1, to) - means.mut(from, i);
        if (width > 0.0 && rise / width > largest) {
            largest = rise / width;
            found = points[i].energy;
        }
    }
    return found;
}

#include "tests/accuracy/RandomSpectra.h"

#include <cmath>
#include <vector>

namespace
{

constexpr double edgeRegionStart = -20.0; ///< relative to the edge, eV
constexpr double edgeRegionEnd = 80.0;

/// An absorption edge: Victreen's fall, a step with a white line and a fine structure.
struct Edge {
    double energy;
    double below; ///< absorption below the edge over the edge jump
    double white; ///< height of the white line of Ref 2
    double shift; ///< of Ref 1's edge against that of Ref 2, eV

    /// Of a pure state per thickness.
    double ofState(int state, double e) const
    {
        const double u = energy / e;
        const double fall = u * u * u * (1.3 - 0.3 * u);
        const double x = (e - energy - 5.0 + (state == 1 ? shift : 0.0)) / 3.0;
        const double step = 0.5 + 0.5 * x / std::sqrt(1.0 + x * x);
        const double height = state == 1 ? 0.4 * white : white;
        const double line = height / (1.0 + (x - 2.0) * (x - 2.0) / 4.0);
        return below * fall + fall * (step + line + fineStructure(e - energy));
    }

private:
    /// Parabolic arcs of alternating sign, one for each radian of the photoelectron's phase.
    static double fineStructure(double above)
    {
        if (above <= edgeRegionEnd / 4.0)
            return 0.0;
        const double phase = std::sqrt(above) * 0.7;
        const double part = phase - std::floor(phase);
        const double sign = std::fmod(std::floor(phase), 2.0) == 0.0 ? 1.0 : -1.0;
        return sign * 4.0 * part * (1.0 - part) * 0.08 / (1.0 + above / 100.0);
    }
};

double blankAt(double aboveEdge)
{
    return 0.3 - 1e-5 * aboveEdge;
}

void addSteps(std::vector<double>& energies, double from, double to, double step)
{
    for (int i = 0; from + i * step < to; ++i)
        energies.push_back(from + i * step);
}

/// Coarse before and after the edge, fine at it.
std::vector<double> scanEnergies(double edge, const FitRanges& ranges, Random& random)
{
    const auto length = [&] { return edge * random.uniform(ranges.shortest, ranges.longest); };
    const double first = ranges.preEdgeEnd - length();
    const double last = ranges.postEdgeStart + length();
    std::vector<double> energies;
    addSteps(energies, edge + first, edge + edgeRegionStart,
             (edgeRegionStart - first) / random.uniform(12.0, 100.0));
    addSteps(energies, edge + edgeRegionStart, edge + edgeRegionEnd, random.uniform(0.5, 3.0));
    addSteps(energies, edge + edgeRegionEnd, edge + last,
             (last - edgeRegionEnd) / random.uniform(20.0, 300.0));
    return energies;
}

} // namespace

RandomSample randomSample(const FitRanges& ranges, Random& random)
{
    const Edge edge{random.uniform(5000.0, 25000.0), random.uniform(0.2, 2.0),
                    random.uniform(0.5, 1.0), random.uniform(2.0, 5.0)};
    constexpr double noises[] = {0.0, 1e-5, 1e-4, 1e-3};
    RandomSample sample{edge.energy, noises[random.below(4)], {}, {}};
    const double shares[] = {1.0, 0.0, random.uniform(0.05, 0.95), 0.0};
    constexpr std::size_t blank = 3;
    const std::vector<double> energies = scanEnergies(edge.energy, ranges, random);
    for (std::size_t i = 0; i < 4; ++i) {
        const double thickness = i == blank ? 0.0 : random.uniform(0.3, 2.0);
        SpectrumPoints measured;
        SpectrumPoints smooth;
        for (const double e : energies) {
            const double mut = thickness * (shares[i] * edge.ofState(1, e) +
                                            (1.0 - shares[i]) * edge.ofState(2, e)) +
                               blankAt(e - edge.energy);
            smooth.push_back({0.0, e, mut});
            measured.push_back({0.0, e, mut + sample.noise * random.uniform(-1.0, 1.0)});
        }
        sample.smooth.push_back(smooth);
        sample.measured.push_back(measured);
    }
    return sample;
}

#include "tests/accuracy/SimulatedSample.h"

#include <cstddef>

namespace
{

void addSteps(std::vector<double>& energies, double from, double to, double step)
{
    for (int i = 0; from + step * i < to; ++i)
        energies.push_back(from + step * i);
}

/// Thirty points before the edge and as many behind it, every electronvolt between; the first row
/// of the table lies between two points, the others on one.
std::vector<double> shortScan()
{
    std::vector<double> energies;
    addSteps(energies, 8000.0, 8300.0, 10.0);
    addSteps(energies, 8300.0, 8330.0, 5.0);
    addSteps(energies, 8330.0, 8404.5, 1.0);
    energies.push_back(8404.5);
    addSteps(energies, 8405.0, 8480.0, 1.0);
    addSteps(energies, 8480.0, 9240.0, 25.0);
    return energies;
}

constexpr FitBounds bounds{8300.0, 8350.0, 8450.0};

} // namespace

SimulatedSample::SimulatedSample(const MixedSample& sample)
{
    constexpr std::array<Measurement, SpectrumSet::count> measurements{
        Measurement::Ref1, Measurement::Ref2, Measurement::Target, Measurement::Blank};
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        SpectrumPoints points;
        for (const double energy : shortScan())
            points.push_back({0.0, energy, muT(sample, measurements[i], energy)});
        m_smooth[i].setBounds(bounds);
        m_smooth[i].setPoints(points);
        m_smooth[i].fitVictreens();
    }
}

SimulatedSample::Spectra SimulatedSample::noisy(double sigma, NormalNoise& random,
                                                const Chosen& chosen) const
{
    Spectra spectra = m_smooth;
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        if (!chosen[i])
            continue;
        for (SpectrumPoint& point : spectra[i].points)
            point.mut += sigma * random.next();
        spectra[i].fitVictreens();
    }
    return spectra;
}

std::vector<ChosenPoint> SimulatedSample::points(int rowsInUse)
{
    constexpr std::array<double, 6> energies{8313.0, 8381.0, 8390.0, 8404.5, 8460.0, 8475.0};
    std::vector<ChosenPoint> points;
    for (int i = 0; i < 6; ++i)
        points.push_back(
            {energies.at(static_cast<std::size_t>(i)), i < rowsInUse, i < 4 && i != 2, i == 2});
    return points;
}

AnalysisInput SimulatedSample::input(const Spectra& spectra, int rowsInUse,
                                     const Conditions& conditions)
{
    AnalysisInput input;
    for (std::size_t i = 0; i < spectra.size(); ++i)
        input.spectra.all[i] = &spectra[i];
    input.conditions = conditions;
    input.table = pointTable(points(rowsInUse), input.spectra, conditions);
    return input;
}

SpectrumNoises SimulatedSample::scatter(const Spectra& spectra)
{
    SpectrumNoises noises;
    for (std::size_t i = 0; i < spectra.size(); ++i)
        noises[i] = scatterNoise(spectra[i].points, spectra[i].preEdgeEnd);
    return noises;
}

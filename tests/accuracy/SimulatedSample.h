#pragma once

#include "analysis/TargetUncertainty.h"
#include "examples/MixedSample.h"
#include "tests/support/NormalNoise.h"

#include <array>
#include <vector>

/// Four spectra of the nickel-like example on a short scan, smooth or with noise, and what is
/// calculated from them.
class SimulatedSample
{
public:
    using Spectra = std::array<FittedSpectrum, SpectrumSet::count>;

    using Chosen = std::array<bool, SpectrumSet::count>;
    static constexpr Chosen everySpectrum{true, true, true, true};

    explicit SimulatedSample(const MixedSample& sample);

    const Spectra& smooth() const { return m_smooth; }
    /// With normal deviates of one standard deviation on every mu-t of the chosen spectra.
    Spectra noisy(double sigma, NormalNoise& random, const Chosen& chosen = everySpectrum) const;

    /// Energies of the table: so many rows in use, the third of them the V point; the first four
    /// but it are marked.
    static std::vector<ChosenPoint> points(int rowsInUse);
    static AnalysisInput input(const Spectra& spectra, int rowsInUse, const Conditions& conditions);
    /// Found in the scatter of each spectrum.
    static SpectrumNoises scatter(const Spectra& spectra);

private:
    Spectra m_smooth;
};

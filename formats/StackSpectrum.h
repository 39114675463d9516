#pragma once

#include "analysis/Spectrum.h"
#include "analysis/SpectrumNoise.h"
#include "analysis/TiltedMap.h"
#include "formats/Stack.h"

/// The mean spectrum of a region of a stack.
struct StackSpectrum {
    SpectrumPoints points; ///< of rising energy, at least two
    /// Of each point the counts of all pixels, dark taken off; infinite before the sample where all
    /// frames share a flat, whose noise moves all points alike. Empty where there are no counts.
    std::vector<Readings> readings;
    QStringList warnings; ///< what limits its use, a line each
};

/// Forms ln of the mean intensities over the mean transmitted ones, or the mean of mu-t where the
/// stack has no intensities; of several frames at one energy the mean. Every frame is read once,
/// some at a time. A pixel without a number is left out of its frame, an energy without a logarithm
/// out of the spectrum; both are warned of.
/// @param region  of the frames; a width of 0 is all of them
/// @param tilt    of the energies over the rows of the frames: the spectrum has those of the
///                region's middle, and is warned of where its rows differ by more than 0.5 eV
/// @return why there is none: a region outside of the frames, fewer than two energies, a file that
///         fails
std::optional<FileFault> stackSpectrum(Stack& stack, const QString& path, const Region& region,
                                       const EnergyTilt& tilt, StackSpectrum& spectrum);

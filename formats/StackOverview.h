#pragma once

#include "analysis/Spectrum.h"
#include "formats/Stack.h"
#include "input/MapData.h"

/// A stack at a glance.
struct StackOverview {
    Region region;                   ///< that was looked at; the middle of large frames
    std::vector<std::size_t> frames; ///< that were looked at; some of many
    SpectrumPoints spectrum;         ///< mean mu-t of the region, in the order of energy
    double energy = 0.0;             ///< of the image, eV
    MapData image;                   ///< mu-t of the frame in the middle of the energies
};

/// Looks at a stack: at no more than 2048 x 2048 pixels of a frame, and at no more frames than have
/// 2^29 pixels, at least three. The mean is that of the pixels that have a value.
std::optional<FileFault> overviewOf(Stack& stack, const QString& path, StackOverview& overview);

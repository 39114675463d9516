#pragma once

#include "formats/Stack.h"
#include "input/MapData.h"
#include "system/Workers.h"

/// The images of a stack at some energies, made of the frames at or beside them, each of which is
/// read once. Pixel (x, y) of a region has the position (x, y), times the size of a pixel in
/// micrometres where that is known.
/// @param energies  eV
/// @param region    of the frames; a width of 0 is all of them
/// @param gains     of the camera, where variances of counts are wanted; a flat that all frames
///                  share moves a pixel's mu-t alike at all energies, and is in none of them
/// @param maps      [energies.size()]
/// @return why there are none: a region or energy outside of the stack, a file that fails
std::optional<FileFault> stackMaps(Stack& stack, const QString& path,
                                   const std::vector<double>& energies, const Region& region,
                                   std::vector<MapData>& maps, Workers& workers = Workers::shared(),
                                   const std::optional<DetectorGains>& gains = {});

/// The region, or all of the frames.
/// @return nothing where it is not within them
std::optional<Region> regionWithin(const StackFacts& facts, const Region& region);
/// Why there is nothing of a region that is not within them.
QString outsideText(const StackFacts& facts);

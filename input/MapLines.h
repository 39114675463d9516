#pragma once

#include "input/MapChunk.h"

#include <array>
#include <string_view>

/// Lines of a 2D data file.

/// Absorption of a pixel from its transmitted and incident intensity: I where I0 is 0, 1 where only
/// I is 0, otherwise ln(I0 / I), whatever that gives for negative intensities.
double pixelMut(double transmitted, double incident);

/// The tokens that a line can mean something with.
using MapTokens = std::array<std::string_view, 8>;

/// The first tokens of a line in UTF-8, without carriage returns; empty where there are no more.
MapTokens mapTokens(std::string_view line);

/// Sorts whole lines into the chunk: header lines as they stand in the file, without carriage
/// returns; records as numbers.
/// @param first, last  bytes; a line feed stands before last, and sixteen readable bytes from last
///                     on
/// @return false where the memory is refused
bool readMapLines(const char* first, const char* last, MapChunk& chunk);

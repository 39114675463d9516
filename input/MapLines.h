#pragma once

#include "input/MapChunk.h"

#include <QString>
#include <QStringList>
#include <cstddef>

/// Lines of a 2D data file.

/// Absorption of a pixel from its transmitted and incident intensity: I where I0 is 0, 1 where only
/// I is 0, otherwise ln(I0 / I), whatever that gives for negative intensities.
double pixelMut(double transmitted, double incident);

/// The first tokens of a line, at most eight; no line needs more.
QStringList leadingTokens(const QString& line);

/// Sorts one line, without its end, into the chunk. False where the memory is refused.
bool readMapLine(const QString& line, MapChunk& chunk);

/// How the bytes of a file become text.
enum class MapEncoding {
    Utf8,   ///< invalid bytes are left to the toolkit
    Latin1, ///< each byte a character
    Ascii,  ///< of the others only plain ASCII is known
    Other,  ///< all is left to the toolkit
};

enum class MapLinesResult {
    Read,
    NeedsToolkit, ///< what the bytes mean depends on more than their line
    NoMemory,
};

/// Sorts whole lines into the chunk; equal to readMapLine() for each of them, decoded, without
/// carriage returns.
/// @param first, last  bytes; a line feed stands before last, and sixteen readable bytes from last
///                     on
MapLinesResult readMapLines(const char* first, const char* last, MapEncoding encoding,
                            MapChunk& chunk);

#pragma once

#include <QByteArray>

#include <cstddef>

/// The program's readers against their literal second reading, to the last bit. Each function gives
/// what differs, in a word, or null.
namespace check
{

/// Bytes as a spectrum file; its points, fits and values.
const char* spectrumDifference(const QByteArray& text);

/// Bytes as a file of 2D data.
/// @param chunkBytes  size of the pieces that the file is cut into; 0 for the usual one
const char* mapDifference(const QByteArray& text, std::size_t chunkBytes);

/// Bytes as a job file: taken or refused alike, the same settings, and a refusal with a line of the
/// text and a reason of one line.
const char* jobDifference(const QByteArray& text);

/// Bytes as a spectrum in any format: refused with a line of the text and a reason of one line, or
/// read with points that are numbers.
const char* formatDifference(const QByteArray& text);

} // namespace check

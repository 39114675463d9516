#pragma once

#include <QString>

#include <cstdint>

class ByteSource;

/// What a file is by its content.
enum class FileKind {
    Empty,
    Unknown,
    Beamline, ///< a spectrum as the window reads it
    MapText,  ///< 2D data as the window reads them
    Xdi,
    Columns, ///< a text with rows of two or more numbers
    CameraFrame,
    CameraSequence,
    Tiff,
    Hdf5,
    // Known, but not read:
    Ole,
    Edf,
    StxmHeader,
    AthenaProject,
    Compressed,
};

/// So much of a text shows what it is, bytes.
constexpr std::int64_t headBytes = 1 << 16;

/// Recognises a file from its first bytes; reads no more than its beginning and the places where
/// a signature may stand. A file that cannot be read is Unknown.
FileKind fileKindOf(const ByteSource& file);

/// "an XDI spectrum".
QString kindName(FileKind kind);

/// What to do about a file of a kind that is not read: its name, and what to export instead. Empty
/// for the kinds that are read.
QString notReadReason(FileKind kind);

#pragma once

#include "analysis/SpectrumNoise.h"
#include "input/MapData.h"
#include "system/ReadOutcome.h"
#include "system/Workers.h"

#include <QString>
#include <QStringList>
#include <cstddef>
#include <functional>
#include <optional>

class ByteSource;
class KnownPositions;

/// What became of a 2D data file.
struct MapReadResult {
    /// Read: the record holds the file's data; MapData::valid tells whether they suffice. Otherwise
    /// the record is not valid and keeps its earlier contents.
    ReadOutcome outcome = ReadOutcome::CannotOpen;
    QString reason;       ///< one line of plain English; empty where nothing is to be said
    QStringList energies; ///< token 3 of each "ENERGY" line, in the order of the file
};

/// Part of the work done so far, 0 to 1; called from the thread that asked.
using Progress = std::function<void(double part)>;

struct MapReadOptions {
    Progress progress;
    /// Of the detectors, where the variances of mu-t are wanted.
    std::optional<DetectorGains> gains = {};
    std::size_t memory = 0; ///< bytes that the data may take; 0 for what is available
    std::size_t chunkBytes = std::size_t{1} << 20; ///< the file is read in pieces of this size
    /// Positions equal to one of these are shared with it, others are added. Null: shared with
    /// none.
    KnownPositions* knownPositions = nullptr;
};

/// Why a file was not taken. Of one that cannot be opened nothing is said.
QString mapReason(ReadOutcome outcome, const QString& path);

/// Reads 2D data; the reason is left to whoever knows the file's name.
///
/// Each line is simplified and split at blanks. One whose first token begins with "#" is a header
/// line: "# AXIS n .. .. .. .. size" sets an axis size, "# ENERGY .. e" gives an energy (case does
/// not matter). Of the others three tokens are a record of two positions and I (with I0 = 1), four
/// or more one of two positions, I and I0; fewer are ignored. What is not a number counts as 0.
MapReadResult readMapData(const ByteSource& file, MapData& data, const MapReadOptions& options = {},
                          Workers& workers = Workers::shared());

/// Reads 2D data by the path of their file; a file that cannot be opened has no reason.
MapReadResult readMapData(const QString& path, MapData& data, const MapReadOptions& options = {},
                          Workers& workers = Workers::shared());

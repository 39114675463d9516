#pragma once

#include "formats/FileFault.h"

#include <QByteArray>
#include <QHash>

#include <optional>

/// Shifts of energies by the paths of files, eV.
using ShiftTable = QHash<QString, double>;

/// A larger table is none, bytes.
constexpr std::int64_t largestShiftTable = std::int64_t{64} << 20;

/// How a file is found in a table, whatever dots are in its path.
QString shiftTableName(const QString& folder, const QString& path);

/// Reads comma-separated values (RFC 4180) whose columns are named in the first line: of these,
/// file and shift. Paths start from a folder.
/// @param fault  line and reason where nothing comes back: columns that are missing, a shift that
///               is no number or beyond all reason, a file that is named twice
std::optional<ShiftTable> readShiftTable(const QByteArray& text, const QString& folder,
                                         FileFault& fault);

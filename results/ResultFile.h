#pragma once

#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "system/SafeFile.h"
#include "system/Workers.h"

#include <QByteArrayList>
#include <QString>
#include <functional>

/// Writes the results of a map as text: the header lines and an empty line, then for each row of
/// the grid a line for each pixel (positions, a, valence, t) and an empty line. Pixels without
/// result are written with zeros. An existing file is replaced when the new one is whole.
/// @param header              without line ends; written byte by byte
/// @param progress            gets the part of the work done so far, 0 to 1, in the asking thread
WriteOutcome writeResultFile(const QString& path, const QByteArrayList& header,
                             const MapResults& results, const ReferenceValences& valences,
                             const std::function<void(double part)>& progress = {},
                             Workers& workers = Workers::shared());

#pragma once

#include "analysis/LinearCombinationFit.h"
#include "analysis/MapRun.h"
#include "system/SafeFile.h"

#include <QString>
#include <QStringList>

/// The words of results and refusals, in the window's language: the lines of its message pane and
/// the texts of its result fields. The batch program prints the same. Translations have the
/// context of the window's panel.
namespace ResultText
{

/// The line that reports the thickness ratios, all seven figures.
QString ratios(const ThicknessRatios& ratios);

/// Why there is no result of the target, or of the fit.
QString refusal(const RunRefusal& refusal);
/// The same for a map, in whose words a missing V point has no full stop.
QString mapRefusal(const RunRefusal& refusal);

/// Result field of the target, which is its line besides.
QString target(const TargetResult& result);
/// Line of the linear combination fit: its three numbers.
QString lcfLine(const LinearCombination& fit);
/// Result field of the fit.
QString lcf(const LinearCombination& fit, const ReferenceValences& valences);

/// Why there is no result file.
/// @param outcome  CannotOpen or CannotWrite
QString notWritten(const QString& path, WriteOutcome outcome);

/// The lines of a target's result in their order: what was formed on the way, then the text of its
/// field.
QStringList lines(const TargetResult& result);
/// What was formed on the way to a map.
QStringList lines(const MapRun& run);

} // namespace ResultText

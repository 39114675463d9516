#pragma once

#include "analysis/EnergyRanking.h"

#include <QByteArray>

/// The choices of energies as CSV, the best first, then the best as [[point]] tables of a job.
/// Energies are rounded to a hundredth of an electronvolt.
/// @param ranked  not empty
QByteArray rankTable(const std::vector<RankedChoice>& ranked, const ReferenceValences& valences);

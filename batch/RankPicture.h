#pragma once

#include "analysis/EnergyRanking.h"
#include "batch/OutputWords.h"

#include <QImage>

/// The ranking of energies as a picture: the normalized references with the best choice's energies,
/// and below each choice by its standard deviation at a = 1/2 and by what 0.1 eV costs, those of
/// the front joined by a line. Needs a QGuiApplication.
/// @param spectra  with both references
/// @param ranked   not empty, the best first
QImage rankPicture(const SpectrumSet& spectra, const std::vector<RankedChoice>& ranked,
                   const ReferenceValences& valences, const OutputWords& words);

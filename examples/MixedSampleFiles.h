#pragma once

#include "examples/BeamlineFile.h"
#include "examples/MixedSample.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

/// Photons counted before the sample at each step of a scan, at its start; they fall by a tenth
/// until its end.
constexpr double photonsPerStep = 2e8;

/// Energies of a scan, eV, rising: coarse before the edge, every half electronvolt around it with
/// a step at each of the form's default points, coarser again in the fine structure.
std::vector<double> scanEnergies();

/// A measurement of the sample.
/// @param seed  of the counting noise; without one the counts are the expected ones
std::vector<ScanStep> scan(const MixedSample& sample, Measurement measurement,
                           std::optional<std::uint_fast64_t> seed,
                           const std::vector<double>& energies = scanEnergies());

/// Name of a measurement's file: ref1.dat, ref2.dat, target.dat, blank.dat.
QString fileName(Measurement measurement);

/// Writes the four spectrum files of a sample and truth.toml into a folder, which is made where it
/// does not exist.
/// @param seed  of the counting noise, another one for each file is derived from it
/// @return empty, or what could not be written
QString writeSample(const QString& folder, const MixedSample& sample,
                    std::optional<std::uint_fast64_t> seed);

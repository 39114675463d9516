#pragma once

#include "examples/MixedSample.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

/// The truth of a night: 200 samples that are oxidized one after another under gas, and four maps.
/// All have the references and the blank of the sample.
namespace night
{

constexpr int samples = 200;

/// A sample of the night: valence rises from 2.1 to 2.9, slowly at both ends, while the thickness
/// goes up and down by a fifth.
/// @param i  0 to samples - 1
MixedSample sample(int i);

/// "scans/sample_001.dat"
QString sampleFile(int i);

/// The energies of a quick scan, eV: those of the example, coarse where nothing happens.
std::vector<double> quickEnergies();

/// A map of the night: what it is made of in column x and row y.
struct Map {
    const char* name;
    int columns;
    int rows;
    int measuredRows; ///< of the last image; the scan was stopped behind them
    std::function<double(int x, int y)> fraction;
    std::function<double(int x, int y)> thickness; ///< t/ts
};

/// "wedge": the fraction rises from column to column, the thickness from row to row.
/// "grain": a round grain that is nearly all of the first state.
/// "bands": five bands of equal steps.
/// "stopped": as the wedge, but the beam was lost before the last image was whole.
std::vector<Map> maps();

/// Writes references, blank, scans, images and what they were made with: truth-targets.csv and
/// truth-maps.csv, with the names and columns of the program's own tables.
/// @return empty, or what could not be written
QString write(const QString& folder);

} // namespace night

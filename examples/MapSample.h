#pragma once

#include "examples/MixedSample.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

/// The truth of a map example: an image in which the fraction of the first state rises from column
/// to column, from 0 to 1, and the thickness from row to row, on the background of the sample. The
/// references are those of the sample. Map values contain no blank, as the program takes none from
/// them.
struct MapSample {
    int columns = 24;
    int rows = 16;
    MixedSample sample;

    double fraction(int x) const;
    /// Thickness in row y: from a quarter of the references' mean thickness to all of it.
    double thickness(int y) const;
    double valence(int x) const;
    double thicknessRatio(int y) const;

    static constexpr double positionStep = 0.02; ///< between neighbouring pixels, mm

    /// mu-t of a pixel at an energy in eV.
    double muT(int x, int y, double energy) const;
};

/// Energies of the images, eV: those of the form's first four rows.
std::vector<double> mapEnergies();

/// Header lines of an image's file: axes and energy.
QByteArray mapHeader(int columns, int rows, double energy);
QByteArray mapHeader(const MapSample& map, double energy);
/// One row of an image: a line for each pixel with its positions, I and I0, and an empty line.
QByteArray mapRow(int columns, int y, const std::function<double(int x)>& muT);
QByteArray mapRow(const MapSample& map, double energy, int y);

/// Name of the image's file at the i-th energy: map_1.dat and so on.
QString mapFileName(int i);

/// Writes the images and map-truth.toml into a folder, which is made where it does not exist.
/// @return empty, or what could not be written
QString writeMap(const QString& folder, const MapSample& map);

#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

class ByteSource;

/// A frame and its part in an image.
struct FramePart {
    std::size_t frame = 0;
    double weight = 1.0;
};

/// The frames of an image at an energy: one at that very energy (to 0.0001 eV), the mean of several
/// there,
/// otherwise the neighbours on both sides, linearly in between.
/// @param energies  of the frames, eV, in any order
/// @return empty where the energy is outside of them
std::vector<FramePart> framesAt(const std::vector<double>& energies, double energy);

/// Turns energies into eV where they are in keV: by the unit, and without one where all are below
/// 100. What was assumed is appended.
/// @param unit  "eV", "keV" or another word
/// @return the reason where one is no positive number, or there are none
std::optional<QString> toElectronVolt(std::vector<double>& energies, const QString& unit,
                                      QString& assumed);

/// The energies of a text beside a stack: the first number of each row.
/// @param reason  why there are none
std::vector<double> energiesOf(const ByteSource& file, QString& reason);

#pragma once

#include "analysis/Spectrum.h"

#include <QByteArray>

/// A spectrum as a beamline's text, which the window reads.
struct BeamlineText {
    QByteArray text;           ///< empty where a mu-t is beyond all intensities, 700 or so
    double energyChange = 0.0; ///< the largest of a point when it is read, eV: a last bit
    double mutChange = 0.0;    ///< of its mu-t: ln(I0 / I) has its own steps
};

/// Writes the points of a spectrum, with angles and ratios as near to them as doubles come. The
/// readings are negative: they are no counts of photons, and nobody is to take them for such.
/// @param title  of the first line; control characters are left out
BeamlineText beamlineText(const QByteArray& title, const SpectrumPoints& points);

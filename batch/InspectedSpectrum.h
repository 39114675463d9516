#pragma once

#include "batch/Inspection.h"

#include <QStringList>

/// Lines of energies in the order of their file, eV: range, number, steps and order.
void addEnergies(const std::vector<double>& energies, Inspection& inspection);

/// Lines of a spectrum: its mu-t, edge and noise; it is to be drawn.
/// @param what  the mu-t is of
void addSpectrum(const SpectrumPoints& points, const QString& what, Inspection& inspection);

/// A line of the means of frames whose numbers are not known to be mu-t; they are to be drawn.
void addNumbers(const SpectrumPoints& points, Inspection& inspection);

/// Looks at a beamline's spectrum, XDI or columns.
std::optional<FileFault> inspectSpectrum(const QString& path, Inspection& inspection);

/// "1 to 3".
QString rangeText(double from, double to);

#pragma once

#include <QByteArray>

#include <vector>

/// One step of a scan: photon energy (eV) and the counts before and behind the sample.
struct ScanStep {
    double energy;
    double incident;
    double transmitted;
};

/// The text of a spectrum file as a beamline's data acquisition writes it: a header with the
/// monochromator's lattice spacing, the line "Offset", and one row a step with the Bragg angle.
/// @param title  first line of the header
QByteArray beamlineText(const QByteArray& title, const std::vector<ScanStep>& steps);

#pragma once

#include "formats/FileFault.h"

#include <optional>
#include <vector>

/// The beamline's text that is written with frames of a camera.
struct CameraIndex {
    std::vector<double> energies; ///< eV, of each row
    std::vector<double> incident; ///< I0 of each row
};

/// Reads an index.
/// @return why it is none
std::optional<FileFault> readCameraIndex(const QString& path, CameraIndex& index);

#pragma once

#include "batch/Inspection.h"
#include "formats/FileKind.h"

/// Looks at 2D data as the window reads them.
std::optional<FileFault> inspectMapText(const QString& path, Inspection& inspection);

/// Looks at one camera file, .img or .his.
std::optional<FileFault> inspectCameraFile(const QString& path, Inspection& inspection);

/// Looks at the index of camera frames.
std::optional<FileFault> inspectCameraIndex(const QString& path, Inspection& inspection);

/// Whether frames of a camera lie beside a beamline's text.
bool hasCameraFrames(const QString& path);

/// Looks at a TIFF or HDF5 file.
std::optional<FileFault> inspectStackFile(const QString& path, FileKind kind,
                                          Inspection& inspection);

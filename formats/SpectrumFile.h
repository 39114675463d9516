#pragma once

#include "analysis/Spectrum.h"
#include "formats/ColumnMeaning.h"
#include "formats/FileFault.h"
#include "formats/FileKind.h"

#include <QStringList>

/// A spectrum that was read from a file.
struct FoundSpectrum {
    FileKind kind = FileKind::Unknown;
    SpectrumPoints points; ///< in the file's order; from the last to the first where that rises
    SpectrumValues values = SpectrumValues::MuT;
    QStringList assumed;  ///< what the file does not say and was taken for granted, a line each
    QStringList warnings; ///< what limits its use, a line each
};

/// How a spectrum file is to be read.
struct SpectrumSource {
    FileKind kind = FileKind::Unknown; ///< Unknown: recognised by its content
    ChosenColumns columns;
};

/// Reads a spectrum in any of the formats of a text: the beamline's, XDI, columns. Fluorescence and
/// normalized data are read, and warned of. Energies that are no positive number refuse the file;
/// rows without a logarithm are left out, and said.
std::variant<FoundSpectrum, FileFault> readSpectrumFile(const QString& path,
                                                        const SpectrumSource& source);

/// The same from bytes; the fault has no path.
std::variant<FoundSpectrum, FileFault> readSpectrumFile(const ByteSource& file,
                                                        const SpectrumSource& source);

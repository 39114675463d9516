#pragma once

#include "analysis/FittedSpectrum.h"
#include "analysis/SpectrumNoise.h"
#include "system/ReadOutcome.h"

#include <QString>

#include <vector>

class ByteSource;

/// One spectrum in memory, read from a file.
class AXafsData : public FittedSpectrum
{
public:
    bool valid = false; ///< the last file opened held data
    QString fileName;   ///< path of the file last opened
    QString refusal;    ///< one line of plain English: why the last file was not taken

    /// Reads a spectrum file and fits the Victreen lines. True if the file could be opened and held
    /// data. A file that cannot be opened, or is refused, leaves the record as it was; one without
    /// data leaves it cleared and not valid.
    bool read(const QString& path);

    /// The same from bytes.
    /// @param path  stands for the file in `fileName` and `refusal`
    /// @param readings  are set to what the detectors read at each point, where data were taken
    bool read(const ByteSource& bytes, const QString& path,
              std::vector<Readings>* readings = nullptr);

private:
    bool take(ReadOutcome outcome, SpectrumPoints found, const QString& path);
};

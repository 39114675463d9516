#pragma once

#include "analysis/SpectrumNoise.h"
#include "formats/SpectrumFile.h"
#include "input/AXafsData.h"

#include <QStringList>

#include <memory>
#include <optional>

/// A spectrum as a job has it read, with its lines fitted.
struct SpectrumRecord {
    std::shared_ptr<AXafsData> spectrum;
    /// What the detectors read at each point; empty where the file has no such readings, or is none
    /// of a beamline.
    std::vector<Readings> readings;
    QStringList warnings; ///< what limits its use, as its file shows
};

/// A spectrum of points that are known, its lines fitted with the bounds (eV); without readings.
/// @param name  under which the window's functions know it
SpectrumRecord recordOf(SpectrumPoints points, const QString& name, const FitBounds& bounds,
                        const QStringList& warnings);

/// Reads a spectrum of any kind: one of a beamline by the window's own reader, others as their file
/// or the job says.
/// @param name  of the file, in the reason why it is of no use
/// @param why   set where nothing comes back
std::optional<SpectrumRecord> readSpectrumRecord(const ByteSource& bytes, const QString& name,
                                                 const SpectrumSource& source,
                                                 const FitBounds& bounds, QString& why);

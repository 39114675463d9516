#pragma once

#include "analysis/FittedSpectrum.h"
#include "batch/PositionUnit.h"
#include "formats/FileFault.h"
#include "input/MapData.h"

#include <optional>
#include <utility>
#include <variant>
#include <vector>

/// What a file holds, found out without a job.
struct Inspection {
    using Line = std::pair<QString, QString>; ///< name and value

    std::vector<Line> lines; ///< a name may come more than once
    /// To be drawn; with bounds against its edge as the window has them at its start.
    std::optional<FittedSpectrum> spectrum;
    bool isMut = true;                            ///< the values of the spectrum
    std::optional<MapData> image;                 ///< to be drawn
    QString imageTitle;                           ///< "8390 eV"
    QString imageValues;                          ///< "mu-t" or "counts"
    PositionUnit positions = PositionUnit::Stage; ///< of the image

    void add(const char* name, const QString& value);
    void add(const char* name, const QStringList& values);
};

/// Looks at a file of any kind that the program reads: its format, energies, size, what was
/// assumed, noise and edge, and what a job has to say of it.
/// @return why it cannot be read
std::variant<Inspection, FileFault> inspectFile(const QString& path);

/// The lines "name: value", each in one line whatever the file has in its names.
QByteArray inspectionText(const Inspection& inspection);

/// A text of a file as it may stand in a line of a terminal: without characters that control it,
/// and of bounded length.
QString inOneLine(QString text);

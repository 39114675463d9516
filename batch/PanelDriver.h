#pragma once

#include "batch/JobChecks.h"

#include <QStringList>

#include <optional>

class FourPs;

/// What a run of the panel's calculations left behind.
struct RunReport {
    QStringList messages; ///< lines of the message pane, oldest first
    QString calcRes;      ///< text of the field CalcRes
    QString lcfRes;       ///< text of the field LCFRes
    QString map;          ///< size of the map, "24 x 16 pixels"
    bool refused = false; ///< a calculation was refused; its line is among the messages
    JobResults results;
    QStringList written;           ///< the result file and histogram files
    bool resultNotWritten = false; ///< there is a map and a path for it, but no file
};

/// Makes the settings of a job in a panel, through its widgets as a user would: texts are typed,
/// boxes and buttons clicked, the files named last, so that every setting holds for them.
/// @return nothing, or the first file that cannot be read with its line in the job
std::optional<JobError> applyJob(const Job& job, FourPs& panel);

/// Presses the panel's buttons for the calculations that the job asks for. A map that is refused
/// leaves its result file as it was.
RunReport runJob(const Job& job, FourPs& panel);

/// The report as printed: the message lines, then "Map: ...", "CalcRes: ..." and "LCFRes: ..." for
/// the calculations that the job asked for.
QString reportText(const Job& job, const RunReport& report);

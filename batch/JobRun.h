#pragma once

#include "batch/JobChecks.h"
#include "batch/JobData.h"

#include <QStringList>

/// What the calculations of a job left behind.
struct RunReport {
    QStringList messages; ///< the lines of the calculations, in their order
    QString calcRes;      ///< text of the target's result, empty where it was refused
    QString lcfRes;       ///< text of the fit's result, likewise
    QString map;          ///< size of the map, "24 x 16 pixels"
    bool refused = false; ///< a calculation was refused; its line is among the messages
    JobResults results;
    QStringList written;           ///< the result file and histogram files
    bool resultNotWritten = false; ///< there is a map and a path for it, but no file
};

/// Does the calculations that the job asks for, with the lines, texts and files that the window's
/// buttons bring for the same settings. A refusal leaves its text empty and its result file as it
/// was; the window, whose fields are never emptied, keeps the result that it showed before.
RunReport runJob(const Job& job, const JobData& data);

/// The report as printed: the message lines, then "Map: ...", "CalcRes: ..." and "LCFRes: ..." for
/// the calculations that the job asked for.
QString reportText(const Job& job, const RunReport& report);

#pragma once

#include "batch/TargetsJob.h"

#include <QString>
#include <QStringList>

class QCommandLineParser;

/// What the command line asks for.
struct CommandLine {
    bool help = false;
    bool version = false;
    bool showTemplate = false;
    bool rank = false;
    bool show = false;
    bool merge = false;
    bool convert = false;
    QString to;        ///< folder of the conversion
    QString inspect;   ///< path of a file
    QString picture;   ///< of it, or of ranked energies
    QString replay;    ///< path of a record
    QStringList names; ///< all that is no option
    QString job;
    RunOptions run;
};

/// Reads the arguments of the application.
/// @param parser  gets what there is, for its help
/// @return why they cannot be understood; empty where they can
QString readCommandLine(QCommandLineParser& parser, CommandLine& asked);

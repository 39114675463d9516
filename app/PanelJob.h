#pragma once

#include "input/AnalysisFiles.h"
#include "jobs/JobFile.h"

#include <QByteArray>
#include <QStringList>

class FourPs;

/// What a panel shows, as the text of a job.
struct SavedJob {
    QByteArray text;
    QStringList lost; ///< names of what no job can hold, "No. 2, mut(Ref.1)"
};

/// Files, settings, rows and conditions of a panel as a job that gives the same results. It
/// calculates what the panel has the files for.
/// @param folder  of the file to come, from the root
SavedJob jobOf(const FourPs& panel, const QString& folder);

/// The files of a job, as far as the window can show them.
struct ShownFiles {
    AnalysisFiles files;
    QStringList others; ///< what it cannot: "ref1", a spectrum in columns
};

/// Reads the files of a job and forgets them again.
/// @param panel  tells how far that is
/// @param error  is set where nothing comes back: a file that cannot be read, or holds nothing
std::optional<ShownFiles> shownFiles(const Job& job, FourPs& panel, JobError& error);

/// Tables of a job that the window has no place for: "[output]", "[[map]]".
QStringList tablesNotShown(const Job& job);

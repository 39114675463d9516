#pragma once

#include "analysis/PointTable.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>
#include <vector>

/// A file that a job names.
struct JobFilePath {
    QString path; ///< empty: not given
    int line = 0; ///< of the job file
};

/// A job's keys of its spectra, in the order of SpectrumSet.
constexpr std::array<const char*, SpectrumSet::count> spectrumKeys{"ref1", "ref2", "target",
                                                                   "blank"};

/// A row of the point table. Numbers are kept as the texts that a user would type.
struct JobPoint {
    QString energy; ///< eV
    int line = 0;   ///< of the energy
    bool use = true;
    bool tRatio = false;
    bool vPoint = false;
    JobFilePath map; ///< 2D data
};

/// What to do without a window: the settings that differ from the form's defaults and the
/// calculations to run. Whatever is empty stays as the form has it.
struct Job {
    QString folder; ///< of the job file; what its paths start from
    std::array<JobFilePath, SpectrumSet::count> spectra;

    /// Names and patterns of many targets, as they stand in the job; not together with a target.
    std::vector<JobFilePath> targets;
    JobFilePath output; ///< folder of the results of many targets

    QString edge;          ///< eV
    QString preEdgeEnd;    ///< eV, against the edge
    QString postEdgeStart; ///< eV, against the edge
    int edgeLine = 0;      ///< of the job file; 0 where it is not given
    int preEdgeEndLine = 0;
    int postEdgeStartLine = 0;
    QString valence1;
    QString valence2;

    /// Rows 1 to n of the point table; then the other rows are empty and not used. Without any the
    /// table is as the form has it.
    std::optional<std::vector<JobPoint>> points;

    std::optional<ThicknessType> thickness;
    std::optional<bool> referencesMinusVictreen;
    std::optional<bool> targetMinusVictreen;
    std::optional<bool> victreenIsPre; ///< which line: of the pre-edge, or of the post-edge
    std::optional<bool> exactMethod;   ///< exact, or least squares

    JobFilePath mapResult; ///< result file of the map

    bool calculateTarget = true;
    bool calculateLcf = true;
    bool calculateMap = false; ///< and written, where there is a result file
};

/// Why a job cannot be used.
struct JobError {
    int line = 0; ///< of the job file; 0 where it could not be read at all
    QString reason;
};

/// "file:line: reason", without the line where there is none.
QString errorText(const QString& file, const JobError& error);

/// Reads the text of a job file (TOML, UTF-8). Nesting that no job has, keys that are not known,
/// values of another type than expected, and more rows than the table has are errors; the first one
/// in the text is reported.
/// @param folder  what relative paths of spectra start from
/// @param error   is set where nothing comes back
std::optional<Job> parseJob(const QByteArray& text, const QString& folder, JobError& error);

/// Reads a job file; its own folder is what relative paths start from. Only a regular file of at
/// most 1 MiB is read.
std::optional<Job> readJob(const QString& path, JobError& error);

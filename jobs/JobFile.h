#pragma once

#include "analysis/PointTable.h"
#include "formats/SpectrumFile.h"
#include "formats/Stack.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

/// Where in the job something stands.
struct JobPlace {
    int line = 0;   ///< 0 where the job does not give it, or could not be read at all
    int column = 0; ///< characters, 1 for the first; 0 where only the line is known
    QString key;    ///< "edge.energy"; empty where it belongs to none
};

bool isBefore(const JobPlace& place, const JobPlace& other);

/// A file that a job names.
struct JobFilePath {
    QString path; ///< empty: not given
    JobPlace place = {};
    SpectrumSource source = {}; ///< how a spectrum is read
};

/// A job's keys of its spectra, in the order of SpectrumSet.
constexpr std::array<const char*, SpectrumSet::count> spectrumKeys{"ref1", "ref2", "target",
                                                                   "blank"};

/// A row of the point table. Numbers are kept as the texts that a user would type.
struct JobPoint {
    QString energy;     ///< eV
    QString energyText; ///< as it stands in the job, "8390.0"
    JobPlace place;     ///< of the energy
    bool use = true;
    bool tRatio = false;
    bool vPoint = false;
    JobFilePath map; ///< 2D data
};

/// A stack of images that a map or a spectrum is made from.
struct JobStack {
    StackSource source;
    JobPlace place;
    Region region;
    JobPlace regionPlace = {};
    double tilt = 0.0; ///< eV a row
    double row0 = 0.0; ///< the row without a shift, 0 for the first of the stack
};

/// A target that is the mean spectrum of a region of a stack.
struct JobStackTarget {
    QString name; ///< of its row in the results
    JobPlace place;
    JobStack stack;
};

/// A map of a night: images of its own, with the points and conditions of the job.
struct JobMap {
    QString name; ///< of its folder
    JobPlace place;
    std::vector<JobFilePath> images; ///< one for each [[point]], an empty path for none; or
    JobFilePath pattern;             ///< "area_{row}.txt", as it stands in the job; or
    std::optional<JobStack> stack = {};
};

/// The boxes of a histogram.
struct JobHistogram {
    QString from; ///< centre of the first box
    QString to;   ///< centre of the last box
    QString boxes;
    JobPlace place;
};

/// Where the noise of measured mu-t comes from.
enum class NoiseModel {
    Scatter, ///< of the points before the edge
    Counts,  ///< of counted photons
    None,    ///< no uncertainties are formed
};

/// A number that is added to the energies of a spectrum.
struct JobShift {
    QString energy; ///< eV; empty: not given
    JobPlace place = {};
};

/// A larger one is no shift but another edge, eV.
constexpr double largestGivenShift = 100.0;

/// What is added to energies before anything is formed from the spectra.
struct JobAlignment {
    std::array<JobShift, SpectrumSet::count> shifts;
    JobFilePath table; ///< of the shifts of all files; or
    JobFilePath foil;  ///< "foil/{name}.dat", as it stands in the job: what shows them

    bool any() const
    {
        bool given = !table.path.isEmpty() || !foil.path.isEmpty();
        for (const JobShift& shift : shifts)
            given = given || !shift.energy.isEmpty();
        return given;
    }
};

/// Of what is made to be read.
enum class Language { English, Japanese };

/// What to do without a window: the settings that differ from the form's defaults and the
/// calculations to run. Whatever is empty stays as the form has it.
struct Job {
    QString folder; ///< of the job file; what its paths start from
    std::array<JobFilePath, SpectrumSet::count> spectra;

    /// Names and patterns of many targets, as they stand in the job; not together with a target.
    std::vector<JobFilePath> targets;
    SpectrumSource targetSource;              ///< how the targets are read
    std::vector<JobStackTarget> stackTargets; ///< behind the others
    std::vector<JobMap> maps;
    JobFilePath output;    ///< folder of the results of targets and maps
    bool pictures = false; ///< the graphs of all targets as files
    bool report = true;    ///< a page that shows all results
    bool mapFiles = true;  ///< result file and histogram files of each map
    bool tiff = false;     ///< images of each map for the programs of others
    bool hdf5 = false;     ///< a file of each map, and one of the run
    Language language = Language::English;

    QString edge;          ///< eV
    QString preEdgeEnd;    ///< eV, against the edge
    QString postEdgeStart; ///< eV, against the edge
    JobPlace edgePlace;
    JobPlace preEdgeEndPlace;
    JobPlace postEdgeStartPlace;
    QString valence1;
    QString valence2;
    JobHistogram valenceHistogram;
    JobHistogram thicknessHistogram;

    /// Rows 1 to n of the point table; then the other rows are empty and not used. Without any the
    /// table is as the form has it.
    std::optional<std::vector<JobPoint>> points;

    std::optional<ThicknessType> thickness;
    std::optional<bool> referencesMinusVictreen;
    std::optional<bool> targetMinusVictreen;
    std::optional<bool> victreenIsPre; ///< which line: of the pre-edge, or of the post-edge
    std::optional<bool> exactMethod;   ///< exact, or least squares

    JobAlignment alignment;
    NoiseModel noise = NoiseModel::Scatter;
    QString gain;          ///< variance over reading of the detector behind the sample
    QString gain0;         ///< of that before the sample
    QString level;         ///< of the valence's interval
    QString uneven;        ///< spread of the targets' thickness over its mean
    QString mapScatter;    ///< standard deviation of the mu-t of a map's images
    QString rankCounts;    ///< photons a point, for the ranking of energies
    QString rankThickness; ///< t/ts of its target

    JobFilePath mapResult; ///< result file of the map

    /// Numbers as they stand in the job, "8350.0", by key, "edge.energy"; only where the field has
    /// another text. A row has its own.
    QHash<QString, QString> typed;

    bool calculateTarget = true;
    bool calculateLcf = true;
    bool calculateMap = false; ///< and written, where there is a result file

    /// There are targets that go into a folder of results.
    bool hasTargets() const { return !targets.empty() || !stackTargets.empty(); }
    /// The pictures of the maps are part of the report, too.
    bool drawsMaps() const { return !maps.empty() && (pictures || report); }
    /// The program needs fonts.
    bool paints() const { return pictures || drawsMaps(); }
};

/// Why a job cannot be used, or what there is to doubt.
struct JobError {
    JobPlace place;
    QString reason;
};

/// "file:line:column: key: reason", without what is not known of the place.
QString errorText(const QString& file, const JobError& error);

/// The same of a doubt: "file:line:column: warning: reason".
QString warningText(const QString& file, const JobError& doubt);

/// Reads the text of a job file (TOML, UTF-8). Nesting that no job has, keys that are not known,
/// values of another type than expected or out of all reason, and more rows than the table has are
/// errors; the first one in the text is reported.
/// @param folder  what relative paths of spectra start from
/// @param error   is set where nothing comes back
std::optional<Job> parseJob(const QByteArray& text, const QString& folder, JobError& error);

/// The bytes of a job file. Only a regular file of at most 1 MiB is read.
std::optional<QByteArray> readJobText(const QString& path, JobError& error);

/// Reads a job file; its own folder is what relative paths start from.
std::optional<Job> readJob(const QString& path, JobError& error);

/// All keys that a job can have, "files.ref1", "point.energy"; a table is there by its keys only.
QStringList jobKeys();

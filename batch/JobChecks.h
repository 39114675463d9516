#pragma once

#include "jobs/JobFile.h"

#include <QString>

#include <optional>
#include <vector>

/// A spectrum that the calculations of a job use.
struct SpectrumFacts {
    QString name; ///< "ref1"
    JobPlace place;
    double energyMin = 0.0;
    double energyMax = 0.0;            ///< eV
    std::optional<double> fallsAt;     ///< eV; the first energy that is below the one before
    std::optional<int> preEdgePoints;  ///< below the end of the pre-edge range, if a line through
                                       ///< them is used
    std::optional<int> postEdgePoints; ///< above the start of the post-edge range, likewise
    QStringList warnings = {};         ///< of its file
};

/// A row of the point table whose energy counts.
struct RowFacts {
    double energy = 0.0; ///< eV
    JobPlace place;      ///< none where the job does not give the row
};

/// What a job amounts to when its settings are made and its files are read.
struct JobFacts {
    std::vector<SpectrumFacts> spectra;
    std::vector<RowFacts> rows;
    double edge = 0.0; ///< eV
    JobPlace edgePlace;
    JobPlace preEdgeEndPlace;
    JobPlace postEdgeStartPlace;
    std::vector<QString> missingForLcf; ///< names of the spectra that the fit lacks
    bool gridsDiffer = false;           ///< of the images that a map uses
    std::optional<int> lcfPoints; ///< of the target in the range of the fit, if there is to be one
};

/// What the calculations of a job found. What was not asked for, or refused, is not there.
struct JobResults {
    std::optional<double> a; ///< of the point method
    std::optional<double> valence;
    std::optional<double> lcfA;
    std::optional<double> lcfValence;
    std::optional<bool> anyFinitePixel; ///< of the map
    std::optional<double> medianA;      ///< of the map's pixels
};

/// What a physicist would doubt before the calculation: energies that look like keV or that a
/// spectrum does not reach, spectra whose energies fall or that have no range in common, an edge
/// outside a spectrum whose lines are used, fits through too few points, images of several grids.
/// Each with its place in the job, if it has one; empty where there is nothing to doubt.
std::vector<JobError> doubtsBefore(const JobFacts& facts);

/// What a physicist would doubt of the results: `a` far outside 0 to 1, what is no finite number.
std::vector<JobError> doubtsAfter(const JobResults& results);

/// Whether all results that are there are finite numbers.
bool areFinite(const JobResults& results);

#pragma once

#include "analysis/TiltedMap.h"
#include "batch/Alignment.h"
#include "batch/Digest.h"
#include "batch/MapJob.h"
#include "batch/NoiseSettings.h"
#include "batch/TargetSource.h"
#include "input/AXafsData.h"
#include "input/MapData.h"
#include "jobs/JobFile.h"
#include "jobs/JobSettings.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

/// A job with its settings made and its files read: all that the calculations need.
struct JobData {
    Settings settings;
    /// Fitted with the settings' bounds; null where the job names none.
    std::array<std::shared_ptr<const AXafsData>, SpectrumSet::count> spectra;
    /// Of the spectra's files; of the bytes that were read.
    std::array<std::optional<Digest>, SpectrumSet::count> digests;
    SpectrumNoises noises; ///< of the spectra
    /// Of the spectra: variance found in the scatter over that of as many photons.
    std::array<std::optional<double>, SpectrumSet::count> gains;
    /// What the targets have in common of their uncertainties; null where none are wanted.
    std::shared_ptr<const CommonUncertainty> uncertainty;
    NoiseSettings noise;
    std::shared_ptr<const Alignment> alignment; ///< null where the job has none
    EnergyShifts shifts{};                      ///< of the spectra's energies
    /// How each is read; that of the target is of all targets.
    std::array<SpectrumSource, SpectrumSet::count> readAs;
    /// What limits the use of each, as its file shows.
    std::array<QStringList, SpectrumSet::count> warnings;
    std::vector<MapData> maps; ///< [settings.points.size()]
    /// Of the images of a map that is not the job's own, in their order; none for no image.
    std::vector<std::optional<Digest>> imageDigests;
    EnergyTilt tilt;         ///< of the maps
    double pixelWidth = 0.0; ///< of a stack's pixels, micrometres; 0 where it is not known
    double pixelHeight = 0.0;
    AnalysisInput input; ///< refers to the spectra

    std::vector<MapSource> mapSources() const;
    /// The noise of the images [maps.size()], of whose counts the maps hold the memory; nothing
    /// where the job wants none, or that of an image in use is not known.
    std::optional<std::vector<MapVariance>> mapNoise() const;
};

/// A target, and what belongs to it.
struct OpenTarget {
    QString name; ///< in the results
    const TargetSource& source;
    const ByteSource* foil = nullptr; ///< measured along with it; null where there is none
};

/// The same job with a target of its own. The references, the blank and the settings are shared; no
/// 2D data are in it.
/// @param error  why the target cannot be used, where nothing comes back
std::optional<JobData> withTarget(const JobData& common, const OpenTarget& target, QString& error);

/// The same job with a map of its own, of whose points those are in use that have an image. The
/// references, the blank and the settings are shared. An energy in the header of an image takes the
/// place of its row's.
/// @param images  one for each row, or fewer; an empty path for none
/// @param error   the first image that cannot be read, where nothing comes back
std::optional<JobData> withImages(const JobData& common, const std::vector<JobFilePath>& images,
                                  JobError& error, Workers& workers);

/// The same with a map that is made from a stack of images; of the points those that are in use.
/// @param warnings  what limits its use
/// @param map  whose stack is read, and whose files have their digests taken
std::optional<JobData> withStack(const JobData& common, const MapJob& map, JobError& error,
                                 QStringList& warnings, Workers& workers);

/// Reads the files of a job. An energy in the header of 2D data takes the place of its row's.
/// @param error  the first file that cannot be read, with its line in the job, where nothing comes
///               back
std::optional<JobData> readJobData(const Job& job, JobError& error);

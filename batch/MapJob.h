#pragma once

#include "jobs/JobFile.h"

#include <optional>
#include <vector>

/// One map of a job: which image belongs to which row of the point table.
struct MapJob {
    QString name; ///< of its folder, unlike those of all other maps
    JobPlace place;
    /// One for each [[point]], an empty path for none; a row without an image is not used.
    std::vector<JobFilePath> images; ///< of a stack, its files
    std::optional<JobStack> stack = {};
};

/// The maps of a job in its order, every image a file that is there. A pattern gives an image to
/// each [[point]] that is in use.
/// @param error  is set where nothing comes back: an image without a file, or one that is no
///               regular file, with its place in the job
std::optional<std::vector<MapJob>> mapList(const Job& job, JobError& error);

/// The maps of which every image is there.
std::vector<MapJob> presentMaps(const Job& job);

/// The paths of all images, be they there or not.
QStringList imagesOfMaps(const Job& job);

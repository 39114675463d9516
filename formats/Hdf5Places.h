#pragma once

#include "formats/Hdf5File.h"

#include <string>

/// Where the images of a set lie in a file, a number of bytes for each; empty where one of them
/// does not lie there as it is in memory, row after row.
/// @param path       of the file
/// @param dimension  of the energies
std::string placesOf(const Hdf5Data& set, const std::string& path, int dimension);

#pragma once

#include "formats/Hdf5File.h"

#include <string>
#include <vector>

/// Where a stack lies in an HDF5 file. What is empty or 0 is found out, or not there.
struct Hdf5Layout {
    std::string kind; ///< "fxi", "exchange", "mistral", "nxdata"; "paths" where data is given
    std::string data;
    std::string energies;
    std::string flat;
    std::string dark;
    std::string unit;        ///< of the energies, as the file says
    double pixelWidth = 0.0; ///< micrometres
    double pixelHeight = 0.0;
    StackValues values = StackValues::Unknown;
};

/// Completes what is known of a layout by what the file holds: one of the known kinds, or the paths
/// that are given. Throws StackFault where the file has no stack.
void completeLayout(const Hdf5File& file, const std::string& fileName, Hdf5Layout& layout);

/// The dimension of a stack that runs over the energies: 0 or 2.
/// @param energies  how many; 0 where that is not known, and the first is taken
int energyDimension(const Hdf5Data& stack, std::size_t energies);

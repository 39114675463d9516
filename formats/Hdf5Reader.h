#pragma once

#include "formats/StackAnswer.h"

/// "describe": what stack is in an HDF5 file. Words: file, kind, data, energies, flat, dark,
/// values (a number of StackValues), count (of energies that are known otherwise). Places are those
/// of images that lie in the file as they are in memory.
std::string describeHdf5(const StackRequest& request);

/// "planes": sends images, one behind the other. Words: file, region "x,y,width,height", dimension
/// (of the energies), bytes of all, and for each set a "set" with its path, a tab and the indices,
/// apart by commas, or "mean" for the mean in double precision of all its images. Of a "share" of
/// the images, "k/n", the others are left out; those of a chunk stay together.
std::string planesOfHdf5(const StackRequest& request);

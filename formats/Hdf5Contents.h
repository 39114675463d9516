#pragma once

#include "formats/StackAnswer.h"

/// "contents": a line "set" for each set of an HDF5 file with its path, size and type, or why it is
/// no set of numbers; no more than 200, down to eight groups deep. Words: file.
std::string contentsOfHdf5(const StackRequest& request);

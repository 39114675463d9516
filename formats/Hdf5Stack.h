#pragma once

#include "formats/Stack.h"

/// Opens a stack in an HDF5 file: "fxi", "exchange", "mistral", "nxdata", or the paths that are
/// given.
std::unique_ptr<Stack> openHdf5Stack(const StackSource& source, FileFault& fault);

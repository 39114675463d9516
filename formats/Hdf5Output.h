#pragma once

#include "formats/Hdf5File.h"

#include <string>
#include <vector>

/// What is put into HDF5 files. Equal calls make equal bytes: nothing of the time or the machine
/// goes in. All throw StackFault, as where a disk is full.
namespace hdf5_output
{

/// The library says nothing of its own.
void beQuiet();

/// An empty file; what was there is gone.
Hdf5Id createFile(const std::string& path);
/// All goes to the disk. Whatever else is open of the file must have been closed.
void closeFile(Hdf5Id& file);

Hdf5Id createGroup(hid_t parent, const std::string& name, const char* nexusClass);
/// A group of another file under the same name.
Hdf5Id copyGroup(const std::string& fromFile, const std::string& name, hid_t to);
/// Another name of what is there.
void link(hid_t group, const std::string& name, hid_t toGroup, const std::string& toName);

void setAttribute(hid_t owner, const std::string& name, const std::string& value);
void setAttribute(hid_t owner, const std::string& name, const std::vector<std::string>& values);
void setAttribute(hid_t owner, const std::string& name, const std::vector<int>& values);

/// Numbers in double precision.
/// @param size  of each dimension, the slowest first
Hdf5Id writeNumbers(hid_t group, const std::string& name, const std::vector<hsize_t>& size,
                    const double* values);
/// @param size  of the dimension; empty for a single text
void writeTexts(hid_t group, const std::string& name, const std::vector<hsize_t>& size,
                const std::vector<std::string>& values);

} // namespace hdf5_output

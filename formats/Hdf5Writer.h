#pragma once

#include "formats/StackAnswer.h"

/// "write": one NXentry with a map, in a file of its own. Words: file, program, version, job-bytes,
/// inputs-bytes, map "name<TAB>columns<TAB>rows<TAB>x0<TAB>dx<TAB>y0<TAB>dy<TAB>unit", and for
/// each of its values a "data" with "name<TAB>long name<TAB>1 or 0 for errors". The shared memory
/// has the two texts, zeros up to a multiple of eight bytes, then for each of the data its numbers
/// in double precision, and its errors.
std::string writeHdf5(const StackRequest& request);

/// "join": one file with the entries of others. Words: file, and any number of "part".
std::string joinHdf5(const StackRequest& request);

#pragma once

#include "formats/StackAnswer.h"

/// "write-map": the results of one map as an HDF5 file, an NXentry of the map's name. Words: file;
/// name, columns, rows; pixel-width and pixel-height in micrometres (0: not known); axes "1" (a
/// place for each column, and for each row) or "2" (two for each pixel); for each image a "data"
/// with name, long name and "1" where standard deviations follow, apart by tabs. The shared memory
/// has x, y, and for each image values and standard deviations.
std::string writeMap(const StackRequest& request);

/// "write-run": the maps of such files and a table in one HDF5 file. Words: file, bytes (of the
/// shared memory), program, version, table (its name; empty for none), rows, "column" for each:
/// name and "number" or "text", apart by a tab; maps, their number. The shared memory has the
/// numbers of the columns, then texts, each with a zero behind: the job, of each map its name, file
/// and inputs, and the texts of the columns.
std::string writeRun(const StackRequest& request);

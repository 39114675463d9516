#pragma once

#include "input/MapData.h"
#include "system/SafeFile.h"

/// Writes 2D data as the window reads them: the sizes of both axes, the energy, and a line for each
/// pixel with x, y, mu-t and 0, which says that mu-t is none to be formed. All numbers are read
/// again as the same doubles; not-a-number stays "nan".
/// @param energy  eV
/// @return false where not all could be written
bool writeMapText(SafeFile& file, const MapData& map, double energy);

#pragma once

#include "formats/SpectrumFile.h"

/// The spectrum of a table. Points are reversed where all energies fall.
/// @return the first row whose energy is no positive number, or why no point is left
std::optional<TableFault> tableSpectrum(const TextTable& table, const ColumnMeaning& meaning,
                                        FoundSpectrum& spectrum);

#pragma once

#include "formats/ColumnNames.h"

#include <variant>

/// What the numbers of the energy's column are.
enum class EnergyUnit { Unknown, ElectronVolt, KiloElectronVolt, Degrees, Radians };

/// What a spectrum's values are.
enum class SpectrumValues {
    MuT,                     ///< of transmission
    Intensities,             ///< I0 and I: mu-t = ln(I0 / I)
    Fluorescence,            ///< proportional to mu, of no known thickness
    FluorescenceIntensities, ///< I0 and that of the fluorescence: their ratio
    Normalized,
};

/// The columns that a spectrum is made of, 0 for the first.
struct ColumnMeaning {
    std::size_t energy = 0;
    EnergyUnit unit = EnergyUnit::Unknown;
    double spacing = 0.0; ///< of the lattice planes, angstrom; 0 where it is not known
    SpectrumValues values = SpectrumValues::MuT;
    std::size_t value = 0;    ///< mu-t, or I, or the fluorescence
    std::size_t incident = 0; ///< I0, where there is one
};

/// The columns that a job names, 1 for the first; 0 where it does not name one.
struct ChosenColumns {
    int energy = 0;
    int mut = 0;
    int i0 = 0;
    int i = 0;
    EnergyUnit unit = EnergyUnit::Unknown;
    double spacing = 0.0; ///< angstrom

    bool any() const { return energy > 0 || mut > 0 || i0 > 0 || i > 0; }
};

/// Columns as the job chose them, or by their names: the energy or angle; mu-t, I0 and I, the
/// fluorescence, a normalized spectrum, the first of these that is there.
/// @return the reason where no column is an energy, none is to be made of them, or the unit is none
///         of an energy
std::variant<ColumnMeaning, QString> columnMeaning(const TextTable& table,
                                                   const ChosenColumns& chosen);

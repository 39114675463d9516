#pragma once

#include <QString>

/// Whether energies that come without a unit are taken for keV: X-rays have less than 100 keV, and
/// edges that are measured more than 100 eV.
/// @param largest  of the energies
inline bool isTakenForKilo(double largest)
{
    constexpr double largestKiloElectronVolt = 100.0;
    return largest < largestKiloElectronVolt;
}

/// What is said of such energies.
inline QString assumedUnitText(bool kilo)
{
    return kilo ? QStringLiteral("the energies, all below 100, are taken for keV")
                : QStringLiteral("the energies are taken for eV");
}

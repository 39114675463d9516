#include "formats/StackEnergies.h"

#include "formats/AssumedUnit.h"
#include "formats/TextTable.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Energies nearer to one another are the same: those of angles are rounded.
constexpr double sameEnergy = 1e-4; // eV

/// All frames at an energy, which is there.
void appendFrames(const std::vector<double>& energies, double energy, double weight,
                  std::vector<FramePart>& parts)
{
    const auto n = static_cast<double>(std::count(energies.begin(), energies.end(), energy));
    for (std::size_t i = 0; i < energies.size(); ++i)
        if (energies[i] == energy)
            parts.push_back({i, weight / n});
}

/// The energies next to one, below and above, or itself.
std::pair<std::optional<double>, std::optional<double>>
neighbours(const std::vector<double>& energies, double energy)
{
    std::optional<double> below;
    std::optional<double> above;
    for (const double e : energies) {
        if (e <= energy)
            below = std::max(below.value_or(e), e);
        if (e >= energy)
            above = std::min(above.value_or(e), e);
    }
    return {below, above};
}

} // namespace

std::vector<FramePart> framesAt(const std::vector<double>& energies, double energy)
{
    auto [below, above] = neighbours(energies, energy);
    std::vector<FramePart> parts;
    if (below && energy - *below <= sameEnergy)
        above = below;
    else if (above && *above - energy <= sameEnergy)
        below = above;
    if (!below || !above)
        return parts;
    if (*below == *above) {
        appendFrames(energies, *below, 1.0, parts);
        return parts;
    }
    const double part = (energy - *below) / (*above - *below);
    appendFrames(energies, *below, 1.0 - part, parts);
    appendFrames(energies, *above, part, parts);
    return parts;
}

std::optional<QString> toElectronVolt(std::vector<double>& energies, const QString& unit,
                                      QString& assumed)
{
    if (energies.empty())
        return QStringLiteral("has no energies");
    double largest = 0.0;
    for (std::size_t i = 0; i < energies.size(); ++i) {
        if (!(energies[i] > 0.0 && std::isfinite(energies[i])))
            return QStringLiteral("energy %1 is no positive number").arg(i + 1);
        largest = std::max(largest, energies[i]);
    }
    bool kilo = unit.compare(QLatin1String("keV"), Qt::CaseInsensitive) == 0;
    if (!kilo && unit.compare(QLatin1String("eV"), Qt::CaseInsensitive) != 0) {
        kilo = isTakenForKilo(largest);
        assumed = assumedUnitText(kilo);
    }
    if (kilo)
        for (double& energy : energies)
            energy *= 1000.0;
    return std::nullopt;
}

std::vector<double> energiesOf(const ByteSource& file, QString& reason)
{
    TextTable table;
    if (const auto fault = readTable(file, table)) {
        reason = fault->line > 0 ? QStringLiteral("line %1: %2").arg(fault->line).arg(fault->reason)
                                 : fault->reason;
        return {};
    }
    std::vector<double> energies;
    for (std::size_t row = 0; row < table.rows(); ++row)
        energies.push_back(table.at(row, 0));
    return energies;
}

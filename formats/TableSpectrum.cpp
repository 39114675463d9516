#include "formats/TableSpectrum.h"

#include "analysis/BraggLaw.h"
#include "formats/AssumedUnit.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Goes through the rows of a table.
class RowReader
{
public:
    RowReader(const TextTable& table, const ColumnMeaning& meaning)
        : m_table(table), m_meaning(meaning)
    {
    }

    std::optional<TableFault> read(FoundSpectrum& spectrum);

private:
    void guessUnit(FoundSpectrum& spectrum);
    double energyOf(double x) const;
    double valueOf(std::size_t row) const;
    void tellLeftOut(FoundSpectrum& spectrum) const;

    const TextTable& m_table;
    ColumnMeaning m_meaning;
    int m_leftOut = 0;
    int m_firstLeftOut = 0;
};

void RowReader::guessUnit(FoundSpectrum& spectrum)
{
    if (m_meaning.unit != EnergyUnit::Unknown)
        return;
    double largest = 0.0;
    for (std::size_t row = 0; row < m_table.rows(); ++row)
        largest = std::fmax(largest, m_table.at(row, m_meaning.energy));
    const bool kilo = isTakenForKilo(largest);
    m_meaning.unit = kilo ? EnergyUnit::KiloElectronVolt : EnergyUnit::ElectronVolt;
    spectrum.assumed += assumedUnitText(kilo);
}

double RowReader::energyOf(double x) const
{
    switch (m_meaning.unit) {
    case EnergyUnit::KiloElectronVolt:
        return x * 1000.0;
    case EnergyUnit::Degrees:
        return photonEnergy(x, m_meaning.spacing);
    case EnergyUnit::Radians:
        return photonEnergy(x * 180.0 / piOfAngles, m_meaning.spacing);
    default:
        return x;
    }
}

double RowReader::valueOf(std::size_t row) const
{
    const double value = m_table.at(row, m_meaning.value);
    const double incident = m_table.at(row, m_meaning.incident);
    switch (m_meaning.values) {
    case SpectrumValues::Intensities:
        return incident > 0.0 && value > 0.0 ? std::log(incident / value) : notANumber;
    case SpectrumValues::FluorescenceIntensities:
        return incident > 0.0 ? value / incident : notANumber;
    default:
        return value;
    }
}

void RowReader::tellLeftOut(FoundSpectrum& spectrum) const
{
    if (m_leftOut > 0)
        spectrum.warnings +=
            QStringLiteral("%1 rows without a value are left out, the first in line %2")
                .arg(m_leftOut)
                .arg(m_firstLeftOut);
}

std::optional<TableFault> RowReader::read(FoundSpectrum& spectrum)
{
    guessUnit(spectrum);
    const bool angles =
        m_meaning.unit == EnergyUnit::Degrees || m_meaning.unit == EnergyUnit::Radians;
    if (angles && !(m_meaning.spacing > 0.0 && std::isfinite(m_meaning.spacing)))
        return TableFault{
            0, QStringLiteral("has angles and no spacing of the lattice planes; give it in "
                              "angstrom: unit = \"degrees\", d = 3.1356")};
    const double spacing = m_meaning.spacing > 0.0 ? m_meaning.spacing : silicon111Spacing;
    spectrum.points.reserve(m_table.rows());
    for (std::size_t row = 0; row < m_table.rows(); ++row) {
        const double energy = energyOf(m_table.at(row, m_meaning.energy));
        if (!(energy > 0.0 && std::isfinite(energy)))
            return TableFault{m_table.lines[row],
                              QStringLiteral("the energy is no positive number")};
        const double value = valueOf(row);
        if (std::isfinite(value))
            spectrum.points.push_back({braggAngle(energy, spacing), energy, value});
        else if (m_leftOut++ == 0)
            m_firstLeftOut = m_table.lines[row];
    }
    tellLeftOut(spectrum);
    if (spectrum.points.empty())
        return TableFault{0, QStringLiteral("has no row with a value")};
    return std::nullopt;
}

void warnOfThickness(FoundSpectrum& spectrum)
{
    const auto warn = [&spectrum](const QString& what) {
        spectrum.warnings +=
            what + QStringLiteral(", of no known thickness: fit for the linear combination fit and "
                                  "three points, not for t/ts");
    };
    if (spectrum.values == SpectrumValues::Fluorescence ||
        spectrum.values == SpectrumValues::FluorescenceIntensities)
        warn(QStringLiteral("this is fluorescence"));
    if (spectrum.values == SpectrumValues::Normalized)
        warn(QStringLiteral("this is normalized"));
}

} // namespace

std::optional<TableFault> tableSpectrum(const TextTable& table, const ColumnMeaning& meaning,
                                        FoundSpectrum& spectrum)
{
    spectrum.values = meaning.values;
    if (auto fault = RowReader(table, meaning).read(spectrum))
        return fault;
    const auto higher = [](const SpectrumPoint& a, const SpectrumPoint& b) {
        return a.energy > b.energy;
    };
    SpectrumPoints& points = spectrum.points;
    if (points.size() > 1 && std::is_sorted(points.begin(), points.end(), higher) &&
        higher(points.front(), points.back())) {
        std::reverse(points.begin(), points.end());
        spectrum.assumed +=
            QStringLiteral("the energies fall; the rows are taken from the last one");
    }
    warnOfThickness(spectrum);
    return std::nullopt;
}

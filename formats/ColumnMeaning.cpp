#include "formats/ColumnMeaning.h"

#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <algorithm>
#include <initializer_list>

namespace
{

using Index = std::optional<std::size_t>;
using Names = std::initializer_list<std::string_view>;

const QString needsColumns = QStringLiteral("say which column is which: columns = { energy = 1, "
                                            "mut = 2 } or { energy = 1, i0 = 2, i = 3 }");

/// The column that has the first of the names, or that of the second and so on.
Index columnNamed(const TableHeader& header, const Names& names)
{
    for (const std::string_view name : names)
        for (std::size_t i = 0; i < header.columns.size(); ++i)
            if (header.columns[i].name == name)
                return i;
    return std::nullopt;
}

Index normalizedColumn(const TableHeader& header)
{
    constexpr std::string_view beginning = "norm";
    for (std::size_t i = 0; i < header.columns.size(); ++i)
        if (std::string_view(header.columns[i].name).substr(0, beginning.size()) == beginning)
            return i;
    return columnNamed(header, {"flat"});
}

bool chooseValues(const TableHeader& header, ColumnMeaning& meaning)
{
    const auto take = [&meaning](Index value, SpectrumValues values) {
        if (value) {
            meaning.value = *value;
            meaning.values = values;
        }
        return value.has_value();
    };
    if (take(columnNamed(header, {"mutrans", "xmu", "mut", "mu"}), SpectrumValues::MuT))
        return true;
    const Index incident = columnNamed(header, {"i0"});
    meaning.incident = incident.value_or(0);
    if (incident &&
        take(columnNamed(header, {"itrans", "it", "i1", "i"}), SpectrumValues::Intensities))
        return true;
    return take(columnNamed(header, {"mufluor"}), SpectrumValues::Fluorescence) ||
           (incident && take(columnNamed(header, {"ifluor", "if", "iff"}),
                             SpectrumValues::FluorescenceIntensities)) ||
           take(normalizedColumn(header), SpectrumValues::Normalized);
}

/// @return false for a word that is no unit of an energy
bool readUnit(const std::string& word, bool angle, EnergyUnit& unit)
{
    if (word.empty() || word == "e")
        unit = angle ? EnergyUnit::Degrees : EnergyUnit::Unknown;
    else if (word == "ev")
        unit = EnergyUnit::ElectronVolt;
    else if (word == "kev")
        unit = EnergyUnit::KiloElectronVolt;
    else if (word == "degrees" || word == "degree" || word == "deg")
        unit = EnergyUnit::Degrees;
    else if (word == "radians" || word == "radian" || word == "rad")
        unit = EnergyUnit::Radians;
    else
        return false;
    return true;
}

double spacingOf(const TableHeader& header)
{
    const auto field = header.fields.find("mono.d_spacing");
    if (field == header.fields.end())
        return 0.0;
    const std::string word = field->second.substr(0, field->second.find_first_of(" \t"));
    return decimalFromToken(word.data(), word.data() + word.size()).value_or(0.0);
}

/// The energy's column and its unit.
std::optional<QString> chooseEnergy(const TableHeader& header, ColumnMeaning& meaning)
{
    Index column = columnNamed(header, {"energy", "e"});
    const bool angle = !column;
    if (!column)
        column = columnNamed(header, {"angle", "theta"});
    if (!column)
        return QStringLiteral("no column is named energy or angle; ") + needsColumns;
    meaning.energy = *column;
    const std::string& word = header.columns[*column].unit;
    if (!readUnit(word, angle, meaning.unit))
        return QStringLiteral("the unit \"%1\" is none of an energy or angle")
            .arg(textFromUtf8(word));
    return std::nullopt;
}

/// 0-based, or the reason against it.
std::optional<QString> take(int column, const char* name, std::size_t columns, std::size_t& index)
{
    if (column < 1 || static_cast<std::size_t>(column) > columns)
        return QStringLiteral("has %1 columns; there is no column %2 for %3")
            .arg(columns)
            .arg(column)
            .arg(QLatin1String(name));
    index = static_cast<std::size_t>(column) - 1;
    return std::nullopt;
}

std::variant<ColumnMeaning, QString>
chosenMeaning(const TextTable& table, const ChosenColumns& chosen, ColumnMeaning meaning)
{
    const bool mut = chosen.mut > 0;
    if (chosen.energy < 1 || (mut ? chosen.i0 > 0 || chosen.i > 0 : chosen.i0 < 1 || chosen.i < 1))
        return needsColumns;
    meaning.values = mut ? SpectrumValues::MuT : SpectrumValues::Intensities;
    auto wrong = take(chosen.energy, "energy", table.columns, meaning.energy);
    if (!wrong && mut)
        wrong = take(chosen.mut, "mut", table.columns, meaning.value);
    if (!wrong && !mut)
        wrong = take(chosen.i0, "i0", table.columns, meaning.incident);
    if (!wrong && !mut)
        wrong = take(chosen.i, "i", table.columns, meaning.value);
    if (wrong)
        return *wrong;
    return meaning;
}

} // namespace

std::variant<ColumnMeaning, QString> columnMeaning(const TextTable& table,
                                                   const ChosenColumns& chosen)
{
    const TableHeader header = tableHeader(table);
    ColumnMeaning meaning;
    meaning.spacing = chosen.spacing > 0.0 ? chosen.spacing : spacingOf(header);
    if (chosen.any()) {
        meaning.unit = chosen.unit;
        return chosenMeaning(table, chosen, meaning);
    }
    if (auto wrong = chooseEnergy(header, meaning))
        return *wrong;
    if (chosen.unit != EnergyUnit::Unknown)
        meaning.unit = chosen.unit;
    if (!chooseValues(header, meaning))
        return QStringLiteral(
                   "no column is named mutrans, xmu, i0 with itrans, mufluor or norm; ") +
               needsColumns;
    return meaning;
}

#include "jobs/SpectrumKeys.h"

#include <cmath>

namespace
{

KeyReader::Handler columnNumber(KeyReader& reader, int& column)
{
    return [&reader, &column](const toml::node& node, const QString& key) {
        constexpr int64_t most = 1000;
        const auto number = node.value_exact<int64_t>();
        if (number && *number >= 1 && *number <= most)
            column = static_cast<int>(*number);
        else
            reader.fail(node, key,
                        QStringLiteral("must be the number of a column, 1 for the first"));
    };
}

KeyReader::Handler spacing(KeyReader& reader, double& value)
{
    return [&reader, &value](const toml::node& node, const QString& key) {
        const auto number = node.value<double>();
        if (number && node.is_number() && *number > 0.0 && std::isfinite(*number))
            value = *number;
        else
            reader.fail(node, key, QStringLiteral("must be a spacing in angstrom"));
    };
}

/// The keys that say how a file is read.
KeyReader::Keys sourceKeys(KeyReader& reader, SpectrumSource& source)
{
    ChosenColumns& columns = source.columns;
    return {{"format", reader.choice<FileKind>([&source](FileKind kind) { source.kind = kind; },
                                               {{"beamline", FileKind::Beamline},
                                                {"xdi", FileKind::Xdi},
                                                {"columns", FileKind::Columns}})},
            {"columns",
             {},
             {{"energy", columnNumber(reader, columns.energy)},
              {"mut", columnNumber(reader, columns.mut)},
              {"i0", columnNumber(reader, columns.i0)},
              {"i", columnNumber(reader, columns.i)}}},
            {"unit", reader.choice<EnergyUnit>([&columns](EnergyUnit u) { columns.unit = u; },
                                               {{"eV", EnergyUnit::ElectronVolt},
                                                {"keV", EnergyUnit::KiloElectronVolt},
                                                {"degrees", EnergyUnit::Degrees}})},
            {"d", spacing(reader, columns.spacing)}};
}

/// @param needed  the key that the table must have
void readSource(KeyReader& reader, const toml::table& table, const QString& key, const char* needed,
                const KeyReader::Handler& files, SpectrumSource& source)
{
    KeyReader::Keys keys = sourceKeys(reader, source);
    keys.insert(keys.begin(), {needed, files});
    reader.readTable(table, key, keys);
    if (!table.contains(needed))
        reader.fail(table, key, QStringLiteral("needs the key ") + QLatin1String(needed));
}

/// A file, or a table with it and how it is read.
KeyReader::Handler withSource(KeyReader& reader, const KeyReader::Handler& file,
                              SpectrumSource& source)
{
    return [&reader, file, &source](const toml::node& node, const QString& key) {
        if (const toml::table* table = node.as_table())
            readSource(reader, *table, key, "file", file, source);
        else
            file(node, key);
    };
}

} // namespace

KeyReader::Handler spectrumFile(KeyReader& reader, JobFilePath& file)
{
    return withSource(reader, reader.filePath(file), file.source);
}

KeyReader::Handler foilPattern(KeyReader& reader, JobFilePath& file)
{
    return withSource(reader, reader.text(file.path, file.place, "a pattern of files"),
                      file.source);
}

KeyReader::Handler targetFiles(KeyReader& reader, std::vector<JobFilePath>& files,
                               SpectrumSource& source)
{
    return [&reader, &files, &source](const toml::node& node, const QString& key) {
        const auto list = reader.texts(files, "a list of names and patterns of files", false);
        if (const toml::table* table = node.as_table())
            readSource(reader, *table, key, "files", list, source);
        else
            list(node, key);
    };
}

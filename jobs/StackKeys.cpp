#include "jobs/StackKeys.h"

#include "text/TextBytes.h"

#include <cmath>
#include <limits>

namespace
{

KeyReader::Handler real(KeyReader& reader, double& value)
{
    return [&reader, &value](const toml::node& node, const QString& key) {
        const auto number = node.value<double>();
        if (number && node.is_number() && std::isfinite(*number))
            value = *number;
        else
            reader.fail(node, key, QStringLiteral("must be a finite number"));
    };
}

KeyReader::Handler positive(KeyReader& reader, double& value)
{
    return [&reader, &value](const toml::node& node, const QString& key) {
        real(reader, value)(node, key);
        if (node.is_number() && value <= 0.0)
            reader.fail(node, key, QStringLiteral("must be above 0"));
    };
}

KeyReader::Handler pixels(KeyReader& reader, int& value, int least)
{
    return [&reader, &value, least](const toml::node& node, const QString& key) {
        const auto number = node.value_exact<int64_t>();
        if (number && *number >= least && *number <= std::numeric_limits<int>::max())
            value = static_cast<int>(*number);
        else
            reader.fail(node, key, QStringLiteral("must be a whole number from %1 on").arg(least));
    };
}

/// A file beside the job, or a path in an HDF5 file, which begins with a slash.
KeyReader::Handler place(KeyReader& reader, QString& path)
{
    return [&reader, &path](const toml::node& node, const QString& key) {
        const auto text = node.value_exact<std::string_view>();
        if (text && !text->empty())
            path = reader.inFolder(textFromUtf8(*text));
        else
            reader.fail(node, key,
                        QStringLiteral("must be a file, or a path in an HDF5 file, in quotation "
                                       "marks"));
    };
}

KeyReader::Handler dark(KeyReader& reader, StackSource& source)
{
    return [&reader, &source](const toml::node& node, const QString& key) {
        if (!node.is_number())
            return place(reader, source.dark)(node, key);
        double level = 0.0;
        real(reader, level)(node, key);
        source.darkLevel = level;
    };
}

KeyReader::Handler kind(KeyReader& reader, QString& value)
{
    const auto take = [&value](const char* name) { value = QLatin1String(name); };
    return reader.choice<const char*>(take, {{"fxi", "fxi"},
                                             {"exchange", "exchange"},
                                             {"mistral", "mistral"},
                                             {"nxdata", "nxdata"},
                                             {"tiff", "tiff"},
                                             {"img", "img"},
                                             {"his", "his"}});
}

KeyReader::Keys regionKeys(KeyReader& reader, Region& region)
{
    return {{"x", pixels(reader, region.x, 0)},
            {"y", pixels(reader, region.y, 0)},
            {"width", pixels(reader, region.width, 1)},
            {"height", pixels(reader, region.height, 1)}};
}

KeyReader::Handler region(KeyReader& reader, JobStack& stack)
{
    return [&reader, &stack](const toml::node& node, const QString& key) {
        stack.regionPlace = KeyReader::placeOf(node.source(), key);
        const toml::table* table = node.as_table();
        if (table == nullptr)
            return reader.fail(node, key, QStringLiteral("must be a table: [%1]").arg(key));
        reader.readTable(*table, key, regionKeys(reader, stack.region));
    };
}

} // namespace

KeyReader::Keys stackKeys(KeyReader& reader, JobStack& stack)
{
    StackSource& source = stack.source;
    return {{"kind", kind(reader, source.kind)},
            {"data", place(reader, source.data)},
            {"energies", place(reader, source.energies)},
            {"values", reader.choice<StackValues>([&source](StackValues v) { source.values = v; },
                                                  {{"mu-t", StackValues::MuT},
                                                   {"transmission", StackValues::Transmission},
                                                   {"counts", StackValues::Counts}})},
            {"flat", place(reader, source.flat)},
            {"dark", dark(reader, source)},
            {"reference", place(reader, source.reference)},
            {"pixel_size", positive(reader, source.pixelSize)},
            {"tilt_ev_per_row", real(reader, stack.tilt)},
            {"row0", real(reader, stack.row0)},
            {"shift", real(reader, source.shift)},
            {"region", region(reader, stack), regionKeys(reader, stack.region)}};
}

void checkStack(KeyReader& reader, const toml::table& table, const QString& key,
                const JobStack& stack)
{
    if (table.contains("region") && (stack.region.width == 0 || stack.region.height == 0))
        reader.fail(table, key, QStringLiteral("a region needs x, y, width and height"));
}

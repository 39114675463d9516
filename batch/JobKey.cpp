#include "batch/JobKey.h"

#include "text/Csv.h"

#include <QFileInfo>

#include <toml++/toml.h>

#include <algorithm>
#include <string_view>

namespace
{

using Names = std::vector<std::string_view>;

/// Tables at the job's root on which no figure of a target, or of a map, depends.
const Names ofNoTarget{"files", "histogram", "map", "output", "target"};
const Names ofNoMap{"files", "map", "output", "target"};

/// Keys of [output] on which no file of a map depends.
const Names ofNoMapFile{"folder"};

void append(const toml::node& node, QByteArray& text);

QByteArray withLength(std::string_view name)
{
    return QByteArray::number(static_cast<qlonglong>(name.size())) + ':' +
           QByteArray(name.data(), static_cast<int>(name.size()));
}

/// A table's keys are sorted as it is read.
void appendTable(const toml::table& table, const Names& without, QByteArray& text)
{
    text += '{';
    for (const auto& [key, node] : table)
        if (std::find(without.begin(), without.end(), key.str()) == without.end()) {
            text += withLength(key.str()) + '=';
            append(node, text);
        }
    text += '}';
}

void append(const toml::node& node, QByteArray& text)
{
    if (const toml::table* table = node.as_table())
        return appendTable(*table, {}, text);
    if (const toml::array* array = node.as_array()) {
        text += '[';
        for (const toml::node& item : *array)
            append(item, text);
        text += ']';
    } else if (const auto flag = node.value_exact<bool>()) {
        text += *flag ? 't' : 'f';
    } else if (const auto number = node.value<double>()) {
        text += csv::number(*number) + ';';
    } else if (const auto words = node.value_exact<std::string_view>()) {
        text += withLength(*words);
    }
}

/// How a stack is read, its files left aside.
QByteArray stackText(const JobStack& stack)
{
    const StackSource& source = stack.source;
    QByteArray text = source.kind.toUtf8() + ' ';
    for (const QString& place : {source.data, source.energies, source.flat, source.dark})
        text += withLength(QFileInfo(place).fileName().toStdString());
    for (const int number : {static_cast<int>(source.values), stack.region.x, stack.region.y,
                             stack.region.width, stack.region.height})
        text += QByteArray::number(number) + ' ';
    for (const double number :
         {source.darkLevel.value_or(0.0), source.pixelSize, source.shift, stack.tilt, stack.row0})
        text += csv::number(number) + ' ';
    return text + (source.darkLevel ? 'd' : '-');
}

/// How a spectrum is read, as numbers.
QByteArray sourceText(const SpectrumSource& source)
{
    const ChosenColumns& columns = source.columns;
    QByteArray text;
    for (const int number : {static_cast<int>(source.kind), columns.energy, columns.mut, columns.i0,
                             columns.i, static_cast<int>(columns.unit)})
        text += QByteArray::number(number) + ' ';
    return text + csv::number(columns.spacing);
}

toml::table parsed(const QByteArray& text)
{
    return toml::parse(std::string_view(text.constData(), static_cast<std::size_t>(text.size())));
}

Digest keyWith(const QByteArray& settings, const JobData& common)
{
    Hasher hasher;
    hasher.addText(programVersion());
    hasher.addText(settings);
    for (const std::optional<Digest>& digest : common.digests)
        hasher.addText(digest ? toBytes(*digest) : QByteArray());
    for (const SpectrumSource& source : common.readAs)
        hasher.addText(sourceText(source));
    if (common.alignment)
        for (const RecordedFile& file : common.alignment->inputs())
            hasher.addText(toBytes(file.digest));
    return hasher.digest();
}

QByteArray settingsOfMaps(const QByteArray& text)
{
    const toml::table job = parsed(text);
    QByteArray settings;
    appendTable(job, ofNoMap, settings);
    if (const toml::table* output = job["output"].as_table())
        appendTable(*output, ofNoMapFile, settings);
    return settings;
}

} // namespace

QByteArray programVersion()
{
    return DROVIK_VERSION;
}

QByteArray settingsOfTargets(const QByteArray& text)
{
    const toml::table job = parsed(text);
    QByteArray settings;
    appendTable(job, ofNoTarget, settings);
    if (job["output"]["pictures"].value_or(false))
        settings += "pictures" + withLength(job["output"]["language"].value_or("en"));
    return settings;
}

Digest keyOfTargets(const QByteArray& settings, const JobData& common)
{
    return keyWith(settings, common);
}

Digest keyOfMaps(const QByteArray& text, const JobData& common)
{
    return keyWith(settingsOfMaps(text), common);
}

bool haveSameSettings(const QByteArray& text, const QByteArray& other)
{
    return settingsOfTargets(text) == settingsOfTargets(other) &&
           settingsOfMaps(text) == settingsOfMaps(other);
}

Digest keyOfMap(const Digest& ofMaps, const MapJob& map,
                const std::vector<std::optional<Digest>>& images)
{
    Hasher hasher;
    hasher.add(toBytes(ofMaps));
    if (map.stack)
        hasher.addText(stackText(*map.stack));
    for (const std::optional<Digest>& image : images)
        hasher.addText(image ? toBytes(*image) : QByteArray());
    return hasher.digest();
}

Digest digestOfStack(const JobStack& stack)
{
    return digestOf(stackText(stack));
}

Digest keyOfTarget(const Digest& ofTargets, const Digest& input,
                   const std::vector<RecordedFile>& others)
{
    Hasher hasher;
    hasher.add(toBytes(ofTargets));
    hasher.add(toBytes(input));
    for (const RecordedFile& file : others)
        hasher.add(toBytes(file.digest));
    return hasher.digest();
}

#include "batch/JobKey.h"

#include "text/Csv.h"

#include <toml++/toml.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace
{

/// Tables at the job's root on which no figure of a target depends.
constexpr std::array<std::string_view, 4> ofNoTarget{"files", "histogram", "map", "output"};

void append(const toml::node& node, QByteArray& text);

QByteArray withLength(std::string_view name)
{
    return QByteArray::number(static_cast<qlonglong>(name.size())) + ':' +
           QByteArray(name.data(), static_cast<int>(name.size()));
}

/// A table's keys are sorted as it is read.
template <std::size_t N>
void appendTable(const toml::table& table, const std::array<std::string_view, N>& without,
                 QByteArray& text)
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
    constexpr std::array<std::string_view, 0> nothing{};
    if (const toml::table* table = node.as_table())
        return appendTable(*table, nothing, text);
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

} // namespace

QByteArray programVersion()
{
    return DROVIK_VERSION;
}

QByteArray settingsOfTargets(const QByteArray& text)
{
    const std::string_view toml(text.constData(), static_cast<std::size_t>(text.size()));
    QByteArray settings;
    appendTable(toml::parse(toml), ofNoTarget, settings);
    return settings;
}

Digest keyOfTargets(const QByteArray& settings, const JobData& common)
{
    Hasher hasher;
    hasher.addText(programVersion());
    hasher.addText(settings);
    for (const std::optional<Digest>& digest : common.digests)
        hasher.addText(digest ? toBytes(*digest) : QByteArray());
    return hasher.digest();
}

Digest keyOfTarget(const Digest& ofTargets, const Digest& target)
{
    Hasher hasher;
    hasher.add(toBytes(ofTargets));
    hasher.add(toBytes(target));
    return hasher.digest();
}

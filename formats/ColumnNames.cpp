#include "formats/ColumnNames.h"

#include "text/LineTokens.h"

#include <algorithm>
#include <charconv>

namespace
{

std::string lower(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c | 0x20);
    return result;
}

bool isLineOf(std::string_view text, char sign)
{
    constexpr std::size_t shortest = 3;
    return text.size() >= shortest &&
           std::all_of(text.begin(), text.end(), [sign](char c) { return c == sign; });
}

bool isFieldName(std::string_view name)
{
    return name.find('.') != std::string_view::npos &&
           std::none_of(name.begin(), name.end(), isBlank);
}

/// A name with a unit in brackets or behind a slash: "Energy(eV)", "mu(E)".
ColumnName splitName(std::string_view word)
{
    const std::size_t at = std::min(word.find_first_of("([/"), word.size());
    std::string_view unit = word.substr(std::min(at + 1, word.size()));
    while (!unit.empty() && (unit.back() == ')' || unit.back() == ']'))
        unit.remove_suffix(1);
    return {lower(word.substr(0, at)), lower(unit)};
}

/// "name unit || what it is".
ColumnName namedByField(std::string_view value)
{
    LineTokens tokens(value.substr(0, value.find("||")));
    const std::string_view name = tokens.next();
    ColumnName column = splitName(name);
    if (const std::string_view unit = tokens.next(); !unit.empty())
        column.unit = lower(unit);
    return column;
}

/// The words of a line that names columns.
std::vector<std::string_view> words(std::string_view line)
{
    std::vector<std::string_view> found;
    const auto parts = [](char c) { return isBlank(c) || c == ',' || c == ';'; };
    while (!line.empty()) {
        const auto* const end = std::find_if(line.begin(), line.end(), parts);
        const auto size = static_cast<std::size_t>(end - line.begin());
        if (size > 0)
            found.push_back(line.substr(0, size));
        line.remove_prefix(std::min(size + 1, line.size()));
    }
    return found;
}

/// The column's index in "column.3".
std::optional<std::size_t> columnOf(std::string_view field, std::size_t columns)
{
    constexpr std::string_view family = "column.";
    if (field.substr(0, family.size()) != family)
        return std::nullopt;
    field.remove_prefix(family.size());
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    const bool whole = error == std::errc() && end == field.data() + field.size();
    if (!whole || number < 1 || number > columns)
        return std::nullopt;
    return number - 1;
}

} // namespace

TableHeader tableHeader(const TextTable& table)
{
    TableHeader header;
    header.columns.resize(table.columns);
    for (const std::string& comment : table.comments) {
        if (isLineOf(comment, '/'))
            break;
        const std::size_t colon = comment.find(':');
        const std::string_view name = trimmed(std::string_view(comment).substr(0, colon));
        if (colon != std::string::npos && isFieldName(name))
            header.fields[lower(name)] = trimmed(std::string_view(comment).substr(colon + 1));
    }
    if (!table.comments.empty()) {
        const std::vector<std::string_view> last = words(table.comments.back());
        if (last.size() == table.columns)
            std::transform(last.begin(), last.end(), header.columns.begin(), splitName);
    }
    for (const auto& [field, value] : header.fields)
        if (const auto column = columnOf(field, table.columns))
            header.columns[*column] = namedByField(value);
    return header;
}

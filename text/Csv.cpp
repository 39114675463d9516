#include "text/Csv.h"

#include <array>
#include <charconv>
#include <cmath>

namespace
{

QByteArray quoted(QByteArray field)
{
    const bool plain = field.indexOf(',') < 0 && field.indexOf('"') < 0 &&
                       field.indexOf('\n') < 0 && field.indexOf('\r') < 0;
    return plain ? field : '"' + field.replace("\"", "\"\"") + '"';
}

} // namespace

QByteArray csv::line(const QByteArrayList& fields)
{
    QByteArray text;
    for (int i = 0; i < fields.size(); ++i)
        text += (i > 0 ? "," : "") + quoted(fields[i]);
    return text + "\r\n";
}

QByteArray csv::number(double value)
{
    if (std::isnan(value))
        return "nan";                   // whatever its sign
    constexpr std::size_t longest = 32; // "-2.2250738585072014e-308" has 24
    std::array<char, longest> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), static_cast<int>(end.ptr - text.data())};
}

QByteArray csv::number(const std::optional<double>& value)
{
    return value ? number(*value) : QByteArray();
}

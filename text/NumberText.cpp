#include "text/NumberText.h"

#include "text/NumberField.h"
#include "text/TextBytes.h"

#include <array>
#include <charconv>
#include <system_error>

std::optional<double> decimalFromToken(const char* first, const char* last)
{
    const bool plus = first != last && *first == '+';
    const char* const start = plus ? first + 1 : first;
    const char* const digits = !plus && start != last && *start == '-' ? start + 1 : start;
    // The letters of "nan" and "inf" stay out: the two conversions accept different spellings.
    if (digits == last || !((*digits >= '0' && *digits <= '9') || *digits == '.'))
        return std::nullopt;
    double value = 0.0;
    const auto [end, error] = std::from_chars(start, last, value);
    if (end != last || error != std::errc())
        return std::nullopt;
    return value;
}

double numberFromText(const QString& text)
{
    return text.toDouble();
}

QString textFromNumber(double value)
{
    return QString::number(value, 'g', 6);
}

double sixDigits(double value)
{
    std::array<char, longestNumber> text{};
    const char* const end = writeNumber(value, text.data());
    return numberFromToken({text.data(), static_cast<std::size_t>(end - text.data())});
}

double numberFromToken(std::string_view token)
{
    if (const auto value = decimalFromToken(token.data(), token.data() + token.size()))
        return *value;
    return numberFromText(textFromUtf8(token));
}

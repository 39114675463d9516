#pragma once

#include <QString>

#include <optional>
#include <string_view>

/// The one way from text to number: the toolkit's conversion of the whole text in the C locale,
/// whatever the user's locale is. Text that is not a number counts as 0.
double numberFromText(const QString& text);

/// The one way from number to text: general format, six significant digits.
QString textFromNumber(double value);

/// What is left of a number that was written and read again: six significant digits.
double sixDigits(double value);

/// As numberFromText for a token of UTF-8, without building a string where it is a plain decimal
/// number. Equal to numberFromText() of its text on every input.
double numberFromToken(std::string_view token);

/// Value of a token that is a decimal number in full and fits a double; nothing for any other, the
/// words for infinity and not-a-number among them.
std::optional<double> decimalFromToken(const char* first, const char* last);

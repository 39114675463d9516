#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

/// Comma-separated values by RFC 4180: fields with a comma, a quotation mark or a line end stand in
/// quotation marks, lines end with CR LF. UTF-8, numbers in the C locale.
namespace csv
{

/// A line of fields, with its end.
QByteArray line(const QByteArrayList& fields);

/// The shortest text that reads back as exactly this number; "nan", "inf" and "-inf" for what is
/// none.
QByteArray number(double value);

/// The same, empty for nothing.
QByteArray number(const std::optional<double>& value);

} // namespace csv

#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>
#include <vector>

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

/// A line, which may go over several of the text.
struct Record {
    int line; ///< of the text in which it begins, 1 for the first
    QByteArrayList fields;
};

/// The lines of a text, without those that are empty. Lines may end with LF alone; a mark of the
/// byte order is left out. Of a quotation mark without its other the field goes on to the end.
std::vector<Record> records(const QByteArray& text);

} // namespace csv

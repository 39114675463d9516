#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVector>

/// A plain reader of comma-separated values (RFC 4180), character by character.
namespace plainCsv
{

/// Lines of fields. A quotation mark that is not closed, or a line that does not end with CR LF,
/// ends the program.
inline QVector<QStringList> read(const QByteArray& bytes)
{
    QVector<QStringList> lines;
    QStringList fields;
    QByteArray field;
    bool quoted = false;
    for (int i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        const char next = i + 1 < bytes.size() ? bytes[i + 1] : '\0';
        if (quoted && c == '"' && next == '"') {
            field += '"';
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && c == ',') {
            fields << QString::fromUtf8(field);
            field.clear();
        } else if (!quoted && c == '\r' && next == '\n') {
            lines << (fields << QString::fromUtf8(field));
            fields.clear();
            field.clear();
            ++i;
        } else {
            field += c;
        }
    }
    if (quoted || !field.isEmpty() || !fields.isEmpty())
        qFatal("no comma-separated values");
    return lines;
}

/// The fields of a column that have something in them, below its title.
inline QStringList column(const QVector<QStringList>& lines, const QString& title)
{
    const int place = lines.value(0).indexOf(title);
    QStringList found;
    for (int i = 1; place >= 0 && i < lines.size(); ++i) {
        if (!lines[i].value(place).isEmpty())
            found << lines[i][place];
    }
    return found;
}

/// The same as numbers.
inline QVector<double> numbers(const QVector<QStringList>& lines, const QString& title)
{
    QVector<double> found;
    for (const QString& text : column(lines, title))
        found << text.toDouble();
    return found;
}

} // namespace plainCsv

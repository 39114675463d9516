#include "batch/RecordSql.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{

const QByteArray own = "run, key, input, good, seconds, messages, read_out, seal";

QByteArray quoted(const QByteArray& column)
{
    return '"' + column + '"';
}

QByteArray quoted(const QByteArrayList& columns)
{
    return '"' + columns.join("\", \"") + '"';
}

/// A column of figures has no type, so that SQLite changes none of them; what is no number in SQL
/// (NaN) stands there as a text.
QByteArray rowTable(const QByteArray& table, const QByteArrayList& columns)
{
    QByteArray text = "CREATE TABLE " + table +
                      "(run INTEGER NOT NULL REFERENCES run, key BLOB, input BLOB, "
                      "good INTEGER NOT NULL, seconds REAL, messages TEXT NOT NULL, read_out BLOB, "
                      "seal BLOB NOT NULL";
    for (const QByteArray& column : columns)
        text += ", " + quoted(column) + (recordSql::isText(column) ? " TEXT NOT NULL" : "");
    return text + ", PRIMARY KEY(" + quoted(columns.front()) + ")) WITHOUT ROWID;\n";
}

QByteArray select(const QByteArray& table, const QByteArrayList& columns)
{
    return "SELECT " + own + ", " + quoted(columns) + " FROM " + table;
}

QByteArray byName(const QByteArrayList& columns)
{
    return " WHERE " + quoted(columns.front()) + " = ?";
}

} // namespace

bool recordSql::isText(const QByteArray& column)
{
    constexpr std::array<std::string_view, 5> names{"target", "map", "method", "refusal",
                                                    "warnings"};
    return std::find(names.begin(), names.end(), column.constData()) != names.end();
}

QByteArray recordSql::create(const QByteArrayList& targetColumns, const QByteArrayList& mapColumns)
{
    return "PRAGMA application_id = " + QByteArray::number(applicationId) +
           ";\n"
           "PRAGMA user_version = " +
           QByteArray::number(layout) +
           ";\n"
           "CREATE TABLE job(id INTEGER PRIMARY KEY, sha256 BLOB NOT NULL UNIQUE, "
           "text BLOB NOT NULL);\n"
           "CREATE TABLE run(id INTEGER PRIMARY KEY, version TEXT NOT NULL, "
           "job INTEGER NOT NULL REFERENCES job, job_file TEXT NOT NULL, shard TEXT NOT NULL, "
           "began TEXT NOT NULL, seconds REAL);\n"
           "CREATE TABLE file(kind TEXT NOT NULL, owner TEXT NOT NULL, role TEXT NOT NULL, "
           "path TEXT NOT NULL, sha256 BLOB NOT NULL);\n"
           "CREATE INDEX file_of ON file(kind, owner);\n" +
           rowTable("target", targetColumns) + rowTable("map", mapColumns);
}

QByteArray recordSql::columnsOf(const QByteArray& table)
{
    return "PRAGMA table_info(" + table + ")";
}

QByteArray recordSql::putRow(const QByteArray& table, const QByteArrayList& columns)
{
    QByteArray places = "?";
    for (int i = 1; i < ownColumns + columns.size(); ++i)
        places += ", ?";
    return "INSERT OR REPLACE INTO " + table + "(" + own + ", " + quoted(columns) + ") VALUES(" +
           places + ")";
}

QByteArray recordSql::rowByName(const QByteArray& table, const QByteArrayList& columns)
{
    return select(table, columns) + byName(columns);
}

QByteArray recordSql::rowsByName(const QByteArray& table, const QByteArrayList& columns)
{
    return select(table, columns) + " ORDER BY " + quoted(columns.front());
}

QByteArray recordSql::keyByName(const QByteArray& table, const QByteArrayList& columns)
{
    return "SELECT key FROM " + table + byName(columns);
}

QByteArray recordSql::names(const QByteArray& table, const QByteArrayList& columns)
{
    return "SELECT " + quoted(columns.front()) + " FROM " + table + " ORDER BY " +
           quoted(columns.front());
}

QByteArray recordSql::dropRow(const QByteArray& table, const QByteArrayList& columns)
{
    return "DELETE FROM " + table + byName(columns);
}

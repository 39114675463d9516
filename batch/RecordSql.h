#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// The statements of the record, all of them. A table of rows ("target", "map") has the columns of
/// its CSV file under their names there, after those that the record needs itself.
namespace recordSql
{

/// Marks a database as a record of this program ("drvk"), and the layout of its tables.
constexpr int applicationId = 0x6472766b;
constexpr int layout = 1;

inline const char* const applicationIdOf = "PRAGMA application_id";
inline const char* const layoutOf = "PRAGMA user_version";
inline const char* const tableCount = "SELECT count(*) FROM sqlite_master";
inline const char* const check = "PRAGMA quick_check(1)";

/// All tables of a new record.
QByteArray create(const QByteArrayList& targetColumns, const QByteArrayList& mapColumns);

/// The names of a table's columns, in column 1.
QByteArray columnsOf(const QByteArray& table);

inline const char* const addJob = "INSERT OR IGNORE INTO job(sha256, text) VALUES(?, ?)";
inline const char* const addRun = "INSERT INTO run(version, job, job_file, shard, began) "
                                  "VALUES(?, (SELECT id FROM job WHERE sha256 = ?), ?, ?, ?)";
inline const char* const endRun = "UPDATE run SET seconds = ? WHERE id = ?";
inline const char* const run = "SELECT version, text, job_file, shard, began "
                               "FROM run JOIN job ON run.job = job.id WHERE run.id = ?";
inline const char* const lastRun = "SELECT max(id) FROM run";

inline const char* const addFile =
    "INSERT INTO file(kind, owner, role, path, sha256) VALUES(?, ?, ?, ?, ?)";
inline const char* const filesOf =
    "SELECT role, path, sha256 FROM file WHERE kind = ? AND owner = ? ORDER BY rowid";
inline const char* const dropFiles = "DELETE FROM file WHERE kind = ? AND owner = ?";

/// Columns and parameters of a row: run, key, input, good, seconds, messages, read_out, seal, then
/// the fields.
constexpr int ownColumns = 8;
QByteArray putRow(const QByteArray& table, const QByteArrayList& columns);
QByteArray rowByName(const QByteArray& table, const QByteArrayList& columns);
QByteArray rowsByName(const QByteArray& table, const QByteArrayList& columns); ///< all, sorted
QByteArray keyByName(const QByteArray& table, const QByteArrayList& columns);
QByteArray names(const QByteArray& table, const QByteArrayList& columns); ///< sorted by bytes
QByteArray dropRow(const QByteArray& table, const QByteArrayList& columns);

inline const char* const badRows = "SELECT (SELECT count(*) FROM target WHERE good = 0) + "
                                   "(SELECT count(*) FROM map WHERE good = 0)";

/// Whether a column holds words; the others hold figures.
bool isText(const QByteArray& column);

} // namespace recordSql

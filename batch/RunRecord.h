#pragma once

#include "batch/RecordFailure.h"
#include "batch/RecordedRow.h"
#include "batch/Sql.h"

#include <functional>

/// Of what a row is.
enum class RowKind { Target, Map };

/// The record of what a folder of results was calculated from, and of every figure: an SQLite
/// database. All that is derived (CSV, report) can be made again from it.
///
/// Rows keep each number exactly, and carry a seal, so that a damaged one is found out. One writer
/// at a time; others may read meanwhile. What fails is thrown as a RecordFailure; what was
/// committed stays whatever happens.
class RunRecord
{
public:
    using Access = SqlDatabase::Access;

    /// Opens a record, or begins one where there is no file and it is to be written. A file that is
    /// damaged, no record, or one of another layout is refused and stays as it is.
    RunRecord(const QString& path, Access access);

    const QString& path() const { return m_path; }

    /// What is written after this is kept by the next commit(), all of it or nothing. A new record
    /// has begun already, so that its file is made together with its first rows.
    void begin();
    void commit();
    /// Whether there is no record yet.
    bool isNew() const { return m_new; }

    /// @return its number
    std::int64_t beginRun(const RecordedRun& run);
    void endRun(std::int64_t run, double seconds);
    RecordedRun run(std::int64_t number);
    /// The latest, if there is one.
    std::optional<RecordedRun> lastRun();

    /// Takes the place of the row of this name.
    void put(RowKind kind, const RecordedRow& row);
    std::optional<RecordedRow> row(RowKind kind, const QByteArray& name);
    /// Nothing where there is no such row, or it is to be tried again.
    std::optional<Digest> key(RowKind kind, const QByteArray& name);
    /// The rows of `count` names in their order; `use` gets nothing where there is none. Names that
    /// are sorted by their bytes are the quickest.
    void forEach(RowKind kind, std::size_t count,
                 const std::function<QByteArray(std::size_t)>& nameOf,
                 const std::function<void(std::size_t, const std::optional<RecordedRow>&)>& use);
    QByteArrayList names(RowKind kind); ///< sorted by their bytes
    void drop(RowKind kind, const QByteArray& name);
    bool allGood(); ///< of all rows

    SqlDatabase& database() { return m_database; } ///< for other questions

private:
    struct Table {
        Table(SqlDatabase& database, const QByteArray& name, const QByteArrayList& columns);
        QByteArray name;
        QByteArrayList columns;
        SqlStatement putRow;
        SqlStatement rowByName;
        SqlStatement keyByName;
        SqlStatement dropRow;
    };

    void openOrBegin(Access access);
    void checkIsRecord();
    [[noreturn]] void refuse(const QString& reason) const;
    Table& table(RowKind kind) { return kind == RowKind::Target ? *m_targets : *m_maps; }
    RecordedRow rowOf(SqlStatement& statement, RowKind kind);
    void putFiles(const QByteArray& kind, const QByteArray& owner, const char* role,
                  const std::vector<RecordedFile>& files);
    void readFiles(const QByteArray& kind, const QByteArray& owner,
                   std::vector<RecordedFile>& inputs, std::vector<RecordedFile>& outputs);
    void dropFiles(const QByteArray& kind, const QByteArray& owner);

    QString m_path;
    SqlDatabase m_database;
    bool m_new = false;
    std::unique_ptr<SqlTransaction> m_transaction;
    std::unique_ptr<Table> m_targets;
    std::unique_ptr<Table> m_maps;
    std::unique_ptr<SqlStatement> m_addFile;
    std::unique_ptr<SqlStatement> m_filesOf;
    std::unique_ptr<SqlStatement> m_dropFiles;
};

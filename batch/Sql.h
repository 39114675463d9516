#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

/// An SQLite database. What fails is thrown as a RecordFailure with the file's name.
class SqlDatabase
{
public:
    enum class Access { Read, Write };

    /// A file that is not there is made if it is to be written.
    SqlDatabase(const QString& path, Access access);
    ~SqlDatabase();
    SqlDatabase(const SqlDatabase&) = delete;
    SqlDatabase& operator=(const SqlDatabase&) = delete;

    /// Runs statements without parameters and without results.
    void run(const char* statements);
    std::int64_t lastRow() const;
    int changes() const;

    /// Throws for what the database said last.
    [[noreturn]] void fail(int code) const;

private:
    friend class SqlStatement;

    QString m_path;
    sqlite3* m_database = nullptr;
};

/// A prepared statement. Parameters and columns are numbered from 0.
class SqlStatement
{
public:
    SqlStatement(SqlDatabase& database, const QByteArray& text);
    ~SqlStatement();
    SqlStatement(const SqlStatement&) = delete;
    SqlStatement& operator=(const SqlStatement&) = delete;

    void bindNothing(int parameter);
    void bind(int parameter, std::int64_t number);
    void bind(int parameter, double number);
    void bindText(int parameter, const QByteArray& text);
    void bindBytes(int parameter, const QByteArray& bytes);

    /// @return whether there is a row
    bool step();
    /// To its start; parameters stay.
    void reset();
    /// For a statement without rows.
    void runOnce();

    bool isNothing(int column) const;
    bool isReal(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    QByteArray bytes(int column) const; ///< of a text or a blob

private:
    SqlDatabase& m_database;
    sqlite3_stmt* m_statement = nullptr;
};

/// Undoes what was begun unless it is committed.
class SqlTransaction
{
public:
    explicit SqlTransaction(SqlDatabase& database);
    ~SqlTransaction();
    SqlTransaction(const SqlTransaction&) = delete;
    SqlTransaction& operator=(const SqlTransaction&) = delete;

    void commit();

private:
    SqlDatabase& m_database;
    bool m_open = true;
};

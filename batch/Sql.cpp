#include "batch/Sql.h"

#include "batch/RecordFailure.h"

#include <QFile>

#include <cerrno>
#include <sqlite3.h>

namespace
{

/// Somebody who looks into the record holds a writer up for so long at most, ms.
constexpr int patience = 30000;

/// Codes that say more about the file than about the disk.
bool isAboutTheFile(int code)
{
    switch (code & 0xff) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_ERROR: // a table or a column that is not there
    case SQLITE_SCHEMA:
    case SQLITE_BUSY:
        return true;
    default:
        return false;
    }
}

/// What the system said of the file; 0 if nothing is known.
int systemError(sqlite3* database)
{
    int error = sqlite3_system_errno(database);
    if (error == 0) // a commit keeps it with the file
        sqlite3_file_control(database, "main", SQLITE_FCNTL_LAST_ERRNO, &error);
    return error;
}

QString reasonOf(int code, sqlite3* database)
{
    switch (code & 0xff) {
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
        return QStringLiteral("the record is damaged; move it away to calculate all anew");
    case SQLITE_NOTADB:
        return QStringLiteral("is no record of a run; move it away to calculate all anew");
    case SQLITE_BUSY:
        return QStringLiteral("another program keeps it locked");
    case SQLITE_FULL:
        return QStringLiteral("the disk is full");
    default:
        break;
    }
    const int error = database != nullptr ? systemError(database) : 0;
    if (error != 0 && (code & 0xff) != SQLITE_ERROR)
        return qt_error_string(error);
    return QString::fromUtf8(database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code));
}

} // namespace

SqlDatabase::SqlDatabase(const QString& path, Access access) : m_path(path)
{
    const int flags =
        access == Access::Write ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
    const int code = sqlite3_open_v2(QFile::encodeName(path).constData(), &m_database,
                                     flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code == SQLITE_OK) {
        sqlite3_extended_result_codes(m_database, 1);
        sqlite3_busy_timeout(m_database, patience);
        return;
    }
    const RecordFailure failure(
        RecordFailure::Kind::Disk,
        QStringLiteral("cannot open %1: %2").arg(m_path, reasonOf(code, m_database)));
    sqlite3_close(m_database);
    throw failure;
}

SqlDatabase::~SqlDatabase()
{
    sqlite3_close(m_database);
}

void SqlDatabase::fail(int code) const
{
    const QString reason = reasonOf(code, m_database);
    if (isAboutTheFile(code))
        throw RecordFailure(RecordFailure::Kind::Refused,
                            QStringLiteral("%1: %2").arg(m_path, reason));
    throw RecordFailure(RecordFailure::Kind::Disk,
                        QStringLiteral("cannot write %1: %2").arg(m_path, reason));
}

void SqlDatabase::run(const char* statements)
{
    if (const int code = sqlite3_exec(m_database, statements, nullptr, nullptr, nullptr);
        code != SQLITE_OK)
        fail(code);
}

std::int64_t SqlDatabase::lastRow() const
{
    return sqlite3_last_insert_rowid(m_database);
}

int SqlDatabase::changes() const
{
    return sqlite3_changes(m_database);
}

SqlStatement::SqlStatement(SqlDatabase& database, const QByteArray& text) : m_database(database)
{
    if (const int code = sqlite3_prepare_v2(database.m_database, text.constData(), text.size(),
                                            &m_statement, nullptr);
        code != SQLITE_OK)
        database.fail(code);
}

SqlStatement::~SqlStatement()
{
    sqlite3_finalize(m_statement);
}

void SqlStatement::bindNothing(int parameter)
{
    sqlite3_bind_null(m_statement, parameter + 1);
}

void SqlStatement::bind(int parameter, std::int64_t number)
{
    sqlite3_bind_int64(m_statement, parameter + 1, number);
}

void SqlStatement::bind(int parameter, double number)
{
    sqlite3_bind_double(m_statement, parameter + 1, number);
}

void SqlStatement::bindText(int parameter, const QByteArray& text)
{
    sqlite3_bind_text(m_statement, parameter + 1, text.constData(), text.size(), SQLITE_TRANSIENT);
}

void SqlStatement::bindBytes(int parameter, const QByteArray& bytes)
{
    sqlite3_bind_blob(m_statement, parameter + 1, bytes.constData(), bytes.size(),
                      SQLITE_TRANSIENT);
}

bool SqlStatement::step()
{
    const int code = sqlite3_step(m_statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        m_database.fail(code);
    return code == SQLITE_ROW;
}

void SqlStatement::reset()
{
    sqlite3_reset(m_statement);
}

void SqlStatement::runOnce()
{
    step();
    reset();
}

bool SqlStatement::isNothing(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

bool SqlStatement::isReal(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_FLOAT;
}

std::int64_t SqlStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double SqlStatement::real(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

QByteArray SqlStatement::bytes(int column) const
{
    const void* const bytes = sqlite3_column_blob(m_statement, column);
    return {static_cast<const char*>(bytes), sqlite3_column_bytes(m_statement, column)};
}

SqlTransaction::SqlTransaction(SqlDatabase& database) : m_database(database)
{
    database.run("BEGIN IMMEDIATE");
}

SqlTransaction::~SqlTransaction()
{
    if (!m_open)
        return;
    try {
        m_database.run("ROLLBACK");
    } catch (const RecordFailure&) {
        // A failed statement may have ended it already.
    }
}

void SqlTransaction::commit()
{
    m_database.run("COMMIT");
    m_open = false;
}

#include "batch/RunRecord.h"

#include "batch/MapRow.h"
#include "batch/RecordSql.h"
#include "batch/TargetRow.h"
#include "text/Csv.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace
{

constexpr int sealBytes = 8;

QByteArrayList columnsOf(RowKind kind)
{
    return kind == RowKind::Target ? targetColumns() : mapColumns();
}

QByteArray nameOf(RowKind kind)
{
    return kind == RowKind::Target ? "target" : "map";
}

QByteArray bytesOf(const std::optional<Digest>& digest)
{
    return digest ? toBytes(*digest) : QByteArray();
}

/// A figure is a number in SQL where its text comes back from it, else it stays a text.
void bindFigure(SqlStatement& statement, int parameter, const QByteArray& text)
{
    double value = 0.0;
    const char* const end = text.constData() + text.size();
    const std::from_chars_result read = std::from_chars(text.constData(), end, value);
    if (text.isEmpty())
        statement.bindNothing(parameter);
    else if (read.ec == std::errc() && read.ptr == end && !std::isnan(value) &&
             csv::number(value) == text)
        statement.bind(parameter, value);
    else
        statement.bindText(parameter, text);
}

QByteArray figure(const SqlStatement& statement, int column)
{
    return statement.isReal(column) ? csv::number(statement.real(column)) : statement.bytes(column);
}

/// Of all that a row says.
QByteArray sealOf(const RecordedRow& row)
{
    Hasher hasher;
    hasher.addText(bytesOf(row.key));
    hasher.addText(bytesOf(row.input));
    hasher.addText(row.good ? "good" : "");
    hasher.addText(row.messages);
    hasher.addText(row.readOut);
    for (const QByteArray& field : row.fields)
        hasher.addText(field);
    return toBytes(hasher.digest()).left(sealBytes);
}

} // namespace

RunRecord::Table::Table(SqlDatabase& database, const QByteArray& table,
                        const QByteArrayList& allColumns)
    : name(table), columns(allColumns), putRow(database, recordSql::putRow(table, allColumns)),
      rowByName(database, recordSql::rowByName(table, allColumns)),
      keyByName(database, recordSql::keyByName(table, allColumns)),
      dropRow(database, recordSql::dropRow(table, allColumns))
{
}

RunRecord::RunRecord(const QString& path, Access access) : m_path(path), m_database(path, access)
{
    openOrBegin(access);
    for (auto [kind, table] :
         {std::pair(RowKind::Target, &m_targets), std::pair(RowKind::Map, &m_maps)})
        *table = std::make_unique<Table>(m_database, nameOf(kind), columnsOf(kind));
    m_addFile = std::make_unique<SqlStatement>(m_database, recordSql::addFile);
    m_filesOf = std::make_unique<SqlStatement>(m_database, recordSql::filesOf);
    m_dropFiles = std::make_unique<SqlStatement>(m_database, recordSql::dropFiles);
}

void RunRecord::refuse(const QString& reason) const
{
    throw RecordFailure(RecordFailure::Kind::Refused, m_path + QStringLiteral(": ") + reason);
}

/// A file without a table is one whose making was broken off.
void RunRecord::openOrBegin(Access access)
{
    SqlStatement tables(m_database, recordSql::tableCount);
    tables.step();
    const bool empty = tables.integer(0) == 0;
    tables.reset();
    if (!empty || access == Access::Read)
        return checkIsRecord();
    m_new = true;
    begin();
    m_database.run(recordSql::create(columnsOf(RowKind::Target), columnsOf(RowKind::Map)));
}

void RunRecord::begin()
{
    if (!m_transaction)
        m_transaction = std::make_unique<SqlTransaction>(m_database);
}

void RunRecord::commit()
{
    if (m_transaction)
        m_transaction->commit();
    m_transaction.reset();
    m_new = false;
}

void RunRecord::checkIsRecord()
{
    const auto number = [this](const char* text) {
        SqlStatement statement(m_database, text);
        statement.step();
        return statement.integer(0);
    };
    if (number(recordSql::applicationIdOf) != recordSql::applicationId)
        refuse(QStringLiteral("is no record of a run; move it away to calculate all anew"));
    bool same = number(recordSql::layoutOf) == recordSql::layout;
    for (const RowKind kind : {RowKind::Target, RowKind::Map}) {
        SqlStatement statement(m_database, recordSql::columnsOf(nameOf(kind)));
        QByteArrayList found;
        for (int i = 0; statement.step(); ++i)
            if (i >= recordSql::ownColumns)
                found += statement.bytes(1);
        same = same && found == columnsOf(kind);
    }
    if (!same)
        refuse(QStringLiteral("is of another version of the program; move it away to calculate "
                              "all anew"));
    SqlStatement check(m_database, recordSql::check);
    if (!check.step() || check.bytes(0) != "ok")
        refuse(QStringLiteral("the record is damaged; move it away to calculate all anew"));
}

std::int64_t RunRecord::beginRun(const RecordedRun& run)
{
    const QByteArray job = toBytes(digestOf(run.jobText));
    SqlStatement addJob(m_database, recordSql::addJob);
    addJob.bindBytes(0, job);
    addJob.bindBytes(1, run.jobText);
    addJob.runOnce();
    SqlStatement addRun(m_database, recordSql::addRun);
    addRun.bindText(0, run.version);
    addRun.bindBytes(1, job);
    addRun.bindText(2, run.jobFile);
    addRun.bindText(3, run.shard);
    addRun.bindText(4, run.began);
    addRun.runOnce();
    const std::int64_t number = m_database.lastRow();
    putFiles("run", QByteArray::number(static_cast<qlonglong>(number)), "input", run.inputs);
    return number;
}

void RunRecord::endRun(std::int64_t run, double seconds)
{
    SqlStatement statement(m_database, recordSql::endRun);
    statement.bind(0, seconds);
    statement.bind(1, run);
    statement.runOnce();
}

RecordedRun RunRecord::run(std::int64_t number)
{
    SqlStatement statement(m_database, recordSql::run);
    statement.bind(0, number);
    if (!statement.step())
        refuse(QStringLiteral("the record is damaged; move it away to calculate all anew"));
    RecordedRun run{statement.bytes(0), statement.bytes(1), statement.bytes(2),
                    statement.bytes(3), statement.bytes(4), {}};
    std::vector<RecordedFile> none;
    readFiles("run", QByteArray::number(static_cast<qlonglong>(number)), run.inputs, none);
    return run;
}

std::optional<RecordedRun> RunRecord::lastRun()
{
    SqlStatement statement(m_database, recordSql::lastRun);
    if (!statement.step() || statement.isNothing(0))
        return std::nullopt;
    return run(statement.integer(0));
}

void RunRecord::put(RowKind kind, const RecordedRow& row)
{
    SqlStatement& statement = table(kind).putRow;
    int parameter = 0;
    statement.bind(parameter++, row.run);
    for (const std::optional<Digest>* digest : {&row.key, &row.input}) {
        if (*digest)
            statement.bindBytes(parameter++, toBytes(**digest));
        else
            statement.bindNothing(parameter++);
    }
    statement.bind(parameter++, std::int64_t{row.good ? 1 : 0});
    statement.bind(parameter++, row.seconds);
    statement.bindText(parameter++, row.messages);
    statement.bindBytes(parameter++, row.readOut);
    statement.bindBytes(parameter++, sealOf(row));
    const QByteArrayList& columns = table(kind).columns;
    for (int i = 0; i < columns.size(); ++i, ++parameter) {
        if (recordSql::isText(columns[i]))
            statement.bindText(parameter, row.fields[i]);
        else
            bindFigure(statement, parameter, row.fields[i]);
    }
    statement.runOnce();
    dropFiles(nameOf(kind), row.name());
    putFiles(nameOf(kind), row.name(), "input", row.inputs);
    putFiles(nameOf(kind), row.name(), "output", row.outputs);
}

RecordedRow RunRecord::rowOf(SqlStatement& statement, RowKind kind)
{
    RecordedRow row;
    row.run = statement.integer(0);
    row.key = fromBytes(statement.bytes(1));
    row.input = fromBytes(statement.bytes(2));
    row.good = statement.integer(3) != 0;
    row.seconds = statement.real(4);
    row.messages = statement.bytes(5);
    row.readOut = statement.bytes(6);
    const QByteArray seal = statement.bytes(7);
    const QByteArrayList& columns = table(kind).columns;
    for (int i = 0; i < columns.size(); ++i)
        row.fields += recordSql::isText(columns[i]) ? statement.bytes(recordSql::ownColumns + i)
                                                    : figure(statement, recordSql::ownColumns + i);
    if (seal != sealOf(row))
        refuse(QStringLiteral("the row of %1 is damaged; move the record away to calculate all "
                              "anew")
                   .arg(QString::fromUtf8(row.name())));
    readFiles(nameOf(kind), row.name(), row.inputs, row.outputs);
    return row;
}

std::optional<RecordedRow> RunRecord::row(RowKind kind, const QByteArray& name)
{
    SqlStatement& statement = table(kind).rowByName;
    statement.bindText(0, name);
    std::optional<RecordedRow> found;
    if (statement.step())
        found = rowOf(statement, kind);
    statement.reset();
    return found;
}

std::optional<Digest> RunRecord::key(RowKind kind, const QByteArray& name)
{
    SqlStatement& statement = table(kind).keyByName;
    statement.bindText(0, name);
    std::optional<Digest> found;
    if (statement.step())
        found = fromBytes(statement.bytes(0));
    statement.reset();
    return found;
}

void RunRecord::forEach(
    RowKind kind, std::size_t count, const std::function<QByteArray(std::size_t)>& nameOf,
    const std::function<void(std::size_t, const std::optional<RecordedRow>&)>& use)
{
    const Table& source = table(kind);
    SqlStatement rows(m_database, recordSql::rowsByName(source.name, source.columns));
    const auto here = [&rows] { return rows.bytes(recordSql::ownColumns); };
    bool more = rows.step();
    for (std::size_t i = 0; i < count; ++i) {
        const QByteArray name = nameOf(i);
        while (more && here() < name)
            more = rows.step();
        use(i, more && here() == name ? rowOf(rows, kind) : row(kind, name));
    }
}

QByteArrayList RunRecord::names(RowKind kind)
{
    SqlStatement statement(m_database, recordSql::names(table(kind).name, table(kind).columns));
    QByteArrayList found;
    while (statement.step())
        found += statement.bytes(0);
    return found;
}

void RunRecord::drop(RowKind kind, const QByteArray& name)
{
    SqlStatement& statement = table(kind).dropRow;
    statement.bindText(0, name);
    statement.runOnce();
    dropFiles(nameOf(kind), name);
}

bool RunRecord::allGood()
{
    SqlStatement statement(m_database, recordSql::badRows);
    statement.step();
    return statement.integer(0) == 0;
}

void RunRecord::putFiles(const QByteArray& kind, const QByteArray& owner, const char* role,
                         const std::vector<RecordedFile>& files)
{
    for (const RecordedFile& file : files) {
        m_addFile->bindText(0, kind);
        m_addFile->bindText(1, owner);
        m_addFile->bindText(2, role);
        m_addFile->bindText(3, file.path);
        m_addFile->bindBytes(4, toBytes(file.digest));
        m_addFile->runOnce();
    }
}

void RunRecord::readFiles(const QByteArray& kind, const QByteArray& owner,
                          std::vector<RecordedFile>& inputs, std::vector<RecordedFile>& outputs)
{
    m_filesOf->bindText(0, kind);
    m_filesOf->bindText(1, owner);
    while (m_filesOf->step()) {
        auto& files = m_filesOf->bytes(0) == "input" ? inputs : outputs;
        files.push_back({m_filesOf->bytes(1), fromBytes(m_filesOf->bytes(2)).value_or(Digest())});
    }
    m_filesOf->reset();
}

void RunRecord::dropFiles(const QByteArray& kind, const QByteArray& owner)
{
    m_dropFiles->bindText(0, kind);
    m_dropFiles->bindText(1, owner);
    m_dropFiles->runOnce();
}

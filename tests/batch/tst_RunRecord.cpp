#include "batch/RecordWriter.h"
#include "batch/RunRecord.h"
#include "batch/TargetRow.h"
#include "tests/support/Files.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sqlite3.h>

namespace
{

/// A row whose first figure is this text.
RecordedRow rowWith(const QByteArray& name, const QByteArray& a)
{
    RecordedRow row;
    row.key = digestOf(name);
    row.input = digestOf(a);
    row.good = true;
    row.seconds = 0.25;
    row.fields = targetColumns();
    for (QByteArray& field : row.fields)
        field.clear();
    row.fields[0] = name;
    row.fields[1] = "4ps";
    row.fields[2] = a;
    return row;
}

/// Statements of somebody else.
void change(const QString& path, const QByteArray& statements)
{
    sqlite3* database = nullptr;
    if (sqlite3_open(path.toUtf8().constData(), &database) != SQLITE_OK ||
        sqlite3_exec(database, statements.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("%s", sqlite3_errmsg(database));
    sqlite3_close(database);
}

QString whyRefused(const QString& path)
{
    try {
        RunRecord record(path, RunRecord::Access::Write);
        record.forEach(
            RowKind::Target, 1, [](std::size_t) { return QByteArray("x"); },
            [](std::size_t, const std::optional<RecordedRow>&) {});
        return {};
    } catch (const RecordFailure& failure) {
        return failure.kind() == RecordFailure::Kind::Refused
                   ? failure.reason()
                   : QStringLiteral("of the disk: ") + failure.reason();
    }
}

} // namespace

/// The record of a run: what it keeps, and what it refuses to be.
class tst_RunRecord : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void figuresComeBackExactly_data();
    void figuresComeBackExactly();
    void numbersAreNumbersInSql();
    void rowsComeInTheOrderAsked();
    void runsAreKept();
    void filesOfAMap();
    void aRowTakesAnothersPlace();
    void writerWritesAll();
    void runWithoutRows();
    void brokenOffBeginning();
    void foreign_data();
    void foreign();
    void damagedRow();
    void damagedPage();
    void otherLayout();

private:
    QString path() const { return m_folder->filePath(QStringLiteral("run.sqlite")); }
    void begin() const
    {
        RunRecord record(path(), RunRecord::Access::Write);
        record.commit();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_RunRecord::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_RunRecord::figuresComeBackExactly_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"", "0", "-0", "1", "-1", "0.1", "2.6408855749259335", "5e-324",
                             "1.7976931348623157e+308", "2.2250738585072014e-308", "inf", "-inf",
                             "nan", "1e+22", "9007199254740993", "not a number", "1e5", " 1"})
        QTest::newRow(text) << QByteArray(text);
}

void tst_RunRecord::figuresComeBackExactly()
{
    QFETCH(QByteArray, text);
    {
        RunRecord record(path(), RunRecord::Access::Write);
        record.put(RowKind::Target, rowWith("x", text));
        record.commit();
    }
    RunRecord record(path(), RunRecord::Access::Read);
    const auto row = record.row(RowKind::Target, "x");
    QVERIFY(row);
    QCOMPARE(row->fields, rowWith("x", text).fields);
    QVERIFY(row->key == digestOf("x"));
    QVERIFY(row->input == digestOf(text));
    QVERIFY(row->good);
    QCOMPARE(row->seconds, 0.25);
    QVERIFY(record.key(RowKind::Target, "x") == digestOf("x"));
    QVERIFY(!record.key(RowKind::Target, "y"));
    QVERIFY(!record.row(RowKind::Map, "x"));
}

void tst_RunRecord::numbersAreNumbersInSql()
{
    RunRecord record(path(), RunRecord::Access::Write);
    for (const char* a : {"0.5", "1", "nan"})
        record.put(RowKind::Target, rowWith(a, a));
    SqlStatement larger(record.database(), "SELECT count(*) FROM target WHERE a < 0.75");
    QVERIFY(larger.step());
    QCOMPARE(larger.integer(0), std::int64_t{1});
}

void tst_RunRecord::rowsComeInTheOrderAsked()
{
    RunRecord record(path(), RunRecord::Access::Write);
    for (const char* name : {"b", "a", "\xe9\x89\x84", "c", "B"})
        record.put(RowKind::Target, rowWith(name, "1"));
    QCOMPARE(record.names(RowKind::Target), QByteArrayList({"B", "a", "b", "c", "\xe9\x89\x84"}));
    record.drop(RowKind::Target, "B");
    const QByteArrayList asked{"c", "a", "none", "b", "b", "\xe9\x89\x84", "B", "a"};
    QByteArrayList found;
    record.forEach(
        RowKind::Target, static_cast<std::size_t>(asked.size()),
        [&](std::size_t i) { return asked[static_cast<int>(i)]; },
        [&](std::size_t i, const std::optional<RecordedRow>& row) {
            QCOMPARE(i, static_cast<std::size_t>(found.size()));
            found += row ? row->name() : "nothing";
        });
    QCOMPARE(found,
             QByteArrayList({"c", "a", "nothing", "b", "b", "\xe9\x89\x84", "nothing", "a"}));
}

void tst_RunRecord::runsAreKept()
{
    const RecordedRun first{"1.0",
                            "[files]\n",
                            "../job.toml",
                            "",
                            "2026-11-22T03:00:00Z",
                            {{"ref1.dat", digestOf("1")}, {"ref2.dat", digestOf("2")}}};
    const RecordedRun second{"1.1", "[files]\n", "../job.toml", "2/8", "2026-11-22T04:00:00Z", {}};
    {
        RunRecord record(path(), RunRecord::Access::Write);
        QVERIFY(!record.lastRun());
        QCOMPARE(record.beginRun(first), std::int64_t{1});
        QCOMPARE(record.beginRun(second), std::int64_t{2});
        record.endRun(1, 12.5);
        record.commit();
    }
    RunRecord record(path(), RunRecord::Access::Read);
    const auto last = record.lastRun();
    QVERIFY(last);
    QCOMPARE(last->version, second.version);
    QCOMPARE(last->jobText, second.jobText);
    QCOMPARE(last->jobFile, second.jobFile);
    QCOMPARE(last->shard, second.shard);
    QCOMPARE(last->began, second.began);
    QVERIFY(last->inputs.empty());
    const RecordedRun found = record.run(1);
    QCOMPARE(found.version, first.version);
    QCOMPARE(found.inputs.size(), std::size_t{2});
    QCOMPARE(found.inputs[1].path, QByteArray("ref2.dat"));
    QVERIFY(found.inputs[1].digest == digestOf("2"));
    SqlStatement jobs(record.database(), "SELECT count(*), sum(seconds) FROM job, run");
    QVERIFY(jobs.step());
    QCOMPARE(jobs.integer(0), std::int64_t{2}); // one text for both runs
    QCOMPARE(jobs.real(1), 12.5);
}

void tst_RunRecord::filesOfAMap()
{
    RunRecord record(path(), RunRecord::Access::Write);
    RecordedRow row;
    row.fields = QByteArray("area,4ps,2,1,2,0,2.5,2.5,0,1,1,0,0,0,0.1,0.2,0.3,0.4,0,").split(',');
    row.readOut = QByteArray("\0\1\2", 3);
    row.inputs = {{"m1.txt", digestOf("1")}, {"m2.txt", digestOf("2")}};
    row.outputs = {{"maps/area/area.dat", digestOf("3")}};
    record.put(RowKind::Map, row);
    record.put(RowKind::Map, row);
    const auto found = record.row(RowKind::Map, "area");
    QVERIFY(found);
    QCOMPARE(found->fields, row.fields);
    QCOMPARE(found->readOut, row.readOut);
    QCOMPARE(found->inputs.size(), std::size_t{2});
    QCOMPARE(found->inputs[1].path, QByteArray("m2.txt"));
    QCOMPARE(found->outputs.size(), std::size_t{1});
    QVERIFY(found->outputs[0].digest == digestOf("3"));
    record.drop(RowKind::Map, "area");
    QVERIFY(!record.row(RowKind::Map, "area"));
    SqlStatement files(record.database(), "SELECT count(*) FROM file");
    QVERIFY(files.step());
    QCOMPARE(files.integer(0), std::int64_t{0});
}

void tst_RunRecord::aRowTakesAnothersPlace()
{
    RunRecord record(path(), RunRecord::Access::Write);
    record.put(RowKind::Target, rowWith("x", "1"));
    RecordedRow unread = rowWith("x", "2");
    unread.key = std::nullopt;
    record.put(RowKind::Target, unread);
    QCOMPARE(record.row(RowKind::Target, "x")->fields[2], QByteArray("2"));
    QVERIFY(!record.key(RowKind::Target, "x")); // to be tried again
}

void tst_RunRecord::writerWritesAll()
{
    const RecordedRun run{"1.0", "", "job.toml", "", "2026-11-22T03:00:00Z", {}};
    {
        RunRecord record(path(), RunRecord::Access::Write);
        RecordWriter writer(record, run);
        for (int i = 0; i < 10000; ++i)
            QVERIFY(writer.put(RowKind::Target, rowWith(QByteArray::number(i), "1")));
        QVERIFY(!writer.finish());
    }
    RunRecord record(path(), RunRecord::Access::Write);
    QCOMPARE(record.names(RowKind::Target).size(), 10000);
    QCOMPARE(record.row(RowKind::Target, "9999")->run, std::int64_t{1});
    SqlStatement ended(record.database(), "SELECT count(*) FROM run WHERE seconds > 0");
    QVERIFY(ended.step());
    QCOMPARE(ended.integer(0), std::int64_t{1});
}

// Nothing to do is no reason to write.
void tst_RunRecord::runWithoutRows()
{
    const RecordedRun run{"1.0", "", "job.toml", "", "2026-11-22T03:00:00Z", {}};
    for (int i = 0; i < 2; ++i) {
        RunRecord record(path(), RunRecord::Access::Write);
        RecordWriter writer(record, run);
        QVERIFY(!writer.finish());
    }
    RunRecord record(path(), RunRecord::Access::Read);
    SqlStatement runs(record.database(), "SELECT count(*) FROM run");
    QVERIFY(runs.step());
    QCOMPARE(runs.integer(0), std::int64_t{1}); // of the new record
}

// Killed between the making of the file and the first commit.
void tst_RunRecord::brokenOffBeginning()
{
    create(path(), {});
    QCOMPARE(whyRefused(path()), QString());
    RunRecord record(path(), RunRecord::Access::Write);
    QVERIFY(!record.lastRun());
}

void tst_RunRecord::foreign_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("a text") << QByteArray("valence,a\r\n");
    QTest::newRow("a long text") << QByteArray(100000, 'x');
    QTest::newRow("another database") << QByteArray();
}

void tst_RunRecord::foreign()
{
    QFETCH(QByteArray, bytes);
    if (bytes.isEmpty())
        change(path(), "CREATE TABLE target(a); INSERT INTO target VALUES(1)");
    else
        create(path(), bytes);
    const QByteArray before = contents(path());
    QCOMPARE(whyRefused(path()),
             path() +
                 QStringLiteral(": is no record of a run; move it away to calculate all anew"));
    QCOMPARE(contents(path()), before);
}

void tst_RunRecord::damagedRow()
{
    {
        RunRecord record(path(), RunRecord::Access::Write);
        record.put(RowKind::Target, rowWith("x", "0.5"));
        record.commit();
    }
    QCOMPARE(whyRefused(path()), QString());
    change(path(), "UPDATE target SET valence = 2.5");
    QCOMPARE(whyRefused(path()),
             path() + QStringLiteral(": the row of x is damaged; move the record away to "
                                     "calculate all anew"));
}

void tst_RunRecord::damagedPage()
{
    {
        RunRecord record(path(), RunRecord::Access::Write);
        for (int i = 0; i < 1000; ++i)
            record.put(RowKind::Target, rowWith(QByteArray::number(i), "0.5"));
        record.commit();
    }
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadWrite) && file.size() > 40000);
    QVERIFY(file.seek(file.size() / 2) && file.write(QByteArray(8192, '\x55')) == 8192);
    file.close();
    const QByteArray before = contents(path());
    QCOMPARE(whyRefused(path()),
             path() +
                 QStringLiteral(": the record is damaged; move it away to calculate all anew"));
    QCOMPARE(contents(path()), before);
}

void tst_RunRecord::otherLayout()
{
    begin();
    change(path(), "ALTER TABLE target ADD COLUMN uncertainty");
    const QString other = path() + QStringLiteral(": is of another version of the program; move "
                                                  "it away to calculate all anew");
    QCOMPARE(whyRefused(path()), other);
    QVERIFY(QFile::remove(path()));
    begin();
    change(path(), "PRAGMA user_version = 99");
    QCOMPARE(whyRefused(path()), other);
}

QTEST_GUILESS_MAIN(tst_RunRecord)
#include "tst_RunRecord.moc"

#include "tests/fuzz/ReaderChecks.h"
#include "tests/hostile/HostileFiles.h"
#include "tests/model/PanelSession.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/MapReader.h"
#include "tests/support/Files.h"
#include "tests/support/PanelActions.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

namespace
{

constexpr int megabyte = 1 << 20;

QByteArray header(const QByteArray& columns, const QByteArray& rows)
{
    return "# AXIS 0 x mm 0 1 " + columns + "\n# AXIS 1 y mm 0 1 " + rows + "\n";
}

} // namespace

/// Files of 2D data that nobody should give to the program.
class tst_HostileMaps : public QObject
{
    Q_OBJECT
private slots:
    void unreadableFilesKeepTheRecords();
    void axisSizes_data();
    void axisSizes();
    void histogramBoxes_data();
    void histogramBoxes();
    void longLines_data();
    void longLines();
    void manyHeaderLines();
    void brokenOffAnywhere();
    void changedWhileBeingRead_data();
    void changedWhileBeingRead();

private:
    QTemporaryDir m_dir;
};

void tst_HostileMaps::unreadableFilesKeepTheRecords()
{
    const QTemporaryDir folder;
    const QTemporaryDir odd;
    PanelSession session(1, folder.path(), false);
    const QStringList paths = hostile::unreadable(odd.path());
    const hostile::PlainUser plainUser;
    AEPoint* point = session.panel().ePoints.at(2);
    for (const QString& path : paths) {
        const int lines = user::messages(session.panel()).size();
        const std::size_t records = point->mapData().mut.size();
        QVERIFY(records > 0);
        user::drop(point->MapFile, path);
        QVERIFY2(!point->mapData().valid, qPrintable(path));
        QCOMPARE(point->mapData().mut.size(), records);
        QCOMPARE(user::messages(session.panel()).size(), lines);
    }
}

void tst_HostileMaps::axisSizes_data()
{
    QTest::addColumn<QByteArray>("columns");
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QString>("line");
    const QString invalid = QStringLiteral("V Point is not selected");
    const QString tooLarge = QStringLiteral("The map is too large.");
    for (const char* size :
         {"0", "-1", "-2147483648", "2147483648", "99999999999999999999", "x", "3.0", "nan"}) {
        QTest::addRow("%s columns", size) << QByteArray(size) << QByteArray("3") << invalid;
        QTest::addRow("%s rows", size) << QByteArray("3") << QByteArray(size) << invalid;
    }
    const QByteArray largest = "2147483647";
    QTest::newRow("largest columns") << largest << QByteArray("1") << tooLarge;
    QTest::newRow("largest rows") << QByteArray("1") << largest << tooLarge;
    QTest::newRow("largest both") << largest << largest << tooLarge;
    QTest::newRow("product of 2^32") << QByteArray("65536") << QByteArray("65536") << tooLarge;
    QTest::newRow("much more than measured")
        << QByteArray("30000") << QByteArray("3000") << tooLarge;
}

/// The size stands in the file, whatever was measured: no memory is taken for it on trust.
void tst_HostileMaps::axisSizes()
{
    QFETCH(QByteArray, columns);
    QFETCH(QByteArray, rows);
    QFETCH(QString, line);
    const QTemporaryDir folder;
    PanelSession session(2, folder.path(), false);
    FourPs& panel = session.panel();
    const QString result = folder.filePath(QStringLiteral("out/result.dat"));
    QVERIFY(session.type(QStringLiteral("SaveFSelect"), result));
    QVERIFY2(session.push(QStringLiteral("WriteB")), qPrintable(session.report()));
    const QByteArray before = contents(result);
    QVERIFY(before.size() > 100);

    const QString path = hostile::write(m_dir.filePath(QStringLiteral("axes")),
                                        header(columns, rows) + "0 0 0.5\n1 0 0.6\n");
    const hostile::MemoryWatch memory;
    user::drop(panel.ePoints.at(2)->MapFile, path);
    const int lines = user::messages(panel).size();
    user::click(panel.WriteB);
    QCOMPARE(user::messagesSince(panel, lines), QStringList({line}));
    // The results of before are still there and written again.
    QCOMPARE(contents(result), before);
    QVERIFY(hostile::memoryIsPadded() || memory.growth() < 64 * megabyte);
}

void tst_HostileMaps::histogramBoxes_data()
{
    QTest::addColumn<QString>("boxes");
    QTest::addColumn<bool>("refused");
    for (const char* boxes : {"0", "1", "-5", "nan", "", "text", "-1e308", "0.9", "1e-300"})
        QTest::newRow(boxes) << QString::fromLatin1(boxes) << false;
    for (const char* boxes : {"1e9", "inf", "1e308", "2147483648", "1e999"})
        QTest::newRow(boxes) << QString::fromLatin1(boxes) << true;
}

void tst_HostileMaps::histogramBoxes()
{
    QFETCH(QString, boxes);
    QFETCH(bool, refused);
    const QTemporaryDir folder;
    PanelSession session(3, folder.path(), false);
    FourPs& panel = session.panel();
    panel.displays->show();
    hostile::write(folder.filePath(QStringLiteral("out/result_HGAlpha.dat")), "earlier");
    QVERIFY(session.type(QStringLiteral("SaveFSelect"),
                         folder.filePath(QStringLiteral("out/result.dat"))));
    QVERIFY2(session.push(QStringLiteral("WriteB")), qPrintable(session.report()));
    const QString file = folder.filePath(QStringLiteral("out/result_HGAlpha.dat"));
    const QByteArray before = contents(file);
    QCOMPARE(before.count('\n'), 43);

    const hostile::MemoryWatch memory;
    QVERIFY(session.type(QStringLiteral("HgABoxes"), boxes));
    if (refused) {
        const int lines = user::messages(panel).size();
        user::click(panel.WriteB);
        QCOMPARE(user::messagesSince(panel, lines),
                 QStringList({QStringLiteral("The number of histogram boxes is too large.")}));
        QCOMPARE(contents(file), before);
    } else {
        QVERIFY2(session.push(QStringLiteral("WriteB")), qPrintable(session.report()));
        QVERIFY(contents(file) != before);
    }
    panel.displays->grab();
    QVERIFY(hostile::memoryIsPadded() || memory.growth() < 64 * megabyte);
}

void tst_HostileMaps::longLines_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("block");
    const QByteArray axes = header("1", "1");
    QTest::newRow("NUL bytes") << QByteArray() << QByteArray(1024, '\0');
    QTest::newRow("one token") << QByteArray() << QByteArray("x");
    QTest::newRow("one number") << axes + "0 0 0." << QByteArray("1234567890");
    QTest::newRow("many tokens") << axes + "0 0 5 6" << QByteArray(" 17");
    QTest::newRow("blanks") << axes + "0 0 5" << QByteArray(" ");
    QTest::newRow("no blanks of ASCII") << axes + "0 0 5" << QByteArray("\xc2\xa0\xe3\x80\x80x");
    QTest::newRow("returns") << axes + "0 0 5" << QByteArray("\r");
    QTest::newRow("not UTF-8") << axes + "0 0 5" << QByteArray(" \xff");
}

/// A line of a megabyte is read as any other; with a much longer one the file is refused.
void tst_HostileMaps::longLines()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, block);
    const QString path = m_dir.filePath(QStringLiteral("long"));
    const char* difference =
        check::mapDifference(head + block.repeated(megabyte / block.size()), 0);
    QVERIFY2(!difference, difference);

    hostile::writeLong(path, head, block, qint64{64} * megabyte * hostile::scale());
    AEPoint point;
    QSignalSpy refused(&point, &AEPoint::refusedData);
    const hostile::MemoryWatch memory;
    QElapsedTimer clock;
    clock.start();
    point.loadData(path);
    const qint64 took = clock.elapsed();
    qInfo("%lld MB in %lld ms with %lld kB", 64LL * hostile::scale(), took, memory.growth() / 1024);
    QFile::remove(path);
    QVERIFY(!point.mapData().valid);
    QCOMPARE(refused.count(), 1);
    QCOMPARE(refused.first().first().toString(),
             QStringLiteral("The 2D data file [%1] is too large.").arg(path));
    QVERIFY(hostile::memoryIsPadded() || memory.growth() < 64 * megabyte);
    QVERIFY2(took < hostile::patienceMs(), qPrintable(QString::number(took)));
}

void tst_HostileMaps::manyHeaderLines()
{
    // Every header line is kept; they are the data here.
    const QString path = hostile::writeLong(m_dir.filePath(QStringLiteral("headers")), {},
                                            "# ENERGY = 8390 eV\n", 2 * megabyte);
    QTemporaryDir folder;
    PanelSession session(4, folder.path(), false);
    AEPoint* point = session.panel().ePoints.at(0);
    user::drop(point->MapFile, path);
    QVERIFY(point->mapData().header.size() > 100000);
    QCOMPARE(point->Energy->text(), QStringLiteral("8390"));
}

void tst_HostileMaps::brokenOffAnywhere()
{
    QByteArray text = "# d\xc3\xa9j\xc3\xa0  vu\n" + header("3", "2") + "# ENERGY = 8390 eV\r\n";
    for (int i = 0; i < 6; ++i)
        text += QByteArray::number(i % 3) + " 1e-1 " + QByteArray::number(0.5 + 0.1 * i) + " 2\r\n";
    for (int size = 0; size <= text.size(); ++size) {
        const char* difference = check::mapDifference(text.left(size), size % 2 == 0 ? 0 : 20);
        QVERIFY2(!difference, difference);
    }
}

void tst_HostileMaps::changedWhileBeingRead_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("vanishes") << -1;
    QTest::newRow("becomes empty") << 0;
    QTest::newRow("shrinks") << 1000;
}

void tst_HostileMaps::changedWhileBeingRead()
{
    QFETCH(int, size);
    constexpr int records = 200000;
    const QByteArray record = "12 34 0.5 1\n";
    const QString path = hostile::write(m_dir.filePath(QStringLiteral("changing")),
                                        header("500", "400") + record.repeated(records));
    MapReadOptions options;
    options.chunkBytes = 10000;
    bool changed = false;
    options.progress = [&](double) {
        if (!changed)
            QVERIFY(size < 0 ? QFile::remove(path) : QFile::resize(path, size));
        changed = true;
    };
    MapData data;
    Workers alone(1);
    const MapReadResult result = readMapData(path, data, options, alone);
    QVERIFY(changed);
    // A vanished file stays readable while it is open; of the others nothing is kept.
    QCOMPARE(result.outcome, size < 0 ? ReadOutcome::Read : ReadOutcome::Unreadable);
    QCOMPARE(data.mut.size(), static_cast<std::size_t>(size < 0 ? records : 0));
    for (std::size_t i = 0; i + 1 < data.mut.size(); ++i)
        QVERIFY(data.mut[i] == data.mut[0]);
}

QTEST_MAIN(tst_HostileMaps)
#include "tst_HostileMaps.moc"

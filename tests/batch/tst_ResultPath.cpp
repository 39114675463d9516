#include "batch/ResultPath.h"
#include "tests/support/Files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class tst_ResultPath : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void free_data();
    void free();
    void nothingReadIsWritten_data();
    void nothingReadIsWritten();
    void cannotBeWritten_data();
    void cannotBeWritten();
    void onlyWhereThereIsAMap();
    void checkingWritesNothing();

private:
    QString in(const QString& name) const { return m_dir->filePath(name); }
    QByteArray native(const char* name) const
    {
        return QFile::encodeName(in(QString::fromLatin1(name)));
    }
    void put(const QString& name) const { create(in(name), "data"); }
    /// A job that reads a file of every kind and writes a map.
    Job job(const QString& result) const;
    QString reason(const QString& result) const
    {
        const auto error = checkResultPath(job(result), in(QStringLiteral("job.toml")));
        if (error && error->place.line != 7)
            return QStringLiteral("the line is wrong");
        return error ? QString(error->reason).replace(m_dir->path(), QStringLiteral("DIR"))
                     : QString();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ResultPath::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    for (const char* const name : {"job.toml", "ref1.dat", "ref2.dat", "target.dat", "blank.dat",
                                   "map.dat", "free.dat", "free_HGAlpha.dat"})
        put(QString::fromLatin1(name));
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("deep")));
    QCOMPARE(symlink("../ref1.dat", native("deep/link.dat").constData()), 0);
    QCOMPARE(::link(native("blank.dat").constData(), native("deep/hard.dat").constData()), 0);
    QCOMPARE(symlink("deep", native("folder").constData()), 0);
    QCOMPARE(symlink("map.dat", native("other_HGAlpha.dat").constData()), 0);
    QCOMPARE(::link(native("job.toml").constData(), native("third_HGThick.dat").constData()), 0);
    QCOMPARE(mkfifo(native("pipe").constData(), 0600), 0);
}

Job tst_ResultPath::job(const QString& result) const
{
    Job job;
    const QStringList names{QStringLiteral("ref1.dat"), QStringLiteral("ref2.dat"),
                            QStringLiteral("target.dat"), QStringLiteral("blank.dat")};
    for (int i = 0; i < names.size(); ++i)
        job.spectra[static_cast<std::size_t>(i)].path = in(names[i]);
    job.points.emplace(2);
    job.points->at(1).map.path = in(QStringLiteral("map.dat"));
    job.calculateMap = true;
    if (!result.isEmpty())
        job.mapResult = {in(result), {7, 0, {}}};
    return job;
}

void tst_ResultPath::free_data()
{
    QTest::addColumn<QString>("result");
    QTest::newRow("none") << QString();
    for (const char* const name : {"free.dat", "new.dat", "deep/new.dat", "folder/new.dat",
                                   "new_HGAlpha.dat", "ref1_HGAlpha.dat", "ref1"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_ResultPath::free()
{
    QFETCH(QString, result);
    QCOMPARE(reason(result), QString());
}

void tst_ResultPath::nothingReadIsWritten_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* result, const char* what) {
        QTest::newRow(result) << QString::fromLatin1(result)
                              << QStringLiteral("map_result would be written over %1: DIR/%2")
                                     .arg(QLatin1String(what), QLatin1String(result));
    };
    row("job.toml", "the job itself");
    row("ref1.dat", "ref1");
    row("ref2.dat", "ref2");
    row("target.dat", "target");
    row("blank.dat", "blank");
    row("map.dat", "the map of [[point]] 2");
    row("./deep/../ref2.dat", "ref2");
    row("deep/link.dat", "ref1");
    row("folder/link.dat", "ref1");
    row("deep/hard.dat", "blank");
    const auto beside = [](const char* result, const char* what, const char* file) {
        QTest::newRow(result)
            << QString::fromLatin1(result)
            << QStringLiteral(
                   "the histogram file beside map_result would be written over %1: DIR/%2")
                   .arg(QLatin1String(what), QLatin1String(file));
    };
    beside("other.dat", "the map of [[point]] 2", "map.dat");
    beside("third.dat", "the job itself", "third_HGThick.dat");
}

void tst_ResultPath::nothingReadIsWritten()
{
    QFETCH(QString, result);
    QFETCH(QString, expected);
    QCOMPARE(reason(result), expected);
}

void tst_ResultPath::cannotBeWritten_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("expected");
    QTest::newRow("folder") << QStringLiteral("deep")
                            << QStringLiteral("map_result is a folder: DIR/deep");
    QTest::newRow("link to a folder")
        << QStringLiteral("folder") << QStringLiteral("map_result is a folder: DIR/folder");
    QTest::newRow("missing folder")
        << QStringLiteral("none/a.dat")
        << QStringLiteral("map_result DIR/none/a.dat cannot be written: there is no folder "
                          "DIR/none");
    QTest::newRow("below a file")
        << QStringLiteral("free.dat/a.dat")
        << QStringLiteral("map_result DIR/free.dat/a.dat cannot be written: there is no folder "
                          "DIR/free.dat");
    QTest::newRow("pipe") << QStringLiteral("pipe")
                          << QStringLiteral(
                                 "map_result DIR/pipe cannot be written: it is no regular file");
    const QString longName(256, QLatin1Char('x'));
    QTest::newRow("long name")
        << longName
        << QStringLiteral("map_result DIR/%1 cannot be written: no file can be made in DIR")
               .arg(longName);
}

void tst_ResultPath::cannotBeWritten()
{
    QFETCH(QString, result);
    QFETCH(QString, expected);
    QCOMPARE(reason(result), expected);
}

void tst_ResultPath::onlyWhereThereIsAMap()
{
    Job unused = job(QStringLiteral("none/a.dat"));
    unused.calculateMap = false;
    QVERIFY(!checkResultPath(unused, in(QStringLiteral("job.toml"))));
}

void tst_ResultPath::checkingWritesNothing()
{
    const auto names = [this] {
        return QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    };
    const QStringList before = names();
    for (const char* const name : {"free.dat", "new.dat"})
        QCOMPARE(reason(QString::fromLatin1(name)), QString());
    QCOMPARE(names(), before);
    QFile file(in(QStringLiteral("free.dat")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("data"));
}

QTEST_GUILESS_MAIN(tst_ResultPath)
#include "tst_ResultPath.moc"

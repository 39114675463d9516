#include "batch/OutputCheck.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

/// Into which folders a run may write.
class tst_OutputCheck : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void freeFolders_data();
    void freeFolders();
    void refusals_data();
    void refusals();
    void checkingWritesNothing();

private:
    QString in(const QString& name) const { return m_dir->filePath(name); }
    QByteArray native(const QByteArray& name) const
    {
        return QFile::encodeName(in(QString::fromLatin1(name)));
    }
    void folder(const char* name) const
    {
        QVERIFY(QDir(m_dir->path()).mkpath(QString::fromLatin1(name)));
    }
    QString refusal(const QString& output) const;

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_OutputCheck::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    for (const char* name : {"scans", "maps", "earlier/maps/area/old", "earlier/pictures/scans",
                             "links/pictures", "links/maps"})
        folder(name);
    for (const char* name : {"job.toml", "ref1.dat", "ref2.dat", "blank.dat", "scans/1.dat",
                             "scans/2.dat", "maps/1.txt", "maps/2.txt", "earlier/results.csv",
                             "earlier/maps/area/area.dat", "earlier/pictures/scans/1.png"})
        create(in(QString::fromLatin1(name)), name);
}

/// A job of a reference, two targets and a map, and what it writes.
QString tst_OutputCheck::refusal(const QString& output) const
{
    Job job;
    job.folder = m_dir->path();
    job.output = {in(output), {7, 10, QStringLiteral("output.folder")}};
    job.spectra[SpectrumSet::Ref1].path = in(QStringLiteral("ref1.dat"));
    job.spectra[SpectrumSet::Ref2].path = in(QStringLiteral("ref2.dat"));
    job.spectra[SpectrumSet::Blank].path = in(QStringLiteral("blank.dat"));
    const std::vector<TargetJob> targets{{{in(QStringLiteral("scans/1.dat"))}},
                                         {{in(QStringLiteral("scans/2.dat"))}}};
    const std::vector<MapJob> maps{
        {QStringLiteral("area"),
         {9, 8, QStringLiteral("map.name")},
         {{in(QStringLiteral("maps/1.txt")), {}}, {}, {in(QStringLiteral("maps/2.txt")), {}}}}};
    QStringList files;
    for (const char* name : {"results.csv", "maps.csv", "report.html", "run.sqlite"})
        files += job.output.path + QLatin1Char('/') + QString::fromLatin1(name);
    const auto error = checkOutputs(job, in(QStringLiteral("job.toml")), targets, maps, files);
    return error ? errorText(QStringLiteral("job"), *error)
                       .replace(m_dir->path(), QStringLiteral("DIR"))
                 : QString();
}

void tst_OutputCheck::freeFolders_data()
{
    QTest::addColumn<QString>("output");
    for (const char* name : {".", "new", "new/and/deep", "earlier", "scans", "maps"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_OutputCheck::freeFolders()
{
    QFETCH(QString, output);
    QCOMPARE(refusal(output), QString());
}

void tst_OutputCheck::refusals_data()
{
    QTest::addColumn<QByteArray>("what"); // is made at a place, of another file
    QTest::addColumn<QByteArray>("place");
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* what, const char* place, const char* from,
                        const char* output, const char* expected) {
        QTest::newRow(name) << QByteArray(what) << QByteArray(place) << QByteArray(from)
                            << QString::fromLatin1(output) << QString::fromLatin1(expected);
    };
    row("a file", "", "", "", "ref1.dat",
        "job:7:10: output.folder: the output folder is a file: DIR/ref1.dat");
    row("below a file", "", "", "", "ref1.dat/a/b",
        "job:7:10: output.folder: DIR/ref1.dat is no folder");
    row("a link to nothing", "symbolic", "nowhere", "none", "nowhere/a",
        "job:7:10: output.folder: DIR/nowhere is no folder");
    row("results that are a folder", "folder", "links/results.csv", "", "links",
        "job:7:10: output.folder: DIR/links/results.csv is a folder");
    row("results that are a target", "symbolic", "links/results.csv", "../scans/2.dat", "links",
        "job:7:10: output.folder: DIR/links/results.csv would be written over the target "
        "DIR/scans/2.dat");
    row("results that are a reference", "hard", "links/results.csv", "ref2.dat", "links",
        "job:7:10: output.folder: DIR/links/results.csv would be written over ref2");
    row("maps that are the blank", "symbolic", "links/maps.csv", "../blank.dat", "links",
        "job:7:10: output.folder: DIR/links/maps.csv would be written over blank");
    row("a report that is the job", "hard", "links/report.html", "job.toml", "links",
        "job:7:10: output.folder: DIR/links/report.html would be written over the job itself");
    row("a record that is an image", "symbolic", "links/run.sqlite", "../maps/2.txt", "links",
        "job:7:10: output.folder: DIR/links/run.sqlite would be written over image 3 of the map "
        "area");
    row("pictures that are a file", "hard", "new/pictures", "scans/1.dat", "new",
        "job:7:10: output.folder: DIR/new/pictures is no folder");
    row("a picture that is a target", "symbolic", "earlier/pictures/scans/2.png",
        "../../../scans/2.dat", "earlier",
        "job:7:10: output.folder: DIR/earlier/pictures/scans/2.png would be written over the "
        "target DIR/scans/2.dat");
    row("pictures elsewhere", "symbolic", "links/pictures/scans", "../../scans", "links",
        "job:7:10: output.folder: DIR/links/pictures/scans is a link to another folder");
    row("a map that is a file", "hard", "links/maps/area", "scans/1.dat", "links",
        "job:9:8: map.name: DIR/links/maps/area is no folder");
    row("a map's file that is an image", "hard", "earlier/maps/area/area_HGAlpha.dat", "maps/1.txt",
        "earlier",
        "job:9:8: map.name: DIR/earlier/maps/area/area_HGAlpha.dat would be written over image 1 "
        "of the map area");
    row("a map's folder that holds the images", "symbolic", "maps/maps/area", "..", "maps",
        "job:9:8: map.name: DIR/maps/maps/area/1.txt would be written over image 1 of the map "
        "area");
}

void tst_OutputCheck::refusals()
{
    QFETCH(QByteArray, what);
    QFETCH(QByteArray, place);
    QFETCH(QByteArray, from);
    QFETCH(QString, output);
    QFETCH(QString, expected);
    if (!place.isEmpty())
        QVERIFY(QDir().mkpath(QFileInfo(in(QString::fromLatin1(place))).path()));
    if (what == "folder")
        folder(place.constData());
    else if (what == "hard")
        QCOMPARE(::link(native(from).constData(), native(place).constData()), 0);
    else if (what == "symbolic")
        QCOMPARE(::symlink(from.constData(), native(place).constData()), 0);
    QCOMPARE(refusal(output), expected);
}

void tst_OutputCheck::checkingWritesNothing()
{
    QCOMPARE(refusal(QStringLiteral("new")), QString());
    QVERIFY(!QFileInfo::exists(in(QStringLiteral("new"))));
    QCOMPARE(refusal(QStringLiteral("earlier")), QString());
    QCOMPARE(contents(in(QStringLiteral("earlier/results.csv"))),
             QByteArray("earlier/results.csv"));
}

QTEST_GUILESS_MAIN(tst_OutputCheck)
#include "tst_OutputCheck.moc"

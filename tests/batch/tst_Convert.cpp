#include "analysis/BraggLaw.h"
#include "examples/AbsorptionModel.h"
#include "examples/MapSample.h"
#include "examples/StackFiles.h"
#include "formats/BeamlineText.h"
#include "formats/MapText.h"
#include "input/MapReader.h"
#include "input/SpectrumReader.h"
#include "tests/batch/BatchFolder.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/Files.h"
#include "tests/support/PlainCsv.h"

#include <QDir>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>

/// What others' files are turned into for the window.
class tst_Convert : public QObject
{
    Q_OBJECT
private slots:
    void spectrumIsReadAsTheSame_data();
    void spectrumIsReadAsTheSame();
    void spectrumOfHandCase();
    void spectrumBeyondIntensities();
    void mapIsReadAsTheSame();
    void targetsOfOthers();
    void oneTarget();
    void stacks();
    void textsAreCopied();
    void twoReadingsOfAFile();
    void filesFromOutside();
    void tiltIsTold();
    void alignmentIsTold_data();
    void alignmentIsTold();
    void unreadableTarget();
    void unreadableReference();
    void folderOfOthersIsLeftAlone();
    void inputsAreNotWrittenOver();
    void commandLine();
};

namespace
{

QStringList convert(const char* to = "window")
{
    return {QStringLiteral("--convert"), QStringLiteral("--to"), QString::fromLatin1(to)};
}

/// A beamline's text of the example as a table of energies in keV and mu-t, with all digits.
QByteArray asXdi(const QByteArray& beamline)
{
    SpectrumPoints points;
    if (readSpectrum(ArrayBytes(beamline), points) != ReadOutcome::Read)
        qFatal("no spectrum");
    QByteArray text = "# XDI/1.0\n# Column.1: energy keV\n# Column.2: mutrans\n# ---\n";
    for (const SpectrumPoint& point : points)
        text += QByteArray::number(point.energy / 1000.0, 'g', 17) + ' ' +
                QByteArray::number(point.mut, 'g', 17) + '\n';
    return text;
}

void dropColumn(QVector<QStringList>& rows, const QString& name)
{
    const int column = rows.first().indexOf(name);
    if (column < 0)
        qFatal("no column %s", qPrintable(name));
    for (QStringList& row : rows)
        row.removeAt(column);
}

/// A table of results without the column in which the formats of the files may be doubted.
QVector<QStringList> figuresOf(const QByteArray& csv)
{
    QVector<QStringList> rows = plainCsv::read(csv);
    if (rows.isEmpty())
        qFatal("no table");
    dropColumn(rows, QStringLiteral("warnings"));
    return rows;
}

/// The table of maps without what is known by the counts of a stack.
QVector<QStringList> figuresOfMaps(const QByteArray& csv)
{
    QVector<QStringList> rows = plainCsv::read(csv);
    if (rows.isEmpty())
        qFatal("no table");
    for (const char* const column : {"sigma_valence_mean", "sigma_t_mean", "sigma_valence_mean_ref",
                                     "sigma_t_mean_ref", "t_bias"})
        dropColumn(rows, QString::fromLatin1(column));
    return rows;
}

const QByteArray mapJob = "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = "
                          "\"blank.dat\"\n[output]\nfolder = \"results\"\nreport = false\n";

CountedStack counted()
{
    MapSample map;
    map.columns = 11;
    map.rows = 7;
    return countedStack(map, {8300, 8313, 8381, 8391, 8404.5, 8460});
}

} // namespace

void tst_Convert::spectrumIsReadAsTheSame_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::newRow("nickel") << 8000.0 << 9250.0;
    QTest::newRow("iron") << 7000.0 << 7900.0;
    QTest::newRow("soft") << 700.0 << 720.0;
    QTest::newRow("hard") << 60000.0 << 62000.0;
}

/// To a last bit or two: not every double is an energy of Bragg's law, or a logarithm of one.
void tst_Convert::spectrumIsReadAsTheSame()
{
    QFETCH(double, first);
    QFETCH(double, last);
    QRandomGenerator random(7);
    SpectrumPoints points;
    for (int i = 0; i < 400; ++i)
        points.push_back({0.0, first + random.generateDouble() * (last - first),
                          4.0 * random.generateDouble() - 1.0});
    points.push_back(points.front());
    points.push_back({0.0, last, 0.0});
    const BeamlineText written = beamlineText("a title", points);
    QVERIFY(written.energyChange <= 3.4e-16 * last); // one and a half of a last bit
    QVERIFY(written.mutChange <= 4.5e-16);
    SpectrumPoints read;
    std::vector<Readings> readings;
    QCOMPARE(readSpectrum(ArrayBytes(written.text), read, 0, &readings), ReadOutcome::Read);
    QCOMPARE(read.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        QVERIFY(std::abs(read[i].energy - points[i].energy) <= written.energyChange);
        QVERIFY(std::abs(read[i].mut - points[i].mut) <= written.mutChange);
        QVERIFY(readings[i].incident < 0.0 && readings[i].transmitted < 0.0);
    }
}

/// 8 keV and a mu-t of ln 2, whatever the title has.
void tst_Convert::spectrumOfHandCase()
{
    const BeamlineText written =
        beamlineText("Offset D= 5 \n Offset\x1b", {{0.0, 8000.0, std::log(2.0)}});
    QVERIFY(written.text.endsWith(" 1 -2 -1\n"));
    QCOMPARE(written.text.count('\n'), 6);
    QCOMPARE(written.text.count("Offset"), 1);
    QCOMPARE(written.text.count("D="), 1);
    QVERIFY(!written.text.contains('\x1b'));
    SpectrumPoints read;
    QCOMPARE(readSpectrum(ArrayBytes(written.text), read), ReadOutcome::Read);
    QCOMPARE(read.size(), std::size_t{1});
    QVERIFY(std::abs(read[0].energy - 8000.0) < 2e-12);
}

void tst_Convert::spectrumBeyondIntensities()
{
    QVERIFY(beamlineText("", {{0.0, 8000.0, 800.0}}).text.isEmpty());
    QVERIFY(beamlineText("", {{0.0, 8000.0, -800.0}}).text.isEmpty());
    QVERIFY(beamlineText("", {}).text.isEmpty());
}

void tst_Convert::mapIsReadAsTheSame()
{
    QRandomGenerator random(3);
    MapData map;
    map.columns = 50;
    map.rows = 40;
    MapPositions positions;
    QVERIFY(positions.resize(2000) && map.mut.resize(2000));
    for (std::size_t i = 0; i < 2000; ++i) {
        map.mut[i] = std::ldexp(random.generateDouble() - 0.5, random.bounded(40) - 35);
        positions[i] = {random.generateDouble() * 1e5, -random.generateDouble() / 3.0};
    }
    map.mut[1] = 0.0;
    map.mut[2] = std::nan("");
    map.positions = std::make_shared<const MapPositions>(std::move(positions));
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("map.txt"));
    SafeFile file(path);
    QVERIFY(file.open() && writeMapText(file, map, 8404.1) && file.commit());
    QVERIFY(contents(path).startsWith("# AXIS 0 x - - - 50\n# AXIS 1 y - - - 40\n# ENERGY 1 "
                                      "8404.1"));
    MapData read;
    const MapReadResult result = readMapData(path, read);
    QVERIFY(read.valid);
    QCOMPARE(read.columns, 50);
    QCOMPARE(read.rows, 40);
    QCOMPARE(result.energies.value(0).toDouble(), 8404.1);
    QCOMPARE(read.mut.size(), std::size_t{2000});
    for (std::size_t i = 0; i < 2000; ++i) {
        QVERIFY(read.mut[i] == map.mut[i] || i == 2);
        QVERIFY((*read.positions)[i].first == (*map.positions)[i].first);
        QVERIFY((*read.positions)[i].second == (*map.positions)[i].second);
    }
    QVERIFY(std::isnan(read.mut[2]));
}

/// The results of the converted job are those of the job, noise and uncertainties too.
void tst_Convert::targetsOfOthers()
{
    const BatchFolder folder({80, 10, 35});
    for (const char* const name : {"ref1.dat", "ref2.dat", "scans/10.dat", "scans/35.dat"})
        folder.write(name, asXdi(contents(folder.file(name))));
    for (const QByteArray& noise : {QByteArray(), QByteArray("[noise]\nmodel = \"counts\"\n")}) {
        folder.writeJob("[histogram]\nvalence = { from = 1, to = 4, boxes = 31 }\n" + noise);
        QCOMPARE(folder.run({QStringLiteral("--again")}).status, 0);
        const BatchOutput converted = folder.run(convert());
        QCOMPARE(converted.status, 0);
        const QString job =
            QDir(folder.path()).canonicalPath() + QStringLiteral("/window/job.toml");
        QVERIFY2(converted.errors.endsWith(QStringLiteral("Written: ") + job + QLatin1Char('\n')),
                 qPrintable(converted.errors));
        for (const char* const name : {"ref1.dat", "scans/10.dat"})
            QVERIFY(contents(folder.file(QStringLiteral("window/") + QLatin1String(name)))
                        .startsWith("  converted: "));
        QCOMPARE(contents(folder.file("window/scans/80.dat")),
                 contents(folder.file("scans/80.dat")));
        QCOMPARE(folder.runPlainly({QStringLiteral("--again"), job}).status, 0);
        const auto before = figuresOf(folder.results());
        const auto after = figuresOf(contents(folder.file("window/results/results.csv")));
        QCOMPARE(after.size(), before.size());
        const int text = before.first().indexOf(QStringLiteral("target"));
        for (int row = 0; row < before.size(); ++row)
            for (int i = 0; i < before[row].size(); ++i) {
                if (before[row][i] == after[row][i])
                    continue;
                // By the last bits of energies and mu-t; chi square has the fewest digits.
                const double a = before[row][i].toDouble();
                const double b = after[row][i].toDouble();
                QVERIFY2(i != text && std::abs(a - b) <= 1e-8 * std::max(1.0, std::abs(a)),
                         qPrintable(QStringLiteral("%1: %2 and %3")
                                        .arg(before[0][i], before[row][i], after[row][i])));
            }
    }
}

/// The printed report of a single target.
void tst_Convert::oneTarget()
{
    const BatchFolder folder({35});
    folder.write("target.xdi", asXdi(contents(folder.file("scans/35.dat"))));
    folder.write("job.toml",
                 "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = "
                 "\"blank.dat\"\ntarget = { file = \"target.xdi\", format = \"xdi\" }\n" +
                     BatchFolder::points);
    const BatchOutput before = folder.run();
    QCOMPARE(before.status, 0);
    QCOMPARE(folder.run(convert()).status, 0);
    const BatchOutput after = folder.runPlainly({QStringLiteral("window/job.toml")});
    QCOMPARE(after.status, 0);
    QVERIFY(before.text.size() > 100);
    QCOMPARE(QString::fromUtf8(after.text).replace(QStringLiteral("window/"), QString()),
             QString::fromUtf8(before.text));
}

/// Tables and result files are the same, byte by byte.
void tst_Convert::stacks()
{
    const BatchFolder folder({35});
    const CountedStack stack = counted();
    QVERIFY(writeFxi(folder.file("fxi.h5"), stack) &&
            writeExchange(folder.file("exchange.h5"), stack) &&
            writeMistral(folder.file("mistral.hdf5"), stack) &&
            writeNxdata(folder.file("nexus.nxs"), stack) &&
            writeTiffStack(folder.file("pages.tif"), stack) &&
            writeImgStack(folder.file("scan.dat"), stack) &&
            writeHisStack(folder.file("scan.his"), stack));
    const QByteArrayList keys{
        "stack = \"fxi.h5\"",
        "stack = \"exchange.h5\"\nregion = { x = 2, y = 1, width = 6, height = 5 }",
        "stack = \"mistral.hdf5\"\nshift = -0.25",
        "stack = \"nexus.nxs\"\nvalues = \"mu-t\"",
        "stack = \"pages.tif\"\nvalues = \"counts\"\nflat = \"pages-flat.tif\"\ndark = "
        "\"pages-dark.tif\"\npixel_size = 0.65",
        "stack = \"scan.dat\"\nreference = \"scan.dat.ref\"",
        "stack = \"scan.his\"\nflat = \"scan.his.flat\"\ndark = \"scan.his.dark\"\nenergies = "
        "\"scan.his.txt\""};
    QByteArray job = mapJob + BatchFolder::points + "[[point]]\nenergy = 9999\nuse = false\n";
    for (int i = 0; i < keys.size(); ++i)
        job += "[[map]]\nname = \"a " + QByteArray::number(i) + "\"\n" + keys[i] + '\n';
    folder.write("job.toml", job);
    const BatchOutput before = folder.run();
    QVERIFY2(before.status == 0, qPrintable(before.errors));
    const BatchOutput converted = folder.run(convert());
    QVERIFY2(converted.status == 0, qPrintable(converted.errors));
    QCOMPARE(converted.errors.count(QStringLiteral("counts are not carried")), 4);
    QVERIFY(converted.errors.contains(QStringLiteral(
        "map a 1: counts are not carried, and with them the noise of its images\n")));
    QVERIFY(QFile::exists(folder.file("window/maps/a 0/4.txt")));
    QVERIFY(!QFile::exists(folder.file("window/maps/a 0/5.txt")));
    const BatchOutput after = folder.runPlainly({QStringLiteral("window/job.toml")});
    QVERIFY2(after.status == 0, qPrintable(after.errors));
    const auto table = figuresOfMaps(contents(folder.file("results/maps.csv")));
    QCOMPARE(table.size(), keys.size() + 1);
    QCOMPARE(figuresOfMaps(contents(folder.file("window/results/maps.csv"))), table);
    // The header of a result file is that of the images; a stack has none.
    for (int i = 0; i < keys.size(); ++i) {
        const QString name = QStringLiteral("results/maps/a %1/a %1.dat").arg(i);
        const QByteArray text = contents(folder.file(QStringLiteral("window/") + name));
        const QByteArray pixels = text.mid(text.indexOf("\n\n") + 2);
        QVERIFY(pixels.count('\n') > 30);
        QCOMPARE(pixels, contents(folder.file(name)));
    }
}

/// What the window reads already stays as it is, byte by byte.
void tst_Convert::textsAreCopied()
{
    const BatchFolder folder({35});
    const QByteArray map = folder.addMap("area");
    folder.writeJob(map);
    QCOMPARE(folder.run().status, 0);
    QCOMPARE(folder.run(convert() + QStringList{QStringLiteral("--quiet")}).errors, QString());
    for (const char* const name : {"ref1.dat", "blank.dat", "scans/10.dat", "scans/35.dat",
                                   "scans/80.dat", "images/area_1.txt", "images/area_4.txt"})
        QCOMPARE(contents(folder.file(QStringLiteral("window/") + QLatin1String(name))),
                 contents(folder.file(name)));
    QCOMPARE(folder.runPlainly({QStringLiteral("window/job.toml")}).status, 0);
    QCOMPARE(contents(folder.file("window/results/results.csv")), folder.results());
    QCOMPARE(contents(folder.file("window/results/maps.csv")),
             contents(folder.file("results/maps.csv")));
}

void tst_Convert::twoReadingsOfAFile()
{
    const BatchFolder folder({35});
    folder.write("both.txt", "8000 0.5 1\n8001 0.75 2\n");
    folder.write("job.toml", "calculate = [\"lcf\"]\n[files]\n"
                             "ref1 = { file = \"both.txt\", columns = { energy = 1, mut = 2 } }\n"
                             "ref2 = { file = \"both.txt\", columns = { energy = 1, mut = 3 } }\n");
    QCOMPARE(folder.run(convert()).status, 0);
    const auto last = [&folder](const char* name) {
        SpectrumPoints points;
        return readSpectrum(folder.file(name), points) == ReadOutcome::Read ? points.back().mut : 0;
    };
    QCOMPARE(last("window/both.txt"), 0.75);
    QCOMPARE(last("window/2-both.txt"), 2.0);
    const QByteArray job = contents(folder.file("window/job.toml"));
    QVERIFY(job.contains("ref1 = \"both.txt\"\nref2 = \"2-both.txt\"\n"));
}

void tst_Convert::filesFromOutside()
{
    const BatchFolder folder({35});
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("job")));
    folder.write("job/job.toml", "[files]\nref1 = \"../ref1.dat\"\nref2 = \"../ref2.dat\"\n"
                                 "blank = \"../blank.dat\"\ntarget = \"../scans/35.dat\"\n");
    const BatchOutput before = folder.runPlainly({QStringLiteral("job/job.toml")});
    QCOMPARE(folder.runPlainly(convert() + QStringList{QStringLiteral("job/job.toml")}).status, 0);
    QCOMPARE(contents(folder.file("window/files/35.dat")), contents(folder.file("scans/35.dat")));
    const BatchOutput after = folder.runPlainly({QStringLiteral("window/job.toml")});
    QCOMPARE(after.status, before.status);
    QCOMPARE(after.text, before.text);
}

void tst_Convert::tiltIsTold()
{
    const BatchFolder folder({35});
    QVERIFY(writeFxi(folder.file("fxi.h5"), counted()));
    folder.write("job.toml", mapJob + BatchFolder::points +
                                 "[[map]]\nname = \"area\"\nstack = \"fxi.h5\"\ntilt_ev_per_row = "
                                 "0.1\n");
    const BatchOutput converted = folder.run(convert());
    QCOMPARE(converted.status, 0);
    QVERIFY2(converted.errors.startsWith(
                 QStringLiteral("map area: tilt_ev_per_row is not carried: in the window the "
                                "references are taken at the energies of the points\n")),
             qPrintable(converted.errors));
}

void tst_Convert::alignmentIsTold_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::newRow("numbers") << QByteArray("target = 0.25\n");
    QTest::newRow("table") << QByteArray("shifts = \"shifts.txt\"\n");
    QTest::newRow("foils") << QByteArray("foil = \"scans/foils/{name}.foil\"\n");
}

/// Its shifts are those of the job all the same.
void tst_Convert::alignmentIsTold()
{
    QFETCH(QByteArray, keys);
    const BatchFolder folder({35});
    folder.write("shifts.txt",
                 "file,shift\nref1.dat,0\nref2.dat,0\nblank.dat,0\nscans/35.dat,0.25\n");
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("scans/foils")));
    const QByteArray foil = contents(folder.file("ref1.dat"));
    for (const char* const name : {"ref1", "ref2", "blank"})
        folder.write(("scans/foils/" + QByteArray(name) + ".foil").constData(), foil);
    SpectrumPoints points;
    QCOMPARE(readSpectrum(ArrayBytes(foil), points), ReadOutcome::Read);
    for (SpectrumPoint& point : points)
        point.energy -= 0.25;
    folder.write("scans/foils/35.foil", beamlineText("foil", points).text);
    folder.writeJob("[alignment]\n" + keys);
    const BatchOutput before = folder.run();
    QVERIFY2(before.status == 0, qPrintable(before.errors));
    const BatchOutput converted = folder.run(convert());
    QVERIFY2(converted.status == 0, qPrintable(converted.errors));
    QVERIFY(converted.errors.startsWith(QStringLiteral(
        "[alignment] is carried for drovik-batch alone: the window shows the energies of the "
        "files\n")));
    const BatchOutput after = folder.runPlainly({QStringLiteral("window/job.toml")});
    QVERIFY2(after.status == 0, qPrintable(after.errors));
    const auto table = figuresOf(folder.results());
    const int shift = table.first().indexOf(QStringLiteral("shift"));
    QVERIFY(shift >= 0);
    QVERIFY(std::abs(table.last()[shift].toDouble() - 0.25) < 0.01);
    QCOMPARE(figuresOf(contents(folder.file("window/results/results.csv"))), table);
}

/// It is copied, and refused in the converted job too.
void tst_Convert::unreadableTarget()
{
    const BatchFolder folder({35});
    folder.write("scans/bad.dat", "# XDI/1.0\n# energy xmu\n8000 1\n8001\n");
    folder.writeJob();
    const BatchOutput converted = folder.run(convert());
    QCOMPARE(converted.status, 1);
    QVERIFY2(converted.errors.contains(QStringLiteral(
                 "scans/bad.dat:4: has 1 numbers where line 3 has 2; it is copied as it is\n")),
             qPrintable(converted.errors));
    QCOMPARE(contents(folder.file("window/scans/bad.dat")), contents(folder.file("scans/bad.dat")));
    QCOMPARE(folder.run().status, 1);
    QCOMPARE(folder.runPlainly({QStringLiteral("window/job.toml")}).status, 1);
    QCOMPARE(figuresOf(contents(folder.file("window/results/results.csv"))).size(),
             figuresOf(folder.results()).size());
}

void tst_Convert::unreadableReference()
{
    const BatchFolder folder({35});
    folder.write("ref2.dat", "# XDI/1.0\n# energy xmu\n8000 1\n8001\n");
    folder.writeJob();
    const BatchOutput converted = folder.run(convert());
    QCOMPARE(converted.status, 2);
    QVERIFY2(converted.errors.contains(QStringLiteral(":4: has 1 numbers where line 3 has 2")),
             qPrintable(converted.errors));
    QVERIFY(!QFile::exists(folder.file("window/job.toml")));
}

void tst_Convert::folderOfOthersIsLeftAlone()
{
    const BatchFolder folder({35});
    folder.writeJob();
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("window")));
    folder.write("window/ref1.dat", "mine");
    const BatchOutput refused = folder.run(convert());
    QCOMPARE(refused.status, 2);
    QVERIFY(refused.errors.endsWith(QStringLiteral("window is not empty, and no earlier "
                                                   "conversion\n")));
    QCOMPARE(contents(folder.file("window/ref1.dat")), QByteArray("mine"));
    QVERIFY(!QFile::exists(folder.file("window/job.toml")));
    QVERIFY(QFile::remove(folder.file("window/ref1.dat")));
    QCOMPARE(folder.run(convert()).status, 0);
    QCOMPARE(folder.run(convert()).status, 0); // again
    const BatchOutput intoFile = folder.run(convert("ref1.dat"));
    QCOMPARE(intoFile.status, 2);
    QVERIFY(intoFile.errors.endsWith(QStringLiteral("ref1.dat is no folder\n")));
}

/// A link in an earlier conversion leads to what is read.
void tst_Convert::inputsAreNotWrittenOver()
{
    const BatchFolder folder({35});
    folder.writeJob();
    QCOMPARE(folder.run(convert()).status, 0);
    QVERIFY(QFile::remove(folder.file("window/blank.dat")));
    QVERIFY(QFile::link(folder.file("scans/35.dat"), folder.file("window/blank.dat")));
    const QByteArray before = contents(folder.file("scans/35.dat"));
    const BatchOutput refused = folder.run(convert());
    QCOMPARE(refused.status, 2);
    QVERIFY2(refused.errors.contains(QStringLiteral("would be written over the target")),
             qPrintable(refused.errors));
    QCOMPARE(contents(folder.file("scans/35.dat")), before);
    const BatchOutput own = folder.run(convert("."));
    QCOMPARE(own.status, 2);
    QVERIFY(own.errors.contains(QStringLiteral("would be written over the job itself")));
}

void tst_Convert::commandLine()
{
    const BatchFolder folder({35});
    folder.writeJob();
    const QString together = QStringLiteral("--convert and --to FOLDER go together.\n");
    QCOMPARE(folder.run({QStringLiteral("--convert")}).errors, together);
    QCOMPARE(folder.run({QStringLiteral("--to"), QStringLiteral("window")}).errors, together);
}

QTEST_GUILESS_MAIN(tst_Convert)
#include "tst_Convert.moc"

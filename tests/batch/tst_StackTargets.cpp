#include "batch/PreparedJob.h"
#include "examples/AbsorptionModel.h"
#include "examples/StackFiles.h"
#include "formats/BeamlineText.h"
#include "formats/Stack.h"
#include "formats/StackProcess.h"
#include "jobs/JobFile.h"
#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"
#include "tests/support/PlainCsv.h"

#include <QDir>
#include <QtTest>

#include <algorithm>
#include <cmath>

/// Targets that are the mean spectra of regions of a stack.
class tst_StackTargets : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { setStackProgram(QStringLiteral(STACK_PROGRAM)); }
    void init();
    void equalTheirTexts();
    void orderAndList();
    void noiseOfCounts();
    void doneIsNotDoneAgain();
    void onlyWhatChangedIsDone();
    void grownPattern();
    void killedOnTheWay();
    void shardsGiveTheSame();
    void changedBetweenShards();
    void replaySaysTheSame();
    void unreadableStopsNoOther();
    void refusedAtTheStart_data();
    void refusedAtTheStart();
    void shiftsOfTheTable();
    void foilsByName();
    void picturesAndReport();
    void nothingIsWrittenOverThem();
    void convertedTargets();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    void writeJob(const QByteArray& more) const { m_folder->writeJob(more, "\"scans/*.dat\""); }
    /// Names of the targets that a run calculates.
    QStringList calculated(const QStringList& arguments = {}) const
    {
        return m_folder->calculated(arguments);
    }
    /// What a run into an empty folder writes.
    QMap<QString, QByteArray> undisturbed() const;
    /// A figure of a row of results.csv.
    double figure(const char* row, const char* column) const;
    QString text(const char* row, const char* column) const;

    std::unique_ptr<BatchFolder> m_folder;
};

namespace
{

/// A spectrum in each pixel: the state of Ref 1 grows along the rows, the thickness from row to
/// row.
CountedStack made()
{
    CountedStack stack;
    stack.columns = 6;
    stack.rows = 7;
    stack.dark.assign(stack.pixels(), 100);
    // None is where a line ends: the last bit of an angle would decide on which side it is.
    for (int e = 8101; e < 8300; e += 10)
        stack.energies.push_back(e);
    for (int e = 8301; e < 8440; e += 2)
        stack.energies.push_back(e);
    for (int e = 8441; e < 8700; e += 10)
        stack.energies.push_back(e);
    stack.energies.insert(stack.energies.end(), {8390.0, 8404.5}); // of the points
    std::sort(stack.energies.begin(), stack.energies.end());
    std::uint32_t noise = 1;
    for (const double energy : stack.energies)
        for (int y = 0; y < stack.rows; ++y)
            for (int x = 0; x < stack.columns; ++x) {
                using absorption::State;
                const double a = x / 5.0;
                const double mut =
                    (0.4 + 0.02 * y) * (a * absorption::ofState(State::Two, energy) +
                                        (1.0 - a) * absorption::ofState(State::Three, energy));
                noise = noise * 1664525U + 1013904223U;
                const auto flat = static_cast<std::uint16_t>(50000 + (noise >> 20));
                stack.flats.push_back(flat);
                stack.counts.push_back(
                    static_cast<std::uint16_t>(std::lround(100 + (flat - 100) * std::exp(-mut))));
            }
    return stack;
}

struct Sums {
    double incident = 0.0;
    double transmitted = 0.0;
    double mut = 0.0; ///< mean over the pixels
};

/// Over a region, pixel by pixel.
Sums sumsOf(const CountedStack& stack, std::size_t frame, const Region& region)
{
    Sums sums;
    for (int y = region.y; y < region.y + region.height; ++y)
        for (int x = region.x; x < region.x + region.width; ++x) {
            const auto i = frame * stack.pixels() + static_cast<std::size_t>(y * stack.columns + x);
            const double incident = stack.flats[i] - 100.0;
            const double transmitted = stack.counts[i] - 100.0;
            sums.incident += incident;
            sums.transmitted += transmitted;
            sums.mut += std::log(incident / transmitted) / (region.width * region.height);
        }
    return sums;
}

/// The mean spectrum as a beamline's text.
QByteArray textOf(const CountedStack& stack, const Region& region, bool ofCounts)
{
    SpectrumPoints points;
    for (std::size_t k = 0; k < stack.energies.size(); ++k) {
        const Sums sums = sumsOf(stack, k, region);
        points.push_back({0.0, stack.energies[k],
                          ofCounts ? std::log(sums.incident / sums.transmitted) : sums.mut});
    }
    return beamlineText("mean", points).text;
}

const QByteArray grain = "[[target]]\nname = \"grain 1\"\nstack = \"scan.h5\"\nregion = { x = 1, y "
                         "= 2, width = 3, height = 2 }\n";
const QByteArray whole = "[[target]]\nname = \"all\"\nstack = \"scan.h5\"\n";

} // namespace

void tst_StackTargets::init()
{
    m_folder = std::make_unique<BatchFolder>(QList<int>{35});
    QVERIFY(writeExchange(file("scan.h5"), made()));
    writeJob(grain + whole);
}

QMap<QString, QByteArray> tst_StackTargets::undisturbed() const
{
    QDir(file("results")).removeRecursively();
    m_folder->run();
    return m_folder->resultFiles();
}

QString tst_StackTargets::text(const char* row, const char* column) const
{
    const auto table = plainCsv::read(m_folder->results());
    const int place = table[0].indexOf(QLatin1String(column));
    for (const QStringList& line : table)
        if (line[0] == QLatin1String(row))
            return line.value(place, QStringLiteral("no column"));
    return QStringLiteral("no row");
}

double tst_StackTargets::figure(const char* row, const char* column) const
{
    bool isNumber = false;
    const double value = text(row, column).toDouble(&isNumber);
    return isNumber ? value : std::nan("");
}

/// Counts and mu-t, a region and all of the frame, against texts of the same means.
void tst_StackTargets::equalTheirTexts()
{
    const CountedStack stack = made();
    const Region region{1, 2, 3, 2};
    const Region all{0, 0, 6, 7};
    QVERIFY(writeNxdata(file("mut.nxs"), stack));
    m_folder->write("scans/counts.dat", textOf(stack, region, true));
    m_folder->write("scans/counts-all.dat", textOf(stack, all, true));
    m_folder->write("scans/mut.dat", textOf(stack, region, false));
    m_folder->write("scans/mut-all.dat", textOf(stack, all, false));
    writeJob(grain + whole +
             "[[target]]\nname = \"grain mut\"\nstack = \"mut.nxs\"\nvalues = \"mu-t\"\nregion = { "
             "x = 1, y = 2, width = 3, height = 2 }\n[[target]]\nname = \"all mut\"\nstack = "
             "\"mut.nxs\"\nvalues = \"mu-t\"\n[conditions]\nthickness = "
             "\"sum-by-sum\"\nreferences_minus_victreen = false\n");
    QCOMPARE(m_folder->run().status, 0);
    const QList<std::pair<const char*, const char*>> pairs{{"grain 1", "scans/counts.dat"},
                                                           {"all", "scans/counts-all.dat"},
                                                           {"grain mut", "scans/mut.dat"},
                                                           {"all mut", "scans/mut-all.dat"}};
    for (const auto& [target, scan] : pairs) {
        for (const char* const column : {"a", "t_ts", "edge_jump", "lcf_a", "sigma_a", "noise"}) {
            const double found = figure(target, column);
            const double expected = figure(scan, column);
            QVERIFY2(std::abs(found - expected) < (qstrcmp(column, "a") == 0 ? 1e-12 : 1e-9),
                     qPrintable(QStringLiteral("%1 of %2: %3, not %4")
                                    .arg(QLatin1String(column), QLatin1String(target))
                                    .arg(found, 0, 'g', 17)
                                    .arg(expected, 0, 'g', 17)));
        }
        QCOMPARE(text(target, "method"), text(scan, "method"));
        QCOMPARE(text(target, "refusal"), QString());
    }
    // And the truth: the middle of three columns; the thickness hardly varies over two rows.
    QVERIFY(std::abs(figure("grain mut", "a") - 0.4) < 1e-3);
    QVERIFY(std::abs(figure("grain 1", "a") - 0.4) < 2e-3);
}

/// Files by their bytes, then regions in the order of the job.
void tst_StackTargets::orderAndList()
{
    writeJob(whole + grain);
    QCOMPARE(m_folder->run({QStringLiteral("--list"), QStringLiteral("-0")}).text,
             file("scans/35.dat").toUtf8() + '\0' + "all" + '\0' + "grain 1" + '\0');
    QCOMPARE(m_folder->run().status, 0);
    QCOMPARE(plainCsv::column(plainCsv::read(m_folder->results()), QStringLiteral("target")),
             QStringList({QStringLiteral("scans/35.dat"), QStringLiteral("all"),
                          QStringLiteral("grain 1")}));
}

/// The variance of ln of a mean of n counts is the gain over their sum, before and behind the
/// sample; `noise` is the root of its mean below the end of the pre-edge, 8300 eV.
void tst_StackTargets::noiseOfCounts()
{
    const CountedStack stack = made();
    const QByteArray counts = "[noise]\nmodel = \"counts\"\ngain = 5\ngain0 = 3\n";
    writeJob(grain + counts);
    QCOMPARE(m_folder->run().status, 0);
    double sum = 0.0;
    int below = 0;
    for (std::size_t k = 0; stack.energies[k] < 8300; ++k, ++below) {
        const Sums sums = sumsOf(stack, k, {1, 2, 3, 2});
        sum += 3.0 / sums.incident + 5.0 / sums.transmitted;
    }
    QVERIFY(std::abs(figure("grain 1", "noise") / std::sqrt(sum / below) - 1.0) < 1e-12);
    QVERIFY(figure("grain 1", "sigma_a") > 0.0);
    QVERIFY(figure("grain 1", "gain") > 0.0);
    // The flat of all frames moves all mu-t alike.
    QVERIFY(writeTiffStack(file("s.tif"), stack));
    CountedStack two = stack;
    two.energies.resize(2);
    two.counts.resize(2 * stack.pixels());
    two.flats.resize(2 * stack.pixels());
    QVERIFY(writeTiffStack(file("two.tif"), two));
    writeJob("[[target]]\nname = \"tiff\"\nstack = \"s.tif\"\nvalues = \"counts\"\nflat = "
             "\"two-flat.tif\"\ndark = 100\nregion = { x = 1, y = 2, width = 3, height = 2 }\n" +
             counts);
    QVERIFY(m_folder->run().status >= 0);
    sum = 0.0;
    for (std::size_t k = 0; stack.energies[k] < 8300; ++k)
        sum += 5.0 / sumsOf(stack, k, {1, 2, 3, 2}).transmitted;
    QVERIFY(std::abs(figure("tiff", "noise") / std::sqrt(sum / below) - 1.0) < 1e-12);
}

const QStringList everything{QStringLiteral("scans/35.dat"), QStringLiteral("grain 1"),
                             QStringLiteral("all")};

void tst_StackTargets::doneIsNotDoneAgain()
{
    QCOMPARE(calculated(), everything);
    const auto before = m_folder->resultFiles();
    QCOMPARE(calculated(), QStringList());
    QCOMPARE(m_folder->resultFiles(), before);
}

void tst_StackTargets::onlyWhatChangedIsDone()
{
    QCOMPARE(calculated(), everything);
    writeJob(QByteArray(grain).replace("x = 1", "x = 0") + whole);
    QCOMPARE(calculated(), QStringList(QStringLiteral("grain 1")));
    CountedStack other = made();
    other.counts[50 * other.pixels()] = 30000; // no pixel of the region
    QVERIFY(writeExchange(file("scan.h5"), other));
    QCOMPARE(calculated(), QStringList({QStringLiteral("grain 1"), QStringLiteral("all")}));
    const auto found = m_folder->resultFiles();
    QCOMPARE(found, undisturbed());
}

/// Frames that come: the pattern has another file, and the text of the energies another line.
void tst_StackTargets::grownPattern()
{
    const CountedStack stack = made();
    const std::size_t half = stack.energies.size() / 2;
    const auto part = [&stack](std::size_t from, std::size_t to) {
        const auto frames = [&](const std::vector<std::uint16_t>& all) {
            return std::vector<std::uint16_t>(
                all.begin() + static_cast<std::ptrdiff_t>(from * stack.pixels()),
                all.begin() + static_cast<std::ptrdiff_t>(to * stack.pixels()));
        };
        CountedStack some = stack;
        some.energies = {stack.energies.begin() + static_cast<std::ptrdiff_t>(from),
                         stack.energies.begin() + static_cast<std::ptrdiff_t>(to)};
        some.counts = frames(stack.counts);
        some.flats = frames(stack.flats);
        return some;
    };
    const auto energies = [&](std::size_t count) {
        QByteArray text;
        for (std::size_t k = 0; k < count; ++k)
            text += QByteArray::number(stack.energies[k]) + '\n';
        m_folder->write("energies.txt", text);
    };
    QVERIFY(writeTiffStack(file("p_1.tif"), part(0, half)));
    QVERIFY(QFile::rename(file("p_1-flat.tif"), file("flat.tif")));
    QVERIFY(QFile::remove(file("p_1-dark.tif")));
    energies(half);
    writeJob("[[target]]\nname = \"tiff\"\nstack = \"p_*.tif\"\nenergies = "
             "\"energies.txt\"\nvalues = \"counts\"\nflat = \"flat.tif\"\ndark = 100\n");
    m_folder->run();
    const QByteArray before = m_folder->results();
    const CountedStack rest = part(half, stack.energies.size());
    QVERIFY(writeTiffStack(file("p_2.tif"), rest));
    QVERIFY(QFile::remove(file("p_2-flat.tif")) && QFile::remove(file("p_2-dark.tif")));
    QCOMPARE(m_folder
                 ->runPlainly({QStringLiteral("--replay"), QStringLiteral("results/run.sqlite"),
                               QStringLiteral("tiff")})
                 .text,
             QByteArray("tiff: p_2.tif is new\n"));
    // As long as there is no energy for each page.
    QCOMPARE(m_folder->run().status, 1);
    QCOMPARE(text("tiff", "refusal"), QStringLiteral("p_*.tif: has %1 pages for %2 energies")
                                          .arg(stack.energies.size())
                                          .arg(half));
    energies(stack.energies.size());
    QCOMPARE(calculated(), QStringList(QStringLiteral("tiff")));
    QVERIFY(m_folder->results() != before);
    const auto found = m_folder->resultFiles();
    QCOMPARE(found, undisturbed());
}

/// What was done is kept, and the rest follows.
void tst_StackTargets::killedOnTheWay()
{
    QByteArray targets;
    for (int i = 0; i < 16; ++i)
        targets += "[[target]]\nname = \"" + QByteArray::number(i) + "\"\nstack = \"scan.h5\"\n";
    writeJob(targets);
    QProcess process;
    m_folder->start(process, {QStringLiteral("--verbose"), QStringLiteral("--jobs=1"),
                              QStringLiteral("job.toml")});
    process.setReadChannel(QProcess::StandardError);
    while (!process.peek(100000).contains("12: calculated in "))
        QVERIFY(process.waitForReadyRead());
    process.kill();
    QVERIFY(process.waitForFinished());
    QCOMPARE(m_folder->run().status, 0);
    const auto found = m_folder->resultFiles();
    QCOMPARE(found, undisturbed());
}

/// As one run, and before all are there the missing ones by their names.
void tst_StackTargets::shardsGiveTheSame()
{
    const auto expected = undisturbed();
    QCOMPARE(expected.size(), 2);
    QDir(file("results")).removeRecursively();
    QCOMPARE(m_folder->run({QStringLiteral("--shard=1/2")}).status, 0);
    const BatchOutput merged = m_folder->run({QStringLiteral("--merge")});
    QCOMPARE(merged.status, 1);
    QVERIFY2(merged.errors.startsWith(QStringLiteral("grain 1: in no record (shard 2/2)\n")),
             qPrintable(merged.errors));
    QCOMPARE(m_folder->run({QStringLiteral("--shard=2/2")}).status, 0);
    QCOMPARE(m_folder->run({QStringLiteral("--merge")}).status, 0);
    QCOMPARE(m_folder->resultFiles(), expected);
    QCOMPARE(calculated(), QStringList());
}

/// A region that is another by now is not taken from a shard, refused or not.
void tst_StackTargets::changedBetweenShards()
{
    m_folder->write("none.h5", "no stack");
    writeJob(grain + QByteArray(whole).replace("scan", "none"));
    QCOMPARE(m_folder->run({QStringLiteral("--shard=1/1")}).status, 1);
    writeJob(QByteArray(grain).replace("x = 1", "x = 0") +
             QByteArray(whole).replace("scan", "none") + "shift = 1\n");
    const BatchOutput merged = m_folder->run({QStringLiteral("--merge")});
    QVERIFY2(merged.errors.startsWith(QStringLiteral("grain 1: in no record (shard 1/1)\nall: in "
                                                     "no record (shard 1/1)\n2 of 3 are missing")),
             qPrintable(merged.errors));
}

void tst_StackTargets::replaySaysTheSame()
{
    // A map may have the name of a target.
    writeJob(grain + whole + m_folder->addMap("all"));
    const BatchOutput output = m_folder->run();
    QVERIFY2(output.status == 0, qPrintable(output.errors));
    const auto replay = [this](const QStringList& names) {
        return m_folder->runPlainly(
            QStringList{QStringLiteral("--replay"), QStringLiteral("results/run.sqlite")} + names);
    };
    QCOMPARE(replay({}).text, QByteArray("all: the same\ngrain 1: the same\nscans/35.dat: the "
                                         "same\nall: the same\n"));
    QCOMPARE(replay({QStringLiteral("all")}).text, QByteArray("all: the same\nall: the same\n"));
    CountedStack other = made();
    other.counts[0] = 1000;
    QVERIFY(writeExchange(file("scan.h5"), other));
    const QStringList name{QStringLiteral("grain 1")};
    QCOMPARE(replay(name).text, QByteArray("grain 1: scan.h5 changed\n"));
    QVERIFY(QFile::remove(file("scan.h5")));
    QCOMPARE(replay(name).text, QByteArray("grain 1: scan.h5 is missing: there is no such file\n"));
}

/// A row with its reason, which is tried again: time or memory may have failed.
void tst_StackTargets::unreadableStopsNoOther()
{
    m_folder->write("scan.h5", contents(file("scan.h5")).left(3000));
    QVERIFY(writeNxdata(file("mut.nxs"), made()));
    writeJob(whole + "[[target]]\nname = \"b\"\nstack = \"mut.nxs\"\nvalues = \"mu-t\"\n");
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 1);
    const QString reason = text("all", "refusal");
    QVERIFY2(reason.startsWith(QStringLiteral("scan.h5: ")), qPrintable(reason));
    QVERIFY(output.errors.contains(QStringLiteral("all: ") + reason + QLatin1Char('\n')));
    QVERIFY(figure("b", "a") > 0.0);
    QVERIFY(figure("scans/35.dat", "a") > 0.0);
    QCOMPARE(calculated(), QStringList(QStringLiteral("all")));
    QVERIFY(writeExchange(file("scan.h5"), made()));
    QCOMPARE(calculated(), QStringList(QStringLiteral("all")));
    QCOMPARE(text("all", "refusal"), QString());
}

void tst_StackTargets::refusedAtTheStart_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("expected");
    QTest::newRow("region outside")
        << QByteArray("name = \"t\"\nstack = \"scan.h5\"\nregion = { x = 4, y = 0, width = 3, "
                      "height = 2 }\n")
        << QStringLiteral("job.toml:26:10: target.region: the region is not within its 6 x 7 "
                          "pixels");
    QTest::newRow("no file") << QByteArray("name = \"t\"\nstack = \"none.h5\"\n")
                             << QStringLiteral("job.toml:25:9: target.stack: there is no file "
                                               "DIR/none.h5");
    QTest::newRow("energies alone")
        << QByteArray("name = \"t\"\nstack = \"none.h5\"\nenergies = \"ref1.dat\"\n")
        << QStringLiteral("job.toml:25:9: target.stack: there is no file DIR/none.h5");
    QTest::newRow("name of a file")
        << QByteArray("name = \"ref1.dat\"\nstack = \"scan.h5\"\n")
        << QStringLiteral("job.toml:24:8: target.name: a file of files.targets has the same "
                          "name");
}

void tst_StackTargets::refusedAtTheStart()
{
    QFETCH(QByteArray, target);
    QFETCH(QString, expected);
    m_folder->writeJob(whole + "[[target]]\n" + target, "\"scans/*.dat\", \"ref*.dat\"");
    const QByteArray text = contents(file("job.toml"));
    JobError error;
    const auto job = parseJob(text, m_folder->path(), error);
    QVERIFY(job);
    QVERIFY(!prepareJob(file("job.toml"), text, *job, {}, error));
    QCOMPARE(errorText(QStringLiteral("job.toml"), error)
                 .replace(m_folder->path(), QStringLiteral("DIR")),
             expected);
}

/// A target is found in the table by its name; its shift and that of its stack are alike.
void tst_StackTargets::shiftsOfTheTable()
{
    const QByteArray table = "file,shift\nref1.dat,0\nref2.dat,0\nblank.dat,0\nscans/35.dat,0\n";
    m_folder->write("shifts.csv", table + "grain 1,0.5\nall,0\n");
    writeJob(grain + whole + "[alignment]\nshifts = \"shifts.csv\"\n");
    QCOMPARE(m_folder->run().status, 0);
    const double a = figure("grain 1", "a");
    QCOMPARE(figure("grain 1", "shift"), 0.5);
    const double unshifted = figure("all", "a");
    writeJob(grain + "shift = 0.5\n" + whole);
    QCOMPARE(m_folder->run().status, 0);
    QVERIFY(std::abs(figure("grain 1", "a") - a) < 1e-12);
    QCOMPARE(figure("all", "a"), unshifted);
    m_folder->write("shifts.csv", table);
    writeJob(grain + "[alignment]\nshifts = \"shifts.csv\"\n");
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QVERIFY2(output.errors.endsWith(QStringLiteral("shifts.csv has no shift of grain 1\n")),
             qPrintable(output.errors));
}

void tst_StackTargets::foilsByName()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("foil")));
    for (const char* const name : {"foil/ref1.dat", "foil/35.dat", "foil/grain 1.dat"})
        QVERIFY(QFile::copy(file("ref1.dat"), file(name)));
    const QByteArray alignment = "[alignment]\nfoil = \"foil/{name}.dat\"\nref2 = 0\nblank = 0\n";
    writeJob(grain + whole + alignment);
    QCOMPARE(m_folder->run().status, 1);
    QCOMPARE(text("grain 1", "refusal"), QString());
    QVERIFY(std::abs(figure("grain 1", "shift")) < 1e-6);
    QCOMPARE(text("all", "refusal"),
             QStringLiteral("cannot open foil/all.dat: there is no such file"));
    QVERIFY(QFile::copy(file("ref1.dat"), file("foil/all.dat")));
    QCOMPARE(calculated(), QStringList(QStringLiteral("all")));
    QCOMPARE(text("all", "refusal"), QString());
    QCOMPARE(m_folder
                 ->runPlainly({QStringLiteral("--replay"), QStringLiteral("results/run.sqlite"),
                               QStringLiteral("all")})
                 .text,
             QByteArray("all: the same\n"));
}

void tst_StackTargets::picturesAndReport()
{
    m_folder->write("job.toml",
                    contents(file("job.toml"))
                        .replace("folder = \"results\"\n",
                                 "folder = \"results\"\npictures = true\nhdf5 = true\n"));
    const BatchOutput output = m_folder->run();
    QVERIFY2(output.status == 0, qPrintable(output.errors));
    const auto files = m_folder->resultFiles();
    for (const char* const name : {"Target", "Muts", "M2M3"})
        QVERIFY2(
            files.contains(QStringLiteral("pictures/grain=201/%1.png").arg(QLatin1String(name))),
            name);
    QVERIFY(files[QStringLiteral("report.html")].contains("grain 1"));
    QVERIFY(files.contains(QStringLiteral("results.h5")));
}

void tst_StackTargets::nothingIsWrittenOverThem()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("results")));
    QVERIFY(QFile::link(file("scan.h5"), file("results/results.csv")));
    const QByteArray before = contents(file("scan.h5"));
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QVERIFY2(output.errors.endsWith(QStringLiteral(
                 "results.csv would be written over the stack of the target all\n")) ||
                 output.errors.endsWith(QStringLiteral(
                     "results.csv would be written over the stack of the target grain 1\n")),
             qPrintable(output.errors));
    QCOMPARE(contents(file("scan.h5")), before);
}

void tst_StackTargets::convertedTargets()
{
    m_folder->write("none.h5", "no stack");
    writeJob(grain + whole +
             "[[target]]\nname = \"none\"\nstack = \"none.h5\"\n[noise]\nmodel = "
             "\"counts\"\n");
    QCOMPARE(m_folder->run().status, 1);
    const BatchOutput converted = m_folder->run(
        {QStringLiteral("--convert"), QStringLiteral("--to"), QStringLiteral("window")});
    QCOMPARE(converted.status, 1);
    QVERIFY(converted.errors.contains(
        QStringLiteral("target grain 1: counts are not carried, and with them its noise\n")));
    const QString none = QDir(m_folder->path()).filePath(QStringLiteral("none.h5"));
    QVERIFY2(converted.errors.contains(QStringLiteral("target none: ") + none +
                                       QStringLiteral(": is of no known kind; its file says so\n")),
             qPrintable(converted.errors));
    JobError error;
    const auto job = readJob(file("window/job.toml"), error);
    QVERIFY2(job, qPrintable(error.reason));
    QVERIFY(job->stackTargets.empty());
    QCOMPARE(job->targets.size(), std::size_t(4));
    QCOMPARE(job->targets[1].path, QStringLiteral("targets/grain 1.dat"));
    const double a = figure("grain 1", "a");
    const double fit = figure("all", "lcf_a");
    QCOMPARE(m_folder->runPlainly({QStringLiteral("window/job.toml")}).status, 1);
    QDir(file("results")).removeRecursively();
    QVERIFY(
        QDir(m_folder->path()).rename(QStringLiteral("window/results"), QStringLiteral("results")));
    QVERIFY(std::abs(figure("targets/grain 1.dat", "a") - a) < 1e-12);
    QVERIFY(std::abs(figure("targets/all.dat", "lcf_a") - fit) < 1e-9);
    QCOMPARE(text("targets/none.dat", "refusal"),
             QStringLiteral("no spectrum in targets/none.dat"));
}

QTEST_GUILESS_MAIN(tst_StackTargets)
#include "tst_StackTargets.moc"

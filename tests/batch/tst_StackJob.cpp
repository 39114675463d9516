#include "batch/JobData.h"
#include "batch/JobKey.h"
#include "batch/MapsRun.h"
#include "examples/AbsorptionModel.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "examples/StackFiles.h"
#include "formats/StackProcess.h"
#include "tests/support/Files.h"
#include "tests/support/PlainCsv.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

/// Jobs whose data come in the formats of others.
class tst_StackJob : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void everyLayoutGivesTheSame_data();
    void everyLayoutGivesTheSame();
    void exampleOfEachLayout();
    void pointOutsideIsRefused();
    void missingStack();
    void stackThatIsThereOrNotYet();
    void tiltedBeam();
    void keyHasTheStack();
    void spectraOfOthers_data();
    void spectraOfOthers();
    void fluorescenceIsWarnedOf();
    void spectrumIsRefusedWithItsLine();

private:
    QTemporaryDir m_dir;
};

namespace
{

const QByteArray conditions = "\n[conditions]\nthickness = \"sum-by-sum\"\n"
                              "references_minus_victreen = false\n"
                              "[output]\nfolder = \"out\"\nreport = false\n";
const QByteArray points = "[[point]]\nenergy = 8313\n[[point]]\nenergy = 8381\n[[point]]\nenergy = "
                          "8390\nv_point = true\n[[point]]\nenergy = 8404.5\n";
const QByteArray files =
    "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = \"blank.dat\"\n";

Job jobOf(const QByteArray& text, const QString& folder)
{
    JobError error;
    const auto job = parseJob(text, folder, error);
    if (!job)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    return *job;
}

/// `a` of each pixel, from the result file: the third number of its lines.
std::vector<double> fractionsIn(const QString& path)
{
    std::vector<double> a;
    for (const QByteArray& line : contents(path).split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (words.size() >= 5 && !line.startsWith('#'))
            a.push_back(words[2].toDouble());
    }
    return a;
}

MapOutcome outcomeOf(const Job& job)
{
    JobError error;
    const auto common = readJobData(job, error);
    if (!common)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    const auto maps = mapList(job, error);
    if (!maps)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    return analyseMap(job, *common, maps->front(), Workers::shared());
}

/// What the stored numbers give, in double precision.
/// @param single  of transmissions in float32
std::vector<double> fractionsOf(const CountedStack& stack, const Job& job, bool single)
{
    JobError error;
    const auto common = readJobData(job, error);
    if (!common)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    std::vector<double> muts = stack.mut();
    const std::vector<float> transmission = stack.transmission();
    for (std::size_t i = 0; single && i < muts.size(); ++i)
        muts[i] = -std::log(static_cast<double>(transmission[i]));
    std::vector<MapSource> sources(common->input.table.size());
    const auto positions = std::make_shared<MapPositions>();
    if (!positions->resize(stack.pixels()))
        qFatal("no memory");
    for (std::size_t k = 0; k < stack.energies.size(); ++k)
        sources[k] = {true,
                      {muts.data() + k * stack.pixels(), stack.pixels(), stack.columns},
                      stack.columns,
                      stack.rows,
                      positions};
    MapResults results;
    HistogramCounts valence;
    HistogramCounts thickness;
    mapResult(common->input, sources, results,
              {valence, thickness, common->settings.valenceHistogram,
               common->settings.thicknessHistogram, common->settings.valences});
    return {results.a.begin(), results.a.end()};
}

} // namespace

void tst_StackJob::initTestCase()
{
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    QVERIFY(writeSample(m_dir.path(), MixedSample(), std::nullopt).isEmpty());
    MapSample map;
    map.columns = 11;
    map.rows = 7;
    const CountedStack stack = countedStack(map, mapEnergies());
    const auto path = [this](const char* name) { return m_dir.filePath(QLatin1String(name)); };
    QVERIFY(writeFxi(path("fxi.h5"), stack));
    QVERIFY(writeExchange(path("exchange.h5"), stack));
    QVERIFY(writeExchange(path("last.h5"), stack, true));
    QVERIFY(writeMistral(path("mistral.hdf5"), stack));
    QVERIFY(writeNxdata(path("nexus.nxs"), stack));
    QVERIFY(writeTiffStack(path("pages.tif"), stack));
    QVERIFY(writeImgStack(path("scan.dat"), stack));
    QVERIFY(writeHisStack(path("scan.his"), stack));
}

void tst_StackJob::everyLayoutGivesTheSame_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::newRow("fxi") << QByteArray("stack = \"fxi.h5\"");
    QTest::newRow("exchange") << QByteArray("stack = \"exchange.h5\"\nkind = \"exchange\"");
    QTest::newRow("energies last") << QByteArray("stack = \"last.h5\"");
    QTest::newRow("mistral") << QByteArray("stack = \"mistral.hdf5\"");
    QTest::newRow("nxdata") << QByteArray("stack = \"nexus.nxs\"\nvalues = \"mu-t\"");
    QTest::newRow("paths") << QByteArray(
        "stack = \"exchange.h5\"\ndata = \"/exchange/data\"\nenergies = \"pages.txt\"\nvalues = "
        "\"counts\"\nflat = \"/exchange/data_white\"\ndark = \"/exchange/data_dark\"");
    QTest::newRow("tiff") << QByteArray("stack = \"pages.tif\"\nvalues = \"counts\"\nflat = "
                                        "\"pages-flat.tif\"\ndark = \"pages-dark.tif\"");
    QTest::newRow("img") << QByteArray("stack = \"scan.dat\"\nreference = \"scan.dat.ref\"");
    QTest::newRow("his") << QByteArray("stack = \"scan.his\"\nenergies = \"pages.txt\"\nflat = "
                                       "\"scan.his.flat\"\ndark = \"scan.his.dark\"");
}

/// The same `a` from each, to the six digits of the result file.
void tst_StackJob::everyLayoutGivesTheSame()
{
    QFETCH(QByteArray, keys);
    const bool single = keys.contains("fxi") || keys.contains("mistral");
    const Job job =
        jobOf("[[map]]\nname = \"m\"\n" + keys + '\n' + points + files + conditions, m_dir.path());
    const MapOutcome outcome = outcomeOf(job);
    QCOMPARE(outcome.row.refusal, QString());
    QCOMPARE(outcome.row.columns, 11);
    QCOMPARE(outcome.row.rows, 7);
    MapSample map;
    map.columns = 11;
    map.rows = 7;
    const auto expected = fractionsOf(countedStack(map, mapEnergies()), job, single);
    const auto found = fractionsIn(m_dir.filePath(QStringLiteral("out/maps/m/m.dat")));
    QCOMPARE(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        QVERIFY2(
            std::abs(found[i] - expected[i]) < (found[i] < 1.0 ? 1e-6 : 6e-6),
            qPrintable(QStringLiteral("%1: %2, not %3").arg(i).arg(found[i]).arg(expected[i])));
    // And the truth, as far as counts of 16 bits show it.
    for (int x = 0; x < map.columns; ++x)
        QVERIFY(std::abs(found[static_cast<std::size_t>(x)] - map.fraction(x)) < 0.01);
}

using ReadBack = QMap<QByteArray, QByteArrayList>;

/// Of the pixels whose t/ts is known to a third, as they say themselves.
double meanSigma(const ReadBack& found, const QByteArray& map)
{
    const auto of = [&](const char* data) {
        return found['/' + map + '/' + data + " float64 (16, 24)"];
    };
    const QByteArrayList t = of("t_ts/t_ts");
    const QByteArrayList sigmaT = of("t_ts/t_ts_errors");
    const QByteArrayList sigma = of("valence/valence_errors");
    double sum = 0.0;
    int count = 0;
    for (int i = 0; i < sigma.size(); ++i)
        if (sigmaT[i].toDouble() <= t[i].toDouble() / 3.0) {
            sum += sigma[i].toDouble() * sigma[i].toDouble();
            ++count;
        }
    return std::sqrt(sum) / count;
}

double meanSigmaInTable(const QDir& place, const QByteArray& map)
{
    const QByteArrayList lines =
        contents(place.filePath(QStringLiteral("results/maps.csv"))).split('\n');
    const int column = lines.first().split(',').indexOf("sigma_valence_mean");
    for (const QByteArray& line : lines)
        if (line.startsWith(map + ','))
            return line.split(',')[column].toDouble();
    return std::nan("");
}

/// The shipped job, run as a user does; read by others' reader, with all digits.
void tst_StackJob::exampleOfEachLayout()
{
    const QDir place(m_dir.filePath(QStringLiteral("example")));
    const MapSample map;
    QCOMPARE(writeStackExample(place.path(), map), QString());
    const QString path = place.filePath(QStringLiteral("job.toml"));
    QVERIFY(QFile::copy(QStringLiteral(SOURCE_FOLDER "/examples/stack-job.toml"), path));
    QProcess program;
    program.start(QStringLiteral(BATCH_PROGRAM), {path});
    QVERIFY(program.waitForFinished(60000));
    QCOMPARE(program.exitCode(), 0);
    QProcess reader;
    reader.start(QStringLiteral(SOURCE_FOLDER "/tests/batch/read_outputs"),
                 {place.filePath(QStringLiteral("results/results.h5"))});
    QVERIFY(reader.waitForFinished());
    ReadBack found;
    for (const QByteArray& line : reader.readAllStandardOutput().split('\n'))
        found[line.left(line.indexOf(": "))] = line.mid(line.indexOf(": ") + 2).split(' ');
    JobError error;
    const auto job = readJob(path, error);
    QVERIFY(job);
    QCOMPARE(job->maps.size(), std::size_t(8));
    const CountedStack stack = countedStack(map, mapEnergies());
    for (const JobMap& given : job->maps) {
        const QByteArray name = given.name.toUtf8();
        const bool single = name == "fxi" || name == "mistral";
        const auto expected = fractionsOf(stack, *job, single);
        const QByteArrayList a = found['/' + name + "/a/a float64 (16, 24)"];
        QCOMPARE(std::size_t(a.size()), expected.size());
        for (int i = 0; i < a.size(); ++i) {
            const double value = a[i].toDouble();
            QVERIFY2(std::abs(value - expected[std::size_t(i)]) < 1e-6, name.constData());
            QVERIFY2(std::abs(value - map.fraction(i % map.columns)) < 0.01, name.constData());
        }
        // Errors come from counts.
        const QByteArrayList sigmas = found['/' + name + "/a/a_errors float64 (16, 24)"];
        const bool counted = !single && name != "nxdata";
        QCOMPARE(sigmas.size(), counted ? a.size() : 0);
        QCOMPARE(found['/' + name + "/valence/valence_errors float64 (16, 24)"], sigmas);
        if (counted)
            QVERIFY2(std::abs(meanSigma(found, name) - meanSigmaInTable(place, name)) < 1e-7,
                     name.constData());
    }
    QCOMPARE(found["/mistral/pixel_size@units"], QByteArrayList{"um"});
    // The region's middle column; over three the curve of the logarithm of means shows little.
    const auto results =
        plainCsv::read(contents(place.filePath(QStringLiteral("results/results.csv"))));
    QCOMPARE(plainCsv::column(results, QStringLiteral("target")),
             QStringList(QStringLiteral("columns 5 to 7")));
    QVERIFY(std::abs(plainCsv::numbers(results, QStringLiteral("a")).value(0) - map.fraction(6)) <
            5e-4);
}

void tst_StackJob::pointOutsideIsRefused()
{
    const Job job = jobOf("[[map]]\nname = \"m\"\nstack = \"fxi.h5\"\nshift = 10\n" + points +
                              files + conditions,
                          m_dir.path());
    QCOMPARE(
        outcomeOf(job).row.refusal,
        QStringLiteral("fxi.h5: 8313 eV is outside of the stack, which has 8323 to 8414.5 eV"));
}

/// The text of its energies, which is there, is no stack.
void tst_StackJob::missingStack()
{
    for (const QByteArray& keys : {QByteArray(), QByteArray("energies = \"pages.txt\"\n")}) {
        const Job job = jobOf("[[map]]\nname = \"m\"\nstack = \"none.h5\"\n" + keys + points +
                                  files + conditions,
                              m_dir.path());
        JobError error;
        QVERIFY(!mapList(job, error));
        QCOMPARE(errorText(QStringLiteral("job"), error),
                 QStringLiteral("job:3:9: map.stack: there is no file ") +
                     m_dir.filePath(QStringLiteral("none.h5")));
        QVERIFY(presentMaps(job).empty());
    }
}

/// While files are still coming.
void tst_StackJob::stackThatIsThereOrNotYet()
{
    const Job job = jobOf("[[map]]\nname = \"m\"\nstack = \"fxi.h5\"\nshift = 2\n[[map]]\nname "
                          "= \"n\"\nstack = \"not-yet.h5\"\n" +
                              points + files + conditions,
                          m_dir.path());
    const std::vector<MapJob> maps = presentMaps(job);
    QCOMPARE(maps.size(), std::size_t(1));
    QCOMPARE(maps.front().name, QStringLiteral("m"));
    QVERIFY(maps.front().stack);
    QCOMPARE(maps.front().stack->source.shift, 2.0);
}

/// A reference measured in steps so fine that a line between two points is the spectrum.
QByteArray fineReference(Measurement measurement)
{
    QByteArray text = "# energy xmu\n";
    for (double energy = 8300; energy < 8500; energy += 0.03125)
        text += QByteArray::number(energy, 'g', 17) + ' ' +
                QByteArray::number(muT(MixedSample(), measurement, energy), 'g', 17) + '\n';
    return text;
}

/// A beam of 2 eV from the first row to the last, a sample of one composition: the drift of `a`
/// over the rows goes where the references are read row by row.
void tst_StackJob::tiltedBeam()
{
    constexpr int rows = 41;
    constexpr double fraction = 0.4;
    CountedStack stack;
    stack.columns = 3;
    stack.rows = rows;
    stack.energies = {8305, 8315, 8376, 8475}; // alike in both states for some eV, V point aside
    for (const double energy : stack.energies)
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < 3; ++x) {
                using absorption::State;
                const double e = energy + 0.05 * (y - 20);
                const double mut = 0.5 * (fraction * absorption::ofState(State::Two, e) +
                                          (1 - fraction) * absorption::ofState(State::Three, e));
                stack.flats.push_back(60000);
                stack.counts.push_back(
                    static_cast<std::uint16_t>(std::lround(60000 * std::exp(-mut))));
            }
    stack.dark.assign(stack.pixels(), 0);
    create(m_dir.filePath(QStringLiteral("fine1")), fineReference(Measurement::Ref1));
    create(m_dir.filePath(QStringLiteral("fine2")), fineReference(Measurement::Ref2));
    create(m_dir.filePath(QStringLiteral("fineb")), fineReference(Measurement::Blank));
    const QByteArray fine = "[files]\nref1 = \"fine1\"\nref2 = \"fine2\"\nblank = \"fineb\"\n";
    QVERIFY(writeExchange(m_dir.filePath(QStringLiteral("tilted.h5")), stack));
    const QByteArray flat =
        "point = [{ energy = 8305 }, { energy = 8315 }, { energy = 8376, v_point "
        "= true }, { energy = 8475 }]\n";
    MapMean mean;
    const auto drift = [&](const QByteArray& keys) {
        const Job job = jobOf(flat + "[[map]]\nname = \"t\"\nstack = \"tilted.h5\"\ndark = 0\n" +
                                  keys + fine + conditions,
                              m_dir.path());
        const MapOutcome outcome = outcomeOf(job);
        const auto a = fractionsIn(m_dir.filePath(QStringLiteral("out/maps/t/t.dat")));
        if (!outcome.row.refusal.isEmpty() || a.empty())
            qFatal("%s", qPrintable(outcome.row.refusal));
        mean = outcome.row.mean.value_or(MapMean());
        const auto [least, most] = std::minmax_element(a.begin(), a.end());
        return *most - *least;
    };
    QVERIFY2(drift({}) > 0.05, qPrintable(QString::number(drift({}))));
    const double left = drift("tilt_ev_per_row = 0.05\nrow0 = 20\n");
    QVERIFY2(left < 0.005, qPrintable(QString::number(left)));
    // Rows count from the first of the stack, whatever region is taken.
    const double ofRegion = drift("tilt_ev_per_row = 0.05\nrow0 = 20\nregion = { x = 1, y = 30, "
                                  "width = 2, height = 11 }\n");
    QVERIFY2(ofRegion < 0.005, qPrintable(QString::number(ofRegion)));
    // Row by row, next to no tilt gives the deviations of none, with the counts of each row.
    drift({});
    const MapMean whole = mean;
    drift("tilt_ev_per_row = 1e-9\n");
    QVERIFY(whole.sigmaA > 0.0 && whole.sigmaT > 0.0);
    QVERIFY(std::abs(mean.sigmaA / whole.sigmaA - 1.0) < 1e-6);
    QVERIFY(std::abs(mean.sigmaT / whole.sigmaT - 1.0) < 1e-6);
}

void tst_StackJob::keyHasTheStack()
{
    const auto key = [this](const QByteArray& keys) {
        const Job job = jobOf("[[map]]\nname = \"m\"\nstack = \"fxi.h5\"\n" + keys + points +
                                  files + conditions,
                              m_dir.path());
        JobError error;
        return keyOfMap(Digest(), mapList(job, error)->front(), {});
    };
    const Digest plain = key({});
    QVERIFY(plain == key({}));
    for (const char* const other :
         {"shift = 1\n", "dark = 1\n", "dark = 0\n", "tilt_ev_per_row = 0.1\n", "row0 = 1\n",
          "kind = \"fxi\"\n", "values = \"mu-t\"\n", "pixel_size = 2\n", "flat = \"/a\"\n",
          "region = { width = 2, height = 2 }\n"})
        QVERIFY2(plain != key(other), other);
}

void tst_StackJob::spectraOfOthers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("value");
    QByteArray xdi =
        "# XDI/1.0\n# Column.1: energy eV\n# Column.2: i0\n# Column.3: itrans\n# ---\n";
    QByteArray csv;
    for (const ScanStep& step : scan(MixedSample(), Measurement::Ref1, std::nullopt)) {
        const auto number = [](double value) { return QByteArray::number(value, 'g', 17); };
        xdi += number(step.energy) + ' ' + number(step.incident) + ' ' + number(step.transmitted) +
               '\n';
        csv += number(std::log(step.incident / step.transmitted)) + ',' +
               number(step.energy / 1000) + '\n';
    }
    QTest::newRow("XDI") << xdi << QByteArray("\"other\"");
    QTest::newRow("columns") << csv
                             << QByteArray("{ file = \"other\", columns = { energy = 2, mut = 1 }, "
                                           "unit = \"keV\" }");
}

/// A reference in another format is the same reference.
void tst_StackJob::spectraOfOthers()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, value);
    create(m_dir.filePath(QStringLiteral("other")), text);
    JobError error;
    const auto own = readJobData(jobOf("files.ref1 = \"ref1.dat\"\n", m_dir.path()), error);
    const auto other = readJobData(jobOf("files.ref1 = " + value + '\n', m_dir.path()), error);
    QVERIFY2(other, qPrintable(error.reason));
    const SpectrumPoints& a = own->spectra[SpectrumSet::Ref1]->points;
    const SpectrumPoints& b = other->spectra[SpectrumSet::Ref1]->points;
    QCOMPARE(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        QVERIFY(std::abs(a[i].energy - b[i].energy) < 1e-5);
        QVERIFY(std::abs(a[i].mut - b[i].mut) < 1e-8); // the beamline's text has one decimal
    }
}

void tst_StackJob::fluorescenceIsWarnedOf()
{
    create(m_dir.filePath(QStringLiteral("f.xdi")),
           "# XDI/1.0\n# Column.1: energy eV\n# Column.2: mufluor\n8000 1\n9000 2\n");
    JobError error;
    const auto data = readJobData(jobOf("files.ref1 = \"f.xdi\"\n", m_dir.path()), error);
    QVERIFY(data);
    QCOMPARE(data->warnings[SpectrumSet::Ref1],
             QStringList(QStringLiteral("this is fluorescence, of no known thickness: fit for the "
                                        "linear combination fit and three points, not for t/ts")));
}

void tst_StackJob::spectrumIsRefusedWithItsLine()
{
    const QString path = m_dir.filePath(QStringLiteral("bad.xdi"));
    create(path, "# XDI/1.0\n# energy xmu\n8000 1\n8001\n");
    JobError error;
    QVERIFY(!readJobData(jobOf("files.ref1 = \"bad.xdi\"\n", m_dir.path()), error));
    QCOMPARE(errorText(QStringLiteral("job"), error),
             QStringLiteral("job:1:14: files.ref1: ") + path +
                 QStringLiteral(":4: has 1 numbers where line 3 has 2"));
}

QTEST_GUILESS_MAIN(tst_StackJob)
#include "tst_StackJob.moc"

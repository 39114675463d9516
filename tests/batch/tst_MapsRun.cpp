#include "batch/MapsRun.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

namespace
{

constexpr int columns = 24;
constexpr int rows = 16;

double number(const QByteArray& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? value : std::nan("");
}

/// Standard deviation of n values from 0 to 1 in equal steps, each of them k times.
double evenDeviation(int n, int k)
{
    const double variance = (n + 1.0) / (12.0 * (n - 1.0)); // (n² - 1) / 12 steps of 1 / (n - 1)
    const double count = static_cast<double>(n) * k;
    return std::sqrt(variance * count / (count - 1.0));
}

} // namespace

/// Maps of known truth, analysed for a folder of results.
class tst_MapsRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void rowHoldsTheTruth();
    void columnsAndRefusedRow();
    void sigmaOfTheMean_data();
    void sigmaOfTheMean();
    void commonPartDoesNotShrink();
    void noiseThatIsNotKnown_data();
    void noiseThatIsNotKnown();
    void pixelsThatMeanNothing();
    void filesAreThoseOfTheMap();
    void nothingIsWrittenWithoutMapFiles();
    void picturesOfTheMap_data();
    void picturesOfTheMap();
    void pictureThatCannotBeWritten();
    void threadsChangeNothing();
    void badImageRefusesTheMap_data();
    void badImageRefusesTheMap();
    void pointWithoutImageIsNotUsed();
    void patternLeavesOutWhatIsNotUsed();
    void missingFiles_data();
    void missingFiles();
    void settingsOfTheHistogram();
    void scanThatWasStopped();
    void mapWithoutANumber();
    void doubts();
    void imagesOfSeveralGrids();
    void fractionsFarOutside();
    void folderThatCannotBe();
    void manyMapsInTheirOrder();
    void runEndsWhereItIsEnded();

private:
    QString in(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }
    /// A job with its maps, on the files of the example.
    Job job(const QByteArray& maps, const QByteArray& more = {}) const;
    MapOutcome analysed(const Job& job, unsigned threads = 2) const;
    /// A field of the row by the name of its column.
    static QByteArray field(const MapRow& row, const char* column)
    {
        return mapFields(row).value(mapColumns().indexOf(column));
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_MapsRun::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    MapSample sample;
    sample.columns = columns;
    sample.rows = rows;
    QCOMPARE(writeSample(m_dir->path(), sample.sample, std::nullopt), QString());
    QCOMPARE(writeMap(m_dir->path(), sample), QString());
}

Job tst_MapsRun::job(const QByteArray& maps, const QByteArray& more) const
{
    create(in("job.toml"), maps +
                               "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
                               "blank = \"blank.dat\"\n"
                               "[conditions]\nthickness = \"sum-by-sum\"\n"
                               "references_minus_victreen = false\n"
                               "[[point]]\nenergy = 8313\n[[point]]\nenergy = 8381\n"
                               "[[point]]\nenergy = 8390\nv_point = true\n"
                               "[[point]]\nenergy = 8404.5\n"
                               "[output]\nfolder = \"results\"\nreport = false\n" +
                               more);
    JobError error;
    const std::optional<Job> made = readJob(in("job.toml"), error);
    if (!made)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    return *made;
}

MapOutcome tst_MapsRun::analysed(const Job& job, unsigned threads) const
{
    JobError error;
    const auto maps = mapList(job, error);
    const auto common = readJobData(job, error);
    if (!maps || !common)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    Workers workers(threads);
    return analyseMap(job, *common, maps->front(), workers);
}

const QByteArray area = "[[map]]\nname = \"area 1\"\npattern = \"map_{row}.dat\"\n";

/// The fraction rises evenly from the first column to the last, t/ts from the first row, where it
/// is a quarter.
void tst_MapsRun::rowHoldsTheTruth()
{
    const MapRow row = analysed(job(area)).row;
    QCOMPARE(row.refusal, QString());
    QVERIFY(row.isGood());
    QCOMPARE(row.warnings, QStringList());
    QCOMPARE(row.messages.size(), 1);
    QVERIFY(row.messages.front().startsWith(QStringLiteral("sbys = ")));
    QCOMPARE(field(row, "map"), QByteArray("area 1"));
    QCOMPARE(field(row, "method"), QByteArray("4ps2"));
    QCOMPARE(field(row, "columns"), QByteArray("24"));
    QCOMPARE(field(row, "rows"), QByteArray("16"));
    QCOMPARE(field(row, "pixels"), QByteArray("384"));
    QCOMPARE(field(row, "missing"), QByteArray("0"));
    const double tolerance = 5e-5; // of the references' six digits
    QVERIFY(std::abs(number(field(row, "valence_mean")) - 2.5) < tolerance);
    QVERIFY(std::abs(number(field(row, "valence_median")) - 2.5) < tolerance);
    QVERIFY(std::abs(number(field(row, "valence_sd")) - evenDeviation(columns, rows)) < tolerance);
    QVERIFY(std::abs(number(field(row, "t_mean")) - 0.625) < tolerance);
    QVERIFY(std::abs(number(field(row, "t_median")) - 0.625) < tolerance);
    QVERIFY(std::abs(number(field(row, "t_sd")) - 0.75 * evenDeviation(rows, columns)) < tolerance);
    QCOMPARE(field(row, "below"), QByteArray("0"));
    QCOMPARE(field(row, "above"), QByteArray("0"));
    QCOMPARE(field(row, "refusal"), QByteArray());
    // The shortest text that reads back.
    const QByteArray mean = field(row, "valence_mean");
    QCOMPARE(mean, QByteArray::number(mean.toDouble(), 'g', QLocale::FloatingPointShortest));
}

void tst_MapsRun::columnsAndRefusedRow()
{
    QCOMPARE(mapColumns().join(','),
             QByteArray("map,method,columns,rows,pixels,missing,valence_mean,valence_median,"
                        "valence_sd,t_mean,t_median,t_sd,below,above,sigma_valence_mean,"
                        "sigma_valence_mean_ref,sigma_t_mean,sigma_t_mean_ref,t_bias,refusal"));
    MapRow row;
    row.map = QStringLiteral("鉄");
    row.refusal = QStringLiteral("no, none");
    QCOMPARE(mapFields(row).join('|'), QByteArray("鉄|||||||||||||||||||no, none"));
    QVERIFY(!row.isGood());
}

void tst_MapsRun::sigmaOfTheMean_data()
{
    QTest::addColumn<QByteArray>("noise");
    QTest::addColumn<bool>("counts");
    QTest::addColumn<double>("gain0");
    QTest::addColumn<double>("gain");
    QTest::addRow("counts") << QByteArray() << true << 1.0 << 1.0;
    QTest::addRow("gains") << QByteArray("[noise]\nmodel = \"counts\"\ngain0 = 2\ngain = 5\n"
                                         "map_scatter = 0.003\n")
                           << true << 2.0 << 5.0;
    QTest::addRow("scatter") << QByteArray("[noise]\nmap_scatter = 0.003\n") << false << 0.0 << 0.0;
}

/// Three points: with q = (V - T0) / (T1 - T0) and a = (q - x2) / (x1 - x2), the derivatives of q
/// by V, T1 and T0 are 1, -q and q - 1 over T1 - T0; those of t by T1 and T0 are opposite.
void tst_MapsRun::sigmaOfTheMean()
{
    QFETCH(QByteArray, noise);
    QFETCH(bool, counts);
    QFETCH(double, gain0);
    QFETCH(double, gain);
    Job made = job(area, noise);
    (*made.points)[1].use = false;
    const MapRow row = analysed(made).row;
    QCOMPARE(row.method, Method::ThreePoint);
    JobError error;
    const auto data = readJobData(made, error);
    QVERIFY(data);
    const PointRow& low = data->input.table[0];
    const PointRow& v = data->input.table[2];
    const PointRow& high = data->input.table[3];
    const auto scaled = [&](auto reference) {
        return (reference(v) - reference(low)) / (reference(high) - reference(low));
    };
    const double difference = scaled([](const PointRow& r) { return r.reference1(); }) -
                              scaled([](const PointRow& r) { return r.reference2(); });
    const double stepOfReferences =
        0.5 * (2.0 * high.reference1() - low.reference1() - low.reference2());
    const MapSample sample;
    double variance = 0.0;
    double varianceT = 0.0;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x) {
            const auto mut = [&](double energy) { return sample.muT(x, y, energy); };
            const auto of = [&](double energy) {
                return counts ? (gain0 + gain * std::exp(mut(energy))) / 1e6 : 9e-6;
            };
            const double step = mut(8404.5) - mut(8313);
            const double q = (mut(8390) - mut(8313)) / step;
            const double perA = 1.0 / (step * difference);
            variance +=
                (of(8390) + q * q * of(8404.5) + (1.0 - q) * (1.0 - q) * of(8313)) * perA * perA;
            varianceT += (of(8404.5) + of(8313)) / (stepOfReferences * stepOfReferences);
        }
    const auto isNear = [&](const char* column, double expected) {
        return std::abs(number(field(row, column)) / expected - 1.0) < 2e-4;
    };
    QVERIFY(isNear("sigma_valence_mean", std::sqrt(variance) / (rows * columns)));
    QVERIFY(isNear("sigma_t_mean", std::sqrt(varianceT) / (rows * columns)));
    QCOMPARE(field(row, "t_bias"), QByteArray("0"));
    QCOMPARE(row.warnings, QStringList());
}

/// Four times as many pixels: half the own part, and the same of the references.
void tst_MapsRun::commonPartDoesNotShrink()
{
    const MapRow small = analysed(job(area)).row;
    MapSample large;
    large.columns = 2 * columns;
    large.rows = 2 * rows;
    QCOMPARE(writeMap(m_dir->path(), large), QString());
    const MapRow row = analysed(job(area)).row;
    for (const QByteArray& what : {QByteArray("valence"), QByteArray("t")}) {
        const auto ratio = [&](const char* ending) {
            const QByteArray column = "sigma_" + what + "_mean" + ending;
            return number(field(row, column)) / number(field(small, column));
        };
        QVERIFY(std::abs(ratio("") - 0.5) < 0.02);
        QVERIFY(std::abs(ratio("_ref") - 1.0) < 0.02);
    }
}

void tst_MapsRun::noiseThatIsNotKnown_data()
{
    QTest::addColumn<QByteArray>("noise");
    QTest::addColumn<bool>("oneIntensity");
    QTest::addColumn<bool>("known");
    QTest::addRow("one intensity") << QByteArray() << true << false;
    QTest::addRow("one intensity, counts wanted")
        << QByteArray("[noise]\nmodel = \"counts\"\n") << true << false;
    QTest::addRow("one intensity, scatter")
        << QByteArray("[noise]\nmap_scatter = 0.001\n") << true << true;
    QTest::addRow("no model") << QByteArray("[noise]\nmodel = \"none\"\nmap_scatter = 0.001\n")
                              << false << false;
}

void tst_MapsRun::noiseThatIsNotKnown()
{
    QFETCH(QByteArray, noise);
    QFETCH(bool, oneIntensity);
    QFETCH(bool, known);
    for (int i = 0; oneIntensity && i < 4; ++i) {
        const QString path = m_dir->filePath(mapFileName(i));
        QByteArray image;
        for (const QByteArray& line : contents(path).split('\n')) {
            const QByteArrayList tokens = line.simplified().split(' ');
            image += line.startsWith('#') || tokens.size() < 4
                         ? line
                         : tokens[0] + ' ' + tokens[1] + ' ' +
                               QByteArray::number(tokens[2].toDouble() / tokens[3].toDouble());
            image += '\n';
        }
        create(path, image);
    }
    const MapRow row = analysed(job(area, noise)).row;
    QCOMPARE(row.refusal, QString());
    for (const char* column : {"sigma_valence_mean", "sigma_valence_mean_ref", "sigma_t_mean",
                               "sigma_t_mean_ref", "t_bias"})
        QCOMPARE(!field(row, column).isEmpty(), known);
}

/// A row of the map has next to nothing in the beam.
void tst_MapsRun::pixelsThatMeanNothing()
{
    const double before = number(field(analysed(job(area)).row, "sigma_t_mean"));
    for (int i = 0; i < 4; ++i) {
        const QString path = m_dir->filePath(mapFileName(i));
        const QByteArray image = contents(path);
        const QByteArray rest = image.mid(image.indexOf("\n\n"));
        QByteArray empty = image.left(image.indexOf("\n\n"));
        const int first = empty.lastIndexOf("#");
        QByteArrayList lines = empty.mid(empty.indexOf('\n', first) + 1).split('\n');
        empty = empty.left(empty.indexOf('\n', first) + 1);
        for (QByteArray& line : lines)
            if (const QByteArrayList tokens = line.simplified().split(' '); tokens.size() == 4)
                line = tokens[0] + ' ' + tokens[1] + " 1000" + QByteArray::number(i) + " 10000";
        create(path, empty + lines.join('\n') + rest);
    }
    const MapRow row = analysed(job(area)).row;
    const QStringList warnings = row.warnings;
    QCOMPARE(warnings.size(), 1);
    const QString begin =
        QStringLiteral("the valence of 24 of 384 pixels means nothing: their t/ts "
                       "is not known to a third; the mean of the others is ");
    QVERIFY2(warnings[0].startsWith(begin), qPrintable(warnings[0]));
    // The images have no noise, but the bias of such counts is taken out.
    const double mean = warnings[0].mid(begin.size()).toDouble();
    QVERIFY2(std::abs(mean - 2.5) < 5e-3, qPrintable(warnings[0]));
    QVERIFY(number(field(row, "sigma_t_mean")) < 1.5 * before);
}

void tst_MapsRun::filesAreThoseOfTheMap()
{
    const MapOutcome outcome = analysed(job(area));
    const QStringList expected{in("results/maps/area 1/area 1.dat"),
                               in("results/maps/area 1/area 1_HGAlpha.dat"),
                               in("results/maps/area 1/area 1_HGThick.dat")};
    QCOMPARE(outcome.files, expected);
    QVERIFY(!outcome.fileFailed);
    QCOMPARE(outcome.failure, QString());
    QCOMPARE(QDir(in("results/maps/area 1"))
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({QStringLiteral("area 1.dat"), QStringLiteral("area 1_HGAlpha.dat"),
                          QStringLiteral("area 1_HGThick.dat")}));
    // The header of the V point's image, an empty line, a line a pixel, one behind each row.
    const QByteArray text = contents(expected[0]);
    const QByteArray header = mapHeader(MapSample(), 8390.0);
    QVERIFY(text.startsWith(header.trimmed() + "\n\n "));
    const int headerLines = header.trimmed().count('\n') + 1;
    QCOMPARE(text.count('\n'), headerLines + 1 + columns * rows + rows);
    // Below, 41 boxes, above.
    QCOMPARE(contents(expected[1]).count('\n'), 43);
    QCOMPARE(contents(expected[2]).count('\n'), 43);
}

void tst_MapsRun::nothingIsWrittenWithoutMapFiles()
{
    const MapOutcome outcome = analysed(job(area, "map_files = false\n"));
    QCOMPARE(outcome.row.refusal, QString());
    QCOMPARE(outcome.files, QStringList());
    QVERIFY(!QFileInfo::exists(in("results")));
}

void tst_MapsRun::picturesOfTheMap_data()
{
    QTest::addColumn<bool>("pictures");
    QTest::addColumn<bool>("report");
    QTest::addColumn<bool>("three");
    QTest::newRow("pictures") << true << false << false;
    QTest::newRow("report") << false << true << false;
    QTest::newRow("neither") << false << false << false;
    QTest::newRow("three points") << true << true << true;
}

/// The report shows the pictures, so that they are there for it, too.
void tst_MapsRun::picturesOfTheMap()
{
    QFETCH(bool, pictures);
    QFETCH(bool, report);
    QFETCH(bool, three);
    Job made = job(area, "map_files = false\n");
    made.pictures = pictures;
    made.report = report;
    (*made.points)[1].use = !three;
    QCOMPARE(made.drawsMaps(), pictures || report);
    const MapOutcome outcome = analysed(made);
    QStringList expected;
    for (const char* name :
         {"valence", "thickness", "valence-by-thickness", "histogram-valence",
          "histogram-thickness", "t-a", "valence-masked", "sigma-valence", "sigma-thickness"}) {
        const QByteArray kind = name;
        const bool withoutThickness = kind != "t-a" && !kind.contains("thickness");
        if ((pictures || report) && (!three || withoutThickness))
            expected +=
                in("results/maps/area 1/area 1-") + QLatin1String(name) + QStringLiteral(".png");
    }
    QCOMPARE(outcome.files, expected);
    for (const QString& file : expected)
        QVERIFY2(contents(file).startsWith("\x89PNG"), qPrintable(file));
    QCOMPARE(outcome.readOut.isEmpty(), expected.isEmpty());
    QVERIFY(!outcome.fileFailed);
}

void tst_MapsRun::pictureThatCannotBeWritten()
{
    const QString picture = in("results/maps/area 1/area 1-t-a.png");
    QVERIFY(QDir().mkpath(picture));
    Job made = job(area);
    made.pictures = true;
    const MapOutcome outcome = analysed(made);
    QVERIFY(outcome.fileFailed);
    QCOMPARE(outcome.failure, QStringLiteral("Can't write the file [%1]").arg(picture));
    QCOMPARE(outcome.files.size(), 3 + 8);
    QCOMPARE(outcome.row.refusal, QString());
}

void tst_MapsRun::threadsChangeNothing()
{
    MapSample large;
    large.columns = 301;
    large.rows = 257;
    QCOMPARE(writeMap(m_dir->path(), large), QString());
    QList<QByteArrayList> fields;
    QList<QByteArray> files;
    for (const unsigned threads : {1U, 2U, 3U}) {
        const MapOutcome outcome = analysed(job(area), threads);
        fields += mapFields(outcome.row);
        QByteArray all;
        for (const QString& file : outcome.files)
            all += contents(file);
        files += all;
    }
    QVERIFY(files[0].size() > 301 * 257 * 50);
    for (int i : {1, 2}) {
        QCOMPARE(fields[i], fields[0]);
        QVERIFY(files[i] == files[0]);
    }
}

void tst_MapsRun::badImageRefusesTheMap_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("no axes") << QByteArray("1 2 3 4\n")
                             << QStringLiteral("no 2D data with axes in map_2.dat");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("no 2D data with axes in map_2.dat");
    QTest::newRow("gone") << QByteArray("gone")
                          << QStringLiteral("cannot open map_2.dat: there is no such file");
}

/// Four points are asked for; three would give a map, which nobody asked for.
void tst_MapsRun::badImageRefusesTheMap()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, refusal);
    const Job made = job(area);
    JobError error;
    const auto maps = mapList(made, error);
    const auto common = readJobData(made, error);
    QVERIFY(maps && common);
    if (image == "gone")
        QVERIFY(QFile::remove(in("map_2.dat")));
    else
        create(in("map_2.dat"), image);
    Workers workers(2);
    const MapOutcome outcome = analyseMap(made, *common, maps->front(), workers);
    QCOMPARE(outcome.row.refusal, refusal);
    QVERIFY(!outcome.row.isGood());
    QCOMPARE(mapFields(outcome.row).join('|'),
             "area 1|" + QByteArray(18, '|') + outcome.row.refusal.toUtf8());
    QCOMPARE(outcome.files, QStringList());
    QVERIFY(!QFileInfo::exists(in("results")));
}

void tst_MapsRun::pointWithoutImageIsNotUsed()
{
    const MapRow row = analysed(job("[[map]]\nname = \"three\"\n"
                                    "images = [\"map_1.dat\", \"\", \"map_3.dat\", "
                                    "\"map_4.dat\"]\n"))
                           .row;
    QCOMPARE(row.refusal, QString());
    QCOMPARE(field(row, "method"), QByteArray("3ps"));
    QCOMPARE(field(row, "missing"), QByteArray("0"));
    const MapRow two = analysed(job("[[map]]\nname = \"two\"\nimages = [\"\", \"\", \"map_3.dat\", "
                                    "\"map_4.dat\"]\n"))
                           .row;
    QCOMPARE(two.refusal, QStringLiteral("Number of selected data sets 2 is not 4."));
}

void tst_MapsRun::patternLeavesOutWhatIsNotUsed()
{
    Job made = job("[[map]]\nname = \"m\"\npattern = \"area_{energy}_{row}.dat\"\n");
    (*made.points)[1].use = false;
    for (const char* name : {"area_8313_1.dat", "area_8390_3.dat", "area_8404.5_4.dat"})
        QVERIFY(QFile::copy(in("map_1.dat"), in(name)));
    JobError error;
    const auto maps = mapList(made, error);
    QVERIFY2(maps, qPrintable(error.reason));
    QStringList images;
    for (const JobFilePath& image : maps->front().images)
        images += image.path;
    QCOMPARE(images, QStringList({in("area_8313_1.dat"), QString(), in("area_8390_3.dat"),
                                  in("area_8404.5_4.dat")}));
}

void tst_MapsRun::missingFiles_data()
{
    QTest::addColumn<QByteArray>("map");
    QTest::addColumn<QString>("expected");
    QTest::newRow("image") << QByteArray("[[map]]\nname = \"m\"\nimages = [\"map_1.dat\", "
                                         "\"map_9.dat\", \"map_3.dat\", \"\"]\n")
                           << QStringLiteral("job:3:24: map.images: there is no file "
                                             "DIR/map_9.dat for [[point]] 2");
    QTest::newRow("pattern") << area + "[[map]]\nname = \"m\"\npattern = \"map_{energy}.dat\"\n"
                             << QStringLiteral("job:6:11: map.pattern: there is no file "
                                               "DIR/map_8313.dat for [[point]] 1");
    QTest::newRow("folder") << QByteArray("[[map]]\nname = \"m\"\nimages = [\"map_1.dat\", "
                                          "\"\", \".\", \"\"]\n")
                            << QStringLiteral("job:3:28: map.images: there is no file DIR/. for "
                                              "[[point]] 3");
}

void tst_MapsRun::missingFiles()
{
    QFETCH(QByteArray, map);
    QFETCH(QString, expected);
    JobError error;
    QVERIFY(!mapList(job(map), error));
    QCOMPARE(errorText(QStringLiteral("job"), error),
             expected.replace(QStringLiteral("DIR"), m_dir->path()));
}

/// Boxes around 2.2, 2.4 and 2.6: of the 24 columns, from 3 to 2, those from 2.1 to 2.7 lie within.
void tst_MapsRun::settingsOfTheHistogram()
{
    const MapOutcome outcome =
        analysed(job(area, "[histogram]\nvalence = {from = 2.2, to = 2.6, boxes = 3}\n"));
    const auto columnsWithin = [](double low, double high) {
        int count = 0;
        for (int x = 0; x < columns; ++x) {
            const double valence = 3.0 - x / (columns - 1.0);
            count += valence >= low && valence < high ? 1 : 0;
        }
        return QByteArray::number(count * rows);
    };
    QCOMPARE(field(outcome.row, "below"), columnsWithin(0.0, 2.1));
    QCOMPARE(field(outcome.row, "above"), columnsWithin(2.7, 9.0));
    QCOMPARE(contents(in("results/maps/area 1/area 1_HGAlpha.dat")).count('\n'), 5);
}

/// The last row of an image was not measured.
void tst_MapsRun::scanThatWasStopped()
{
    QByteArray image = contents(in("map_4.dat")).trimmed();
    image.truncate(image.lastIndexOf("\n\n"));
    create(in("map_4.dat"), image + '\n');
    const MapRow row = analysed(job(area)).row;
    QCOMPARE(row.refusal, QString());
    QCOMPARE(field(row, "pixels"), QByteArray("384"));
    QCOMPARE(field(row, "missing"), QByteArray("24"));
    QVERIFY(std::abs(number(field(row, "valence_mean")) - 2.5) < 5e-5);
    // 15 of the rows, from a quarter to 0.95.
    QVERIFY(std::abs(number(field(row, "t_mean")) - 0.6) < 5e-5);
}

/// Without references that differ there is no number at all.
void tst_MapsRun::mapWithoutANumber()
{
    QVERIFY(QFile::remove(in("ref2.dat")));
    QVERIFY(QFile::copy(in("ref1.dat"), in("ref2.dat")));
    const MapRow row = analysed(job(area)).row;
    QCOMPARE(row.refusal, QString());
    QCOMPARE(field(row, "missing"), QByteArray("384"));
    QCOMPARE(field(row, "valence_mean"), QByteArray());
    QCOMPARE(field(row, "t_sd"), QByteArray());
    QVERIFY(!row.isGood());
    QCOMPARE(row.warnings,
             QStringList({QStringLiteral("no pixel of the map has a finite result")}));
}

/// Energies of the header are those that count.
void tst_MapsRun::doubts()
{
    QByteArray image = contents(in("map_1.dat"));
    image.replace("8313", "8.313");
    create(in("map_1.dat"), image);
    const MapRow row = analysed(job(area)).row;
    QVERIFY(!row.warnings.isEmpty());
    QCOMPARE(row.warnings.front(),
             QStringLiteral("energy 8.313 looks like keV; energies are in eV"));
}

void tst_MapsRun::imagesOfSeveralGrids()
{
    MapSample narrow;
    narrow.columns = 7;
    narrow.rows = rows;
    const QTemporaryDir other;
    QCOMPARE(writeMap(other.path(), narrow), QString());
    create(in("map_2.dat"), contents(other.filePath(QStringLiteral("map_2.dat"))));
    const MapRow row = analysed(job(area)).row;
    QCOMPARE(field(row, "missing"), QByteArray::number((columns - 7) * rows));
    QVERIFY(row.warnings.contains(QStringLiteral("the images of the map have different grids")));
}

/// The image before the edge in the place of the one at the V point.
void tst_MapsRun::fractionsFarOutside()
{
    create(in("map_3.dat"), contents(in("map_1.dat")).replace("8313", "8390"));
    const MapRow row = analysed(job(area)).row;
    QCOMPARE(row.refusal, QString());
    QCOMPARE(row.warnings.size(), 1);
    const double a = 3.0 - row.summary.valence.median.value();
    QCOMPARE(row.warnings.front(),
             QStringLiteral("a = %1, the median of the map, is far outside 0 to 1").arg(a));
}

void tst_MapsRun::folderThatCannotBe()
{
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("results/maps")));
    create(in("results/maps/area 1"), "a file");
    const MapOutcome outcome = analysed(job(area));
    QCOMPARE(outcome.row.refusal, QString());
    QVERIFY(outcome.fileFailed);
    QCOMPARE(outcome.failure,
             QStringLiteral("Can't open the file [%1]").arg(in("results/maps/area 1/area 1.dat")));
    QCOMPARE(outcome.files, QStringList());
    QCOMPARE(contents(in("results/maps/area 1")), QByteArray("a file"));
}

/// One in the middle is too large to be read beside the others, and two cannot be read.
void tst_MapsRun::manyMapsInTheirOrder()
{
    QFile large(in("large.dat"));
    QVERIFY(QFile::copy(in("map_1.dat"), large.fileName()));
    QVERIFY(large.open(QIODevice::Append) && large.resize(qint64{65} << 20));
    create(in("bad.dat"), "nothing");
    QByteArray text;
    const auto add = [&](const char* name, const char* first) {
        text += QByteArray("[[map]]\nname = \"") + name + "\"\nimages = [\"" + first +
                "\", \"map_2.dat\", \"map_3.dat\", \"map_4.dat\"]\n";
    };
    for (const char* name : {"f", "a", "e"})
        add(name, "map_1.dat");
    add("bad 1", "bad.dat");
    add("large", "large.dat");
    add("bad 2", "bad.dat");
    add("b", "map_1.dat");
    const Job made = job(text);
    JobError error;
    const auto maps = mapList(made, error);
    const auto common = readJobData(made, error);
    QVERIFY(maps && common);
    QByteArrayList alone;
    for (const unsigned threads : {1U, 2U, 3U}) {
        Workers workers(threads);
        QByteArrayList rows;
        QVERIFY(runMaps(
            made, *common, *maps,
            [&](const MapJob& map, const MapOutcome& outcome) {
                if (map.name == outcome.row.map)
                    rows += mapFields(outcome.row).join(',');
                return true;
            },
            workers));
        if (threads == 1)
            alone = rows;
        QCOMPARE(rows, alone);
    }
    QByteArrayList names;
    for (const QByteArray& row : alone)
        names += row.left(row.indexOf(','));
    QCOMPARE(names, QByteArrayList({"f", "a", "e", "bad 1", "large", "bad 2", "b"}));
    QVERIFY(alone[3].endsWith(",no 2D data with axes in bad.dat"));
    QCOMPARE(alone[1].mid(2), alone[0].mid(2));
    QCOMPARE(alone[6].mid(2), alone[0].mid(2));
}

void tst_MapsRun::runEndsWhereItIsEnded()
{
    const Job made = job(area + "[[map]]\nname = \"b\"\npattern = \"map_{row}.dat\"\n");
    JobError error;
    const auto maps = mapList(made, error);
    const auto common = readJobData(made, error);
    QVERIFY(maps && common);
    Workers workers(2);
    int calls = 0;
    const auto use = [&](const MapJob&, const MapOutcome&) { return ++calls == 0; };
    QVERIFY(!runMaps(made, *common, *maps, use, workers));
    QCOMPARE(calls, 1);
}

QTEST_MAIN(tst_MapsRun)
#include "tst_MapsRun.moc"

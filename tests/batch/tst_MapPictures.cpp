#include "batch/MapPictures.h"
#include "batch/MapReadOut.h"
#include "batch/MapsRun.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/SmallMap.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace
{

/// A map of a valence that rises by tenths from column to column, of a thickness that rises from
/// row to row, with a pixel without result in its corner.
struct Sample {
    Sample(int columns, int rows)
    {
        const auto size = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
        results.columns = columns;
        results.rows = rows;
        results.a.resize(size);
        results.t.resize(size);
        auto positions = std::make_shared<MapPositions>();
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < columns; ++x) {
                const std::size_t i = positions->size();
                results.a[i] = 1.0 - 0.1 * x;
                results.t[i] = 0.25 * y;
                const MapPosition position{5.0 + 0.5 * x, 0.5 * y};
                positions->append(&position, 1);
            }
        results.a[0] = std::nan("");
        results.positions = positions;
        valences.reset(valenceSettings);
        thicknesses.reset(thicknessSettings);
        for (std::size_t i = 0; i < size; ++i) {
            valences.add(references.mean(results.a[i]));
            thicknesses.add(results.t[i]);
        }
    }

    MapPictureInput input(bool hasThickness = true) const
    {
        return {results,           valences,   thicknesses, valenceSettings,
                thicknessSettings, references, hasThickness};
    }

    HistogramSettings valenceSettings{1.5, 3.5, 41.0, false};
    HistogramSettings thicknessSettings{-0.2, 1.2, 41.0, false};
    ReferenceValences references;
    MapResults results;
    HistogramCounts valences;
    HistogramCounts thicknesses;
};

QStringList names(const QStringList& paths)
{
    QStringList found;
    for (const QString& path : paths)
        found.append(QFileInfo(path).fileName());
    return found;
}

/// The colour of a picture at a place, by what the file itself says of its plot area.
QRgb at(const QString& path, double x, double y)
{
    const QImage image(path);
    const QStringList parts = image.text(QStringLiteral("PlotArea")).split(QLatin1Char(' '));
    std::vector<double> n;
    for (const QString& part : parts)
        n.push_back(part.toDouble());
    if (n.size() != 10 || n[0] != image.width() || n[1] != image.height())
        return 0;
    return image.pixel(static_cast<int>(n[2] + (x - n[6]) / (n[8] - n[6]) * (n[4] - n[2])),
                       static_cast<int>(n[3] + (y - n[7]) / (n[9] - n[7]) * (n[5] - n[3])));
}

QMap<QString, QByteArray> filesIn(const QString& folder)
{
    QMap<QString, QByteArray> found;
    for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
        QFile file(folder + QLatin1Char('/') + name);
        if (file.open(QIODevice::ReadOnly))
            found.insert(name, file.readAll());
    }
    return found;
}

} // namespace

class TestMapPictures : public QObject
{
    Q_OBJECT

private slots:
    void allPicturesAreWritten();
    void withoutThicknessTwoArePainted();
    void coloursAreAtTheirPositions();
    void deviationsHaveTheirPictures();
    void picturesStayWithoutDeviations();
    void picturesAreTheSameForAnyThreads();
    void aFolderThatCannotBeMadeIsTold();
    void axesTellWhatPositionsCount();
    void readOutHasEachPixelOfASmallMap();
    void readOutOfALargeMapHasBlocks();
    void readOutSurvivesItsBytes();
    void bytesThatAreNoReadOutAreRefused();
    void mapOfAJobHasItsPictures_data();
    void mapOfAJobHasItsPictures();
};

void TestMapPictures::allPicturesAreWritten()
{
    const QTemporaryDir folder;
    const Sample sample(6, 4);
    Workers workers(2);
    const PictureFiles files =
        drawMapPictures(folder.filePath(QStringLiteral("maps/a")), QStringLiteral("a"),
                        sample.input(), QStringLiteral("en"), workers);
    QCOMPARE(files.failed, QStringList());
    QCOMPARE(names(files.written).join(QLatin1Char(' ')),
             QStringLiteral("a-valence.png a-thickness.png a-valence-by-thickness.png "
                            "a-histogram-valence.png a-histogram-thickness.png a-t-a.png"));
    for (const QString& path : files.written)
        QVERIFY(!QImage(path).isNull());
    QCOMPARE(filesIn(folder.filePath(QStringLiteral("maps/a"))).size(), 6); // nothing beside
}

void TestMapPictures::withoutThicknessTwoArePainted()
{
    const QTemporaryDir folder;
    const Sample sample(6, 4);
    Workers workers(2);
    const PictureFiles files = drawMapPictures(folder.path(), QStringLiteral("a"),
                                               sample.input(false), QStringLiteral("en"), workers);
    QCOMPARE(names(files.written).join(QLatin1Char(' ')),
             QStringLiteral("a-valence.png a-histogram-valence.png"));
}

void TestMapPictures::coloursAreAtTheirPositions()
{
    const QTemporaryDir folder;
    const Sample sample(6, 4);
    Workers workers(2);
    const QStringList paths = drawMapPictures(folder.path(), QStringLiteral("a"), sample.input(),
                                              QStringLiteral("ja"), workers)
                                  .written;
    // Valence 2.5 is the middle of 1.5 to 3.5: entry 128 of the colours. t/ts 0.5 is the middle of
    // -0.2 to 1.2.
    QCOMPARE(at(paths[0], 5.0 + 0.5 * 5, 0.5), qRgb(33, 145, 140));
    QCOMPARE(at(paths[0], 5.0, 0.0), qRgb(200, 200, 200));
    QCOMPARE(at(paths[1], 5.5, 0.5 * 2), qRgb(33, 145, 140));
    QCOMPARE(at(paths[2], 5.0, 0.0), qRgb(127, 127, 127));
}

/// Deviations of the valence of 0.01, where t/ts is 0.25 those of 0.1 of t/ts, which says nothing
/// of the valence; elsewhere t/ts has 0.02, but for a pixel with 0.09.
void TestMapPictures::deviationsHaveTheirPictures()
{
    const QTemporaryDir folder;
    const Sample sample(6, 4);
    MapSigmas sigmas;
    QVERIFY(sigmas.a.resize(24) && sigmas.t.resize(24));
    for (std::size_t i = 0; i < 24; ++i) {
        sigmas.a[i] = 0.01F;
        sigmas.t[i] = i / 6 == 1 ? 0.1F : 0.02F;
    }
    sigmas.t[23] = 0.09F;
    MapPictureInput input = sample.input();
    input.sigmas = &sigmas;
    Workers workers(2);
    const QStringList paths =
        drawMapPictures(folder.path(), QStringLiteral("a"), input, QStringLiteral("en"), workers)
            .written;
    QCOMPARE(names(paths.mid(6)).join(QLatin1Char(' ')),
             QStringLiteral("a-valence-masked.png a-sigma-valence.png a-sigma-thickness.png"));
    constexpr QRgb meaningless = 0xff660000;
    constexpr QRgb missing = 0xffc8c8c8;
    constexpr QRgb above = 0xffff3b1f;
    for (const QString& path : paths.mid(6)) {
        QCOMPARE(at(path, 6.0, 0.5), meaningless);
        QCOMPARE(at(path, 6.5, 0.0), meaningless); // t/ts is 0
        QCOMPARE(at(path, 5.0, 0.0), missing);
        QVERIFY(at(path, 6.0, 1.0) != meaningless);
    }
    // The masked map has the colours of the map; the bars end at 0.01 and 0.02.
    QCOMPARE(at(paths[6], 6.0, 1.0), at(paths[0], 6.0, 1.0));
    QCOMPARE(at(paths[7], 6.0, 1.0), viridis()[255]);
    QCOMPARE(at(paths[8], 6.0, 1.0), viridis()[255]);
    QCOMPARE(at(paths[8], 7.5, 1.5), above);
}

/// Byte by byte: what is known besides changes no picture of the results.
void TestMapPictures::picturesStayWithoutDeviations()
{
    const QTemporaryDir folder;
    const Sample sample(6, 4);
    MapSigmas sigmas;
    QVERIFY(sigmas.a.resize(24) && sigmas.t.resize(24));
    std::fill(sigmas.a.begin(), sigmas.a.end(), 0.01F);
    std::fill(sigmas.t.begin(), sigmas.t.end(), 0.01F);
    MapPictureInput input = sample.input();
    Workers workers(2);
    const auto draw = [&](const char* name) {
        drawMapPictures(folder.filePath(QLatin1String(name)), QStringLiteral("a"), input,
                        QStringLiteral("en"), workers);
        return filesIn(folder.filePath(QLatin1String(name)));
    };
    const QMap<QString, QByteArray> without = draw("without");
    input.sigmas = &sigmas;
    const QMap<QString, QByteArray> with = draw("with");
    QCOMPARE(without.size(), 6);
    QCOMPARE(with.size(), 9);
    for (auto file = without.begin(); file != without.end(); ++file)
        QVERIFY(with[file.key()] == file.value());
}

void TestMapPictures::picturesAreTheSameForAnyThreads()
{
    const QTemporaryDir folder;
    const Sample sample(40, 30);
    QList<QMap<QString, QByteArray>> all;
    for (const unsigned threads : {1U, 2U, 5U}) {
        Workers workers(threads);
        const QString path = folder.filePath(QString::number(threads));
        drawMapPictures(path, QStringLiteral("a"), sample.input(), QStringLiteral("ja"), workers);
        all.append(filesIn(path));
    }
    QCOMPARE(all[0].size(), 6);
    QCOMPARE(all[1], all[0]);
    QCOMPARE(all[2], all[0]);
}

void TestMapPictures::aFolderThatCannotBeMadeIsTold()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("taken")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Sample sample(2, 2);
    Workers workers(2);
    const PictureFiles files =
        drawMapPictures(folder.filePath(QStringLiteral("taken/a")), QStringLiteral("a"),
                        sample.input(), QStringLiteral("en"), workers);
    QCOMPARE(files.written, QStringList());
    QCOMPARE(files.failed.size(), 6);
}

void TestMapPictures::readOutHasEachPixelOfASmallMap()
{
    SmallMap map(3, 2, [](int x, int y) { return QPointF(x, -y); });
    map.set(0, 0, 2.25, 0.5);
    map.set(2, 1, std::nan(""), 0.75);
    const MapReadOut found = mapReadOut(map.pixels(), MapGrid(map.pixels()), true);
    QCOMPARE(found.columns, 3);
    QCOMPARE(found.rows, 2);
    QCOMPARE(found.block, 1);
    QCOMPARE(found.xEdges, std::vector<double>({-0.5, 0.5, 1.5, 2.5}));
    QCOMPARE(found.yEdges, std::vector<double>({-1.5, -0.5, 0.5}));
    QVERIFY(std::isnan(found.valence[2])); // the lowest row is the last of the map
    QCOMPARE(found.thickness[2], 0.75F);
    QCOMPARE(found.valence[3], 2.25F);
    QCOMPARE(found.thickness[3], 0.5F);
    QVERIFY(mapReadOut(map.pixels(), MapGrid(map.pixels()), false).thickness.empty());
}

void TestMapPictures::readOutOfALargeMapHasBlocks()
{
    SmallMap map(600, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 600; ++x)
            map.set(x, y, 2.0 + x * 0.001 + y * 0.1);
    map.set(4, 2, std::nan(""));
    const MapReadOut found = mapReadOut(map.pixels(), MapGrid(map.pixels()), true);
    QCOMPARE(found.block, 3);
    QCOMPARE(found.columns, 200);
    QCOMPARE(found.rows, 1);
    QCOMPARE(found.xEdges[1], 2.5);
    QCOMPARE(found.xEdges.back(), 599.5);
    QVERIFY(std::fabs(found.valence[0] - 2.101F) < 1e-6F); // column 1, row 1
    QVERIFY(std::isnan(found.valence[1]));                 // one of its pixels has no result
    const MapReadOut less = found.reduced(64);
    QCOMPARE(less.block, 192);
    QCOMPARE(less.columns, 4);
    QCOMPARE(less.xEdges.back(), 599.5);
    QVERIFY(std::isnan(less.valence[0]));
    QCOMPARE(less.valence[1], found.valence[64 + 32]);
    QCOMPARE(less.valence[3], found.valence[192 + 4]); // of the eight columns that are left
}

void TestMapPictures::readOutSurvivesItsBytes()
{
    const Sample sample(7, 5);
    const QByteArray bytes = mapReadOut(sample.input());
    const std::optional<MapReadOut> read = readOutFromBytes(bytes);
    QVERIFY(read.has_value());
    QCOMPARE(read->columns, 7);
    QCOMPARE(read->yEdges, std::vector<double>({-0.25, 0.25, 0.75, 1.25, 1.75, 2.25}));
    QVERIFY(std::isnan(read->valence[0]));
    QCOMPARE(read->valence[1], 2.1F);
    QCOMPARE(read->thickness[34], 1.0F);
    QCOMPARE(readOutBytes(*read), bytes);
}

void TestMapPictures::bytesThatAreNoReadOutAreRefused()
{
    const Sample sample(3, 2);
    const QByteArray bytes = mapReadOut(sample.input());
    for (int size = 0; size < bytes.size(); ++size)
        QVERIFY(!readOutFromBytes(bytes.left(size)).has_value());
    QVERIFY(!readOutFromBytes(bytes + 'x').has_value());
    QByteArray large = bytes;
    large[4] = '\x7f'; // columns beyond all
    QVERIFY(!readOutFromBytes(large).has_value());
    QVERIFY(!readOutFromBytes(QByteArray(100, 'x')).has_value());
}

void TestMapPictures::mapOfAJobHasItsPictures_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("files");
    QTest::newRow("pictures") << QByteArray("pictures = true") << 4 << 1 + 2 + 9;
    QTest::newRow("pictures alone") << QByteArray("pictures = true\nmap_files = false") << 4 << 9;
    QTest::newRow("three points") << QByteArray("pictures = true") << 3 << 1 + 2 + 4;
    QTest::newRow("report") << QByteArray("pictures = false") << 4 << 1 + 2 + 9;
    QTest::newRow("none") << QByteArray("pictures = false\nreport = false") << 4 << 1 + 2;
}

void TestMapPictures::mapOfAJobHasItsPictures()
{
    QFETCH(QByteArray, output);
    QFETCH(int, points);
    QFETCH(int, files);
    const QTemporaryDir folder;
    QCOMPARE(writeSample(folder.path(), MixedSample(), std::nullopt), QString());
    QCOMPARE(writeMap(folder.path(), MapSample()), QString());
    QByteArray text = "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
                      "blank = \"blank.dat\"\n"
                      "[conditions]\nreferences_minus_victreen = false\n"
                      "[output]\nfolder = \"results\"\n" +
                      output +
                      "\n[[map]]\nname = \"a\"\npattern = \"map_{row}.dat\"\n"
                      "[[point]]\nenergy = 8313\n[[point]]\nenergy = 8381\n"
                      "[[point]]\nenergy = 8390\nv_point = true\n";
    if (points == 4)
        text += "[[point]]\nenergy = 8404.5\n";
    JobError error;
    const std::optional<Job> job = parseJob(text, folder.path(), error);
    QVERIFY2(job, qPrintable(error.reason));
    const auto maps = mapList(*job, error);
    const auto common = readJobData(*job, error);
    QVERIFY2(maps && common, qPrintable(error.reason));
    Workers workers(2);
    const MapOutcome outcome = analyseMap(*job, *common, maps->front(), workers);
    QCOMPARE(outcome.failure, QString());
    QCOMPARE(outcome.row.refusal, QString());
    QCOMPARE(outcome.files.size(), files);
    for (const QString& path : outcome.files)
        QVERIFY2(QFileInfo(path).size() > 100, qPrintable(path));
    QCOMPARE(readOutFromBytes(outcome.readOut).has_value(), !output.contains("report = false"));
}

void TestMapPictures::axesTellWhatPositionsCount()
{
    const auto titles = [](const char* language, PositionUnit unit) {
        const MapCaptions captions =
            mapCaptions(OutputWords(QLatin1String(language)), QString(), unit);
        return captions.first + QLatin1Char('|') + captions.second;
    };
    QCOMPARE(titles("en", PositionUnit::Stage),
             QStringLiteral("Position 1 (units of the stage)|Position 2 (units of the stage)"));
    QCOMPARE(titles("en", unitOfPixels(0.0)), QStringLiteral("x (pixels)|y (pixels)"));
    QCOMPARE(titles("ja", unitOfPixels(0.0)), QStringLiteral("x (画素)|y (画素)"));
    QCOMPARE(titles("ja", unitOfPixels(0.65)), QStringLiteral("x (µm)|y (µm)"));
}

QTEST_MAIN(TestMapPictures)
#include "tst_MapPictures.moc"

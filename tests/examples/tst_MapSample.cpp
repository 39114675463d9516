#include "analysis/ThicknessRatio.h"
#include "examples/MapSample.h"
#include "input/MapReader.h"
#include "tests/support/MapTable.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace
{

MapSample smallMap()
{
    MapSample map;
    map.columns = 5;
    map.rows = 3;
    return map;
}

} // namespace

class tst_MapSample : public QObject
{
    Q_OBJECT

private slots:
    void truthRisesEvenly();
    void onePixelIsAMap();
    void filesHoldTheMap();
    void mapGivesTheTruthBack_data();
    void mapGivesTheTruthBack();
    void unwritableFolderIsNamed();
};

void tst_MapSample::truthRisesEvenly()
{
    const MapSample map = smallMap();
    for (int x = 0; x < 5; ++x) {
        QCOMPARE(map.fraction(x), 0.25 * x);
        QCOMPARE(map.valence(x), 3.0 - 0.25 * x);
    }
    QCOMPARE(map.thicknessRatio(0), 0.25);
    QCOMPARE(map.thicknessRatio(1), 0.625);
    QCOMPARE(map.thicknessRatio(2), 1.0);
}

void tst_MapSample::onePixelIsAMap()
{
    MapSample map;
    map.columns = 1;
    map.rows = 1;
    QCOMPARE(map.fraction(0), 0.0);
    QCOMPARE(map.thicknessRatio(0), 0.25);
}

void tst_MapSample::filesHoldTheMap()
{
    const QTemporaryDir dir;
    const MapSample map = smallMap();
    const QString folder = dir.filePath(QStringLiteral("a/b"));
    QCOMPARE(writeMap(folder, map), QString());
    int i = 0;
    for (const double energy : mapEnergies()) {
        MapData data;
        const MapReadResult result = readMapData(QDir(folder).filePath(mapFileName(i++)), data);
        QVERIFY(data.valid);
        QCOMPARE(result.energies, QStringList{QString::number(energy)});
        QCOMPARE(data.columns, 5);
        QCOMPARE(data.rows, 3);
        QCOMPARE(data.mut.size(), std::size_t{15});
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 5; ++x) {
                const auto k = static_cast<std::size_t>(5 * y + x);
                QVERIFY(std::abs(data.mut[k] - map.muT(x, y, energy)) < 1e-12);
                QCOMPARE((*data.positions)[k].first, 0.02 * x);
                QCOMPARE((*data.positions)[k].second, 0.02 * y);
            }
        }
    }
    QFile truth(folder + QStringLiteral("/map-truth.toml"));
    QVERIFY(truth.open(QIODevice::ReadOnly));
    const QByteArray text = truth.readAll();
    for (const char* const line : {"columns = 5\n", "rows = 3\n", "a = [0, 1]\n",
                                   "valence = [3, 2]\n", "t_over_ts = [0.25, 1]\n"})
        QVERIFY2(text.contains(line), line);
}

void tst_MapSample::mapGivesTheTruthBack_data()
{
    QTest::addColumn<bool>("exact");
    QTest::newRow("exact") << true;
    QTest::newRow("least squares") << false;
}

void tst_MapSample::mapGivesTheTruthBack()
{
    QFETCH(bool, exact);
    const QTemporaryDir dir;
    const MapSample map = smallMap();
    QCOMPARE(writeMap(dir.path(), map), QString());
    std::vector<MapData> data(4);
    MapTask task;
    task.method = exact ? Method::FourPointExact : Method::FourPointLeastSquares;
    task.points = mapTable(map.sample);
    task.choice = choosePoints(task.points);
    task.rho = thicknessRatios(task.points, 0.0, 0.0).trSbyS;
    for (int i = 0; i < 4; ++i) {
        MapData& image = data[static_cast<std::size_t>(i)];
        readMapData(dir.filePath(mapFileName(i)), image);
        task.images.push_back(image.image());
    }
    task.columns = data[2].columns;
    task.rows = data[2].rows;
    MapResults results;
    QVERIFY(calculatePixels(task, results));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            const auto k = static_cast<std::size_t>(5 * y + x);
            QVERIFY(std::abs(results.a[k] - map.fraction(x)) < 1e-6);
            QVERIFY(std::abs(results.t[k] - map.thicknessRatio(y)) < 1e-6);
        }
    }
}

void tst_MapSample::unwritableFolderIsNamed()
{
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("x/map_2.dat")));
    const QString folder = dir.filePath(QStringLiteral("x"));
    QCOMPARE(writeMap(folder, smallMap()), folder + QStringLiteral("/map_2.dat"));
}

QTEST_GUILESS_MAIN(tst_MapSample)
#include "tst_MapSample.moc"

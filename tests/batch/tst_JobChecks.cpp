#include "analysis/Constants.h"
#include "batch/JobChecks.h"

#include <QtTest>

#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

JobPlace inLine(int line)
{
    return {line, 0, {}};
}

/// Two references around an edge of 8350 eV, and four rows: nothing to doubt.
JobFacts soundJob()
{
    JobFacts facts;
    facts.spectra = {{QStringLiteral("ref1"), inLine(2), 8000, 9000, {}, 100, 200},
                     {QStringLiteral("ref2"), inLine(3), 8100, 9100, {}, 100, 200}};
    facts.rows = {{8313, inLine(11)}, {8381, inLine(13)}, {8390, inLine(15)}, {8404.5, inLine(17)}};
    facts.edge = 8350;
    facts.edgePlace = inLine(20);
    facts.preEdgeEndPlace = inLine(21);
    facts.postEdgeStartPlace = inLine(22);
    facts.lcfPoints = 50;
    return facts;
}

/// "line: reason" of each doubt.
QStringList texts(const std::vector<JobError>& doubts)
{
    QStringList result;
    for (const JobError& doubt : doubts)
        result += errorText(QStringLiteral("job"), doubt);
    return result;
}

QStringList before(const JobFacts& facts)
{
    return texts(doubtsBefore(facts));
}

} // namespace

class tst_JobChecks : public QObject
{
    Q_OBJECT

private slots:
    void soundJobsRaiseNoDoubt();
    void energiesInKiloElectronVolts_data();
    void energiesInKiloElectronVolts();
    void energiesOutsideSpectra_data();
    void energiesOutsideSpectra();
    void edge();
    void fallingSpectrum();
    void spectraWithoutCommonEnergies();
    void linesThroughTooFewPoints();
    void imagesOfSeveralGrids();
    void fitWithoutSpectra();
    void fitThroughTooFewPoints();
    void fractions_data();
    void fractions();
    void results();
};

void tst_JobChecks::soundJobsRaiseNoDoubt()
{
    QCOMPARE(before(soundJob()), QStringList());
    QCOMPARE(before({}), QStringList());
    QCOMPARE(texts(doubtsAfter({})), QStringList());
    QVERIFY(areFinite({}));
}

void tst_JobChecks::energiesInKiloElectronVolts_data()
{
    QTest::addColumn<double>("energy");
    QTest::addColumn<QString>("expected");
    const QString outside = QStringLiteral(
        "job:11: energy %1 is outside ref1 (8000 to 9000 eV), ref2 (8100 to 9100 eV)");
    QTest::newRow("keV") << 8.313
                         << QStringLiteral(
                                "job:11: energy 8.313 looks like keV; energies are in eV");
    QTest::newRow("highest") << 99.9
                             << QStringLiteral(
                                    "job:11: energy 99.9 looks like keV; energies are in eV");
    QTest::newRow("no more") << 100.0 << outside.arg(100);
    QTest::newRow("zero") << 0.0 << outside.arg(0);
    QTest::newRow("negative") << -8.3 << outside.arg(-8.3);
}

void tst_JobChecks::energiesInKiloElectronVolts()
{
    QFETCH(double, energy);
    QFETCH(QString, expected);
    JobFacts facts = soundJob();
    facts.rows[0].energy = energy;
    QCOMPARE(before(facts), QStringList({expected}));
}

void tst_JobChecks::energiesOutsideSpectra_data()
{
    QTest::addColumn<double>("energy");
    QTest::addColumn<QString>("expected");
    const QString start = QStringLiteral("job:15: energy ");
    QTest::newRow("lowest of both") << 8100.0 << QString();
    QTest::newRow("highest of both") << 9000.0 << QString();
    QTest::newRow("below one") << 8099.9
                               << start +
                                      QStringLiteral("8099.9 is outside ref2 (8100 to 9100 eV)");
    QTest::newRow("above one") << 9000.5
                               << start +
                                      QStringLiteral("9000.5 is outside ref1 (8000 to 9000 eV)");
    QTest::newRow("above both") << 83810.0
                                << start + QStringLiteral("83810 is outside ref1 (8000 to 9000 "
                                                          "eV), ref2 (8100 to 9100 eV)");
}

void tst_JobChecks::energiesOutsideSpectra()
{
    QFETCH(double, energy);
    QFETCH(QString, expected);
    JobFacts facts = soundJob();
    facts.rows[2].energy = energy;
    QCOMPARE(before(facts), expected.isEmpty() ? QStringList() : QStringList({expected}));
}

void tst_JobChecks::edge()
{
    JobFacts facts = soundJob();
    facts.edge = 8.35;
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job:20: edge 8.35 looks like keV; energies are in eV")}));
    facts.edge = 8050;
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job:20: edge 8050 is outside ref2 (8100 to 9100 eV)")}));
    // A spectrum of which no line is used has no edge.
    facts.spectra[1].preEdgePoints.reset();
    QCOMPARE(before(facts).size(), 1);
    facts.spectra[1].postEdgePoints.reset();
    QCOMPARE(before(facts), QStringList());
    facts.spectra[0].preEdgePoints.reset();
    facts.spectra[0].postEdgePoints.reset();
    facts.edge = 8.35;
    QCOMPARE(before(facts), QStringList());
}

void tst_JobChecks::fallingSpectrum()
{
    JobFacts facts = soundJob();
    facts.spectra[1].fallsAt = 8330.25;
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job:3: the energies of ref2 fall at 8330.25 eV; from row "
                                         "to row they are taken to rise")}));
}

void tst_JobChecks::spectraWithoutCommonEnergies()
{
    JobFacts facts = soundJob();
    facts.rows.clear();
    facts.spectra = {{QStringLiteral("ref1"), inLine(2), 8000, 9000, {}, {}, {}},
                     {QStringLiteral("ref2"), inLine(3), 9000.5, 9100, {}, {}, {}}};
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job:3: ref1 (8000 to 9000 eV) and ref2 (9000.5 to 9100 "
                                         "eV) have no energy in common")}));
    facts.spectra = {{QStringLiteral("ref1"), inLine(2), 8000, 9000, {}, {}, {}},
                     {QStringLiteral("ref2"), inLine(3), 9000, 9100, {}, {}, {}},
                     {QStringLiteral("target"), inLine(4), 7000, 7999.5, {}, {}, {}}};
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job:4: ref1 (8000 to 9000 eV) and target (7000 to 7999.5 "
                                         "eV) have no energy in common"),
                          QStringLiteral("job:4: ref2 (9000 to 9100 eV) and target (7000 to 7999.5 "
                                         "eV) have no energy in common")}));
}

void tst_JobChecks::linesThroughTooFewPoints()
{
    JobFacts facts = soundJob();
    facts.spectra[0].preEdgePoints = 3;
    facts.spectra[1].postEdgePoints = 3;
    QCOMPARE(before(facts), QStringList());
    facts.spectra[0].preEdgePoints = 2;
    facts.spectra[1].postEdgePoints = 0;
    QCOMPARE(
        before(facts),
        QStringList(
            {QStringLiteral("job:21: the pre-edge line of ref1 goes through 2 points; it needs 3"),
             QStringLiteral("job:22: the post-edge line of ref2 goes through 0 points; "
                            "it needs 3")}));
}

void tst_JobChecks::imagesOfSeveralGrids()
{
    JobFacts facts = soundJob();
    facts.gridsDiffer = true;
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job: the images of the map have different grids")}));
}

void tst_JobChecks::fitWithoutSpectra()
{
    JobFacts facts = soundJob();
    facts.missingForLcf = {QStringLiteral("ref1"), QStringLiteral("target")};
    facts.lcfPoints = 0;
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job: the linear combination fit has no ref1"),
                          QStringLiteral("job: the linear combination fit has no target")}));
}

void tst_JobChecks::fitThroughTooFewPoints()
{
    JobFacts facts = soundJob();
    facts.lcfPoints = 3;
    QCOMPARE(before(facts), QStringList());
    facts.lcfPoints = 2;
    QCOMPARE(before(facts),
             QStringList({QStringLiteral("job: the range of the linear combination fit holds 2 "
                                         "points of target; it needs 3")}));
}

void tst_JobChecks::fractions_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<QString>("text");
    QTest::newRow("low") << -0.5 << QString();
    QTest::newRow("high") << 1.5 << QString();
    QTest::newRow("too low") << -0.51 << QStringLiteral("-0.51");
    QTest::newRow("too high") << 33.97 << QStringLiteral("33.97");
}

void tst_JobChecks::fractions()
{
    QFETCH(double, a);
    QFETCH(QString, text);
    JobResults results;
    results.a = a;
    results.valence = 3 - a;
    results.lcfA = a;
    results.lcfValence = 3 - a;
    QStringList expected;
    if (!text.isEmpty())
        expected = QStringList{
            QStringLiteral("job: a = %1 of the point method is far outside 0 to 1").arg(text),
            QStringLiteral("job: a = %1 of the linear combination fit is far outside 0 to 1")
                .arg(text)};
    QCOMPARE(texts(doubtsAfter(results)), expected);
    QVERIFY(areFinite(results));
}

void tst_JobChecks::results()
{
    const QString none = QStringLiteral("job: the result of %1 is no finite number");
    for (const double odd : {infinity, -infinity, notANumber}) {
        JobResults results;
        results.a = odd;
        results.valence = 2.5;
        QVERIFY(!areFinite(results));
        QCOMPARE(texts(doubtsAfter(results)), QStringList({none.arg(QLatin1String("the point "
                                                                                  "method"))}));
        std::swap(results.a, results.valence);
        QVERIFY(!areFinite(results));
        QCOMPARE(texts(doubtsAfter(results)).size(), 1);
        results = {};
        results.lcfA = 0.5;
        results.lcfValence = odd;
        QVERIFY(!areFinite(results));
        QCOMPARE(texts(doubtsAfter(results)),
                 QStringList({none.arg(QLatin1String("the linear combination fit"))}));
        std::swap(results.lcfA, results.lcfValence);
        QVERIFY(!areFinite(results));
        QCOMPARE(texts(doubtsAfter(results)).size(), 1);
    }
    JobResults map;
    map.anyFinitePixel = true;
    QVERIFY(areFinite(map));
    QCOMPARE(texts(doubtsAfter(map)), QStringList());
    map.anyFinitePixel = false;
    QVERIFY(!areFinite(map));
    QCOMPARE(texts(doubtsAfter(map)),
             QStringList({QStringLiteral("job: no pixel of the map has a finite result")}));
    map.anyFinitePixel = true;
    for (const double median : {-0.5, 0.3, 1.5}) {
        map.medianA = median;
        QCOMPARE(texts(doubtsAfter(map)), QStringList());
    }
    map.medianA = -0.75;
    QCOMPARE(texts(doubtsAfter(map)),
             QStringList(
                 {QStringLiteral("job: a = -0.75, the median of the map, is far outside 0 to 1")}));
    QVERIFY(areFinite(map));
}

QTEST_GUILESS_MAIN(tst_JobChecks)
#include "tst_JobChecks.moc"

#include "examples/AbsorptionModel.h"
#include "examples/MixedSampleFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>

namespace
{

constexpr Measurement measurements[] = {Measurement::Ref1, Measurement::Ref2, Measurement::Target,
                                        Measurement::Blank};

double stateDifference(double energy)
{
    using absorption::State;
    return absorption::ofState(State::Two, energy) - absorption::ofState(State::Three, energy);
}

QList<QByteArray> rowsAfterOffset(const QByteArray& text)
{
    QList<QByteArray> lines = text.trimmed().split('\n');
    while (!lines.isEmpty() && !lines.takeFirst().contains("Offset")) {
    }
    return lines;
}

/// The energy that a Bragg angle in degrees stands for, by Bragg's law with the reader's digits.
double energyOfAngle(double angle)
{
    return 12.398424360387684 / (2.0 * 3.13551 * std::sin(angle * 3.1415926535 / 180.0)) * 1000.0;
}

} // namespace

class tst_MixedSample : public QObject
{
    Q_OBJECT
private slots:
    void statesAreAlikeWhereTheMethodsNeedIt_data();
    void statesAreAlikeWhereTheMethodsNeedIt();
    void statesDifferAtTheVPoint();
    void backgroundsFollowVictreensLaw();
    void scanStepsOnTheFormsEnergies();
    void fileHoldsTheSpectrum();
    void countsScatterByTheirSquareRoot();
    void folderIsWritten();
    void unwritableFolderIsNamed();
};

void tst_MixedSample::statesAreAlikeWhereTheMethodsNeedIt_data()
{
    QTest::addColumn<double>("energy");
    for (const double energy : {8000.0, 8313.0, 8381.0, 8404.5, 8460.0, 8475.0})
        QTest::addRow("%g eV", energy) << energy;
}

void tst_MixedSample::statesAreAlikeWhereTheMethodsNeedIt()
{
    QFETCH(double, energy);
    QVERIFY(std::abs(stateDifference(energy)) < 1e-14);
}

void tst_MixedSample::statesDifferAtTheVPoint()
{
    const double l = 8350.0 / 8390.0;
    const double height = l * l * l * (1.3 - 0.3 * l);
    QVERIFY(std::abs(stateDifference(8390.0) - 0.2 * height) < 1e-12);
    for (const double energy : {8385.0, 8395.0})
        QVERIFY(stateDifference(energy) < stateDifference(8390.0));
}

// Below the edge peak and the edge the absorption is 0.25 l^3, and the blank 0.03 + 0.04 l^3.
void tst_MixedSample::backgroundsFollowVictreensLaw()
{
    const double l = 8350.0 / 8100.0;
    QCOMPARE(absorption::ofState(absorption::State::Two, 8100.0), 0.25 * l * l * l);
    QCOMPARE(absorption::ofBlank(8100.0), 0.03 + 0.04 * l * l * l);
}

void tst_MixedSample::scanStepsOnTheFormsEnergies()
{
    const std::vector<double> energies = scanEnergies();
    QVERIFY(std::is_sorted(energies.begin(), energies.end()));
    QVERIFY(std::adjacent_find(energies.begin(), energies.end()) == energies.end());
    for (const double energy : {8313.0, 8381.0, 8390.0, 8404.5, 8460.0, 8475.0})
        QVERIFY(std::find(energies.begin(), energies.end(), energy) != energies.end());
    QVERIFY(energies.front() < 8300.0 - 200.0);
    QVERIFY(energies.back() > 8450.0 + 500.0);
}

void tst_MixedSample::fileHoldsTheSpectrum()
{
    const MixedSample sample;
    for (const Measurement measurement : measurements) {
        const QByteArray text = beamlineText("title", scan(sample, measurement, std::nullopt));
        QCOMPARE(text, beamlineText("title", scan(sample, measurement, std::nullopt)));
        const QList<QByteArray> rows = rowsAfterOffset(text);
        const std::vector<double> energies = scanEnergies();
        QCOMPARE(rows.size(), static_cast<int>(energies.size()));
        for (int i = 0; i < rows.size(); ++i) {
            const QList<QByteArray> tokens = rows[i].simplified().split(' ');
            QCOMPARE(tokens.size(), 5);
            const double energy = energyOfAngle(tokens[1].toDouble());
            QVERIFY(std::abs(energy - energies[static_cast<std::size_t>(i)]) < 1e-6);
            const double expected = muT(sample, measurement, energy);
            const double found = std::log(tokens[3].toDouble() / tokens[4].toDouble());
            QVERIFY(std::abs(found - expected) < 1e-7);
        }
    }
}

void tst_MixedSample::countsScatterByTheirSquareRoot()
{
    const MixedSample sample;
    const std::vector<ScanStep> expected = scan(sample, Measurement::Ref1, std::nullopt);
    const std::vector<ScanStep> counted = scan(sample, Measurement::Ref1, 1);
    QCOMPARE(counted.size(), expected.size());
    double sum = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const double deviation =
            (counted[i].transmitted - expected[i].transmitted) / std::sqrt(expected[i].transmitted);
        sum += deviation;
        squares += deviation * deviation;
    }
    const auto n = static_cast<double>(expected.size());
    QVERIFY(std::abs(sum / n) < 4.0 / std::sqrt(n));
    QVERIFY(std::abs(squares / n - 1.0) < 4.0 * std::sqrt(2.0 / n));
    QVERIFY(scan(sample, Measurement::Ref1, 2)[0].incident != counted[0].incident);
}

void tst_MixedSample::folderIsWritten()
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("a/b"));
    QCOMPARE(writeSample(folder, MixedSample(), 1), QString());
    for (const Measurement measurement : measurements) {
        QFile file(folder + QLatin1Char('/') + fileName(measurement));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(rowsAfterOffset(file.readAll()).size(), static_cast<int>(scanEnergies().size()));
    }
    QFile truth(folder + QStringLiteral("/truth.toml"));
    QVERIFY(truth.open(QIODevice::ReadOnly));
    const QByteArray text = truth.readAll().simplified();
    for (const char* const known :
         {"a = 0.35 #", "valence = 2.65 #", "t_over_ts = 0.8 #", "photons = 200000000 #"})
        QVERIFY2(text.contains(known), known);
}

void tst_MixedSample::unwritableFolderIsNamed()
{
    QTemporaryDir dir;
    QFile inTheWay(dir.filePath(QStringLiteral("file")));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    const QString folder = inTheWay.fileName() + QStringLiteral("/sub");
    QCOMPARE(writeSample(folder, MixedSample(), 1), folder);
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("x/target.dat")));
    const QString blocked = dir.filePath(QStringLiteral("x"));
    QCOMPARE(writeSample(blocked, MixedSample(), 1), blocked + QStringLiteral("/target.dat"));
}

QTEST_GUILESS_MAIN(tst_MixedSample)
#include "tst_MixedSample.moc"

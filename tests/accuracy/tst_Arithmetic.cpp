#include "analysis/FourPoint.h"
#include "analysis/LinearCombinationFit.h"
#include "analysis/ThicknessRatio.h"
#include "analysis/ThreePoint.h"
#include "examples/MixedSampleFiles.h"
#include "input/AXafsData.h"
#include "tests/accuracy/DigitTable.h"
#include "tests/accuracy/RandomSpectra.h"
#include "tests/accuracy/SixtyDigits.h"
#include "text/NumberText.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace
{

using exact::correctDigits;
using exact::Real;

/// A spectrum in the program and with sixty digits.
struct Both {
    AXafsData data;
    exact::Spectrum truth;
};

using Spectra = std::vector<Both>; ///< Ref 1, Ref 2, target

Both fitted(const SpectrumPoints& points, double edge, const FitRanges& ranges)
{
    AXafsData data;
    data.points = points;
    data.edge = edge;
    data.preEdgeEnd = edge + ranges.preEdgeEnd;
    data.postEdgeStart = edge + ranges.postEdgeStart;
    data.fitVictreens();
    return {data, exact::Spectrum(points, edge, ranges.preEdgeEnd, ranges.postEdgeStart)};
}

Spectra fitted(const std::vector<SpectrumPoints>& spectra, double edge, const FitRanges& ranges)
{
    return {fitted(spectra[0], edge, ranges), fitted(spectra[1], edge, ranges),
            fitted(spectra[2], edge, ranges)};
}

double lineDigits(const VictreenLine& line, const exact::Line& truth)
{
    return std::min({correctDigits(line.c, truth.c), correctDigits(line.a, truth.a),
                     correctDigits(line.b, truth.b)});
}

double lineDigits(const VictreenLineNoC& line, const exact::Line& truth)
{
    return std::min(correctDigits(line.a, truth.a), correctDigits(line.b, truth.b));
}

} // namespace

/// How many decimal digits the double arithmetic in its fixed order leaves, measured with sixty.
/// The tables that are printed last are those of docs/numerics.md.
class tst_Arithmetic : public QObject
{
    Q_OBJECT

private:
    DigitTable m_spectra;
    DigitTable m_points;

    double m_growth = 0.0; ///< largest error of a line, in units of what its condition allows

    void addGrowth(const VictreenLine& line, const exact::LineFit& truth);
    void compareLines(const char* column, const Both& spectrum);
    void compareColumns(const char* column, const Both& spectrum);
    void compareCombination(const char* column, const Spectra& spectra, const LcfRange& range);
    void compareNoise(const char* column, const Spectra& noisy, const Spectra& smooth,
                      const LcfRange& range);
    void comparePoints(const char* column, const PointRows& rows);
    void compareRatios(const char* column, const PointRows& rows);
    void comparePointTables(const char* column, const char* columnLessVic2,
                            const std::vector<double>& energies, const Spectra& spectra,
                            const SpectrumPoints& blank);
    void compareSample(const char* column, const RandomSample& sample, const FitRanges& ranges,
                       Random& random);
    void measureExample(std::uint_fast64_t seed);
    void measureRandomSpectra(const char* column, double parts, double fewerParts);

private slots:
    void initTestCase();
    void coefficientsLoseWhatTheirConditionTakes();
    void shownDigitsAreRight_data();
    void shownDigitsAreRight();
    void pointMethodsShowRightDigits();
    void documentHasTheseDigits();
    void cleanupTestCase();
};

void tst_Arithmetic::addGrowth(const VictreenLine& line, const exact::LineFit& truth)
{
    // Each of the sums is rounded once for every point.
    const Real allowed =
        std::sqrt(truth.points) * std::numeric_limits<double>::epsilon() * truth.condition;
    const auto growth = static_cast<double>(truth.relativeError(line.c, line.a, line.b) / allowed);
    constexpr double infinite = std::numeric_limits<double>::infinity();
    m_growth = std::max(m_growth, std::isnan(growth) ? infinite : growth);
}

void tst_Arithmetic::compareLines(const char* column, const Both& spectrum)
{
    const auto& [data, truth] = spectrum;
    addGrowth(data.preVic, truth.pre);
    addGrowth(data.postVic, truth.post);
    m_spectra.add(column, "c, a, b of the pre-edge line", lineDigits(data.preVic, truth.pre.full));
    m_spectra.add(column, "c, a, b of the post-edge line",
                  lineDigits(data.postVic, truth.post.full));
    m_spectra.add(column, "a, b without constant, pre-edge",
                  lineDigits(data.preVicNoC, truth.pre.withoutConstant));
    m_spectra.add(column, "a, b without constant, post-edge",
                  lineDigits(data.postVicNoC, truth.post.withoutConstant));
    m_spectra.add(column, "pre-edge line at the edge",
                  correctDigits(data.preVicAt(data.edge), truth.pre.full.at(data.edge)));
    m_spectra.add(column, "post-edge line at the edge",
                  correctDigits(data.postVicAt(data.edge), truth.post.full.at(data.edge)));
    m_spectra.add(column, "Edge Jump(1)",
                  correctDigits(data.edgeJumpNoC(), truth.edgeJumpWithoutConstant()));
    m_spectra.add(column, "Edge Jump(2)", correctDigits(data.edgeJump(), truth.edgeJump()));
}

/// mu-t less a line, as the columns of the point table show it.
void tst_Arithmetic::compareColumns(const char* column, const Both& spectrum)
{
    const auto& [data, truth] = spectrum;
    const double energy = data.edge + 40.0;
    const double mut = *interpolateMut(data.points, energy);
    m_spectra.add(column, "mu-t at the edge + 40 eV", correctDigits(mut, truth.mutAt(energy)));
    m_spectra.add(column, "mu-t less Vic1",
                  correctDigits(mut - data.preVicAt(energy),
                                truth.mutAt(energy) - truth.pre.full.at(energy)));
    m_spectra.add(column, "mu-t less Vic2",
                  correctDigits(mut - data.postVicAt(energy),
                                truth.mutAt(energy) - truth.post.full.at(energy)));
}

void tst_Arithmetic::compareCombination(const char* column, const Spectra& spectra,
                                        const LcfRange& range)
{
    const Both& ref1 = spectra[0];
    const Both& ref2 = spectra[1];
    const Both& target = spectra[2];
    const LinearCombination fit = fitLinearCombination(ref1.data, ref2.data, target.data, range);
    const exact::Combination truth =
        exact::fitCombination(ref1.truth, ref2.truth, target.truth, range.min, range.max);
    m_spectra.add(column, "Vic2, ratio of the edge jumps",
                  correctDigits(ref1.data.edgeJump() / ref2.data.edgeJump(),
                                ref1.truth.edgeJump() / ref2.truth.edgeJump()));
    m_spectra.add(column, "LCF, first weight", correctDigits(fit.p1, truth.p1));
    m_spectra.add(column, "LCF, second weight", correctDigits(fit.p2, truth.p2));
    m_spectra.add(column, "LCF, constant", correctDigits(fit.p3, truth.p3));
    m_spectra.add(column, "LCF, a", correctDigits(fit.share1(), truth.share1()));
}

void tst_Arithmetic::compareNoise(const char* column, const Spectra& noisy, const Spectra& smooth,
                                  const LcfRange& range)
{
    for (std::size_t i = 0; i < 3; ++i)
        m_spectra.add(column, "left by the noise: Edge Jump(2)",
                      correctDigits(static_cast<double>(noisy[i].truth.edgeJump()),
                                    smooth[i].truth.edgeJump()));
    const auto share = [&range](const Spectra& spectra) {
        return exact::fitCombination(spectra[0].truth, spectra[1].truth, spectra[2].truth,
                                     range.min, range.max)
            .share1();
    };
    m_spectra.add(column, "left by the noise: LCF, a",
                  correctDigits(static_cast<double>(share(noisy)), share(smooth)));
}

void tst_Arithmetic::comparePoints(const char* column, const PointRows& rows)
{
    const PointChoice choice = choosePoints(rows);
    const double rho = thicknessRatios(rows, 1.0, 1.0).trSbyS;
    std::vector<double> t;
    for (const std::size_t row : choice.normalization)
        t.push_back(rows[row].target());
    const double tV = rows[choice.vPoint].target();
    m_points.add(column, "a, three points",
                 correctDigits(ThreePoint(rows, choice).fraction(t[0], t[1], tV),
                               exact::threePoints(rows, choice).a));
    const VPointFraction fraction = vPointFraction(rows, choice, rho);
    const TargetScale four = FourPointExact(rows, choice).scale(t[0], t[1], t[2]);
    const exact::PointResult fourTruth = exact::fourPointsExact(rows, choice, rho);
    m_points.add(column, "a, exact", correctDigits(fraction.at(four, tV), fourTruth.a));
    m_points.add(column, "t/ts, exact", correctDigits(four.thickness(), fourTruth.t));
    const TargetScale least = FourPointLeastSquares(rows, choice).scale(t.data());
    const exact::PointResult leastTruth = exact::fourPointsLeastSquares(rows, choice, rho);
    m_points.add(column, "a, least squares", correctDigits(fraction.at(least, tV), leastTruth.a));
    m_points.add(column, "t/ts, least squares", correctDigits(least.thickness(), leastTruth.t));
}

void tst_Arithmetic::compareRatios(const char* column, const PointRows& rows)
{
    const ThicknessRatios ratios = thicknessRatios(rows, 1.0, 1.0);
    const exact::Ratios truth = exact::thicknessRatios(rows, choosePoints(rows));
    m_points.add(column, "sbys", correctDigits(ratios.trSbyS, truth.sumBySum));
    m_points.add(column, "mean", correctDigits(ratios.trMean, truth.mean));
    m_points.add(column, "lsA", correctDigits(ratios.trLsA, truth.leastSquares.slope));
    m_points.add(column, "lsB", correctDigits(ratios.trLsB, truth.leastSquares.intercept));
    m_points.add(column, "lsA(NB)", correctDigits(ratios.trLsANB, truth.leastSquaresNoBlank.slope));
    m_points.add(column, "lsB(NB)",
                 correctDigits(ratios.trLsBNB, truth.leastSquaresNoBlank.intercept));
}

namespace
{

/// The point table's rows with the six-digit texts that it holds; the third row is the V point.
PointRows pointTable(const std::vector<double>& energies,
                     const std::function<double(std::size_t spectrum, double energy)>& mut)
{
    PointRows rows(energies.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double energy = numberFromText(textFromNumber(energies[i]));
        const auto shown = [&](std::size_t spectrum) {
            return numberFromText(textFromNumber(mut(spectrum, energy)));
        };
        rows[i].use = true;
        rows[i].vPoint = i == 2;
        rows[i].energy = energy;
        rows[i].mut1 = shown(0);
        rows[i].mut2 = shown(1);
        rows[i].mutTarget = shown(2);
        rows[i].mutBlank = shown(3);
    }
    return rows;
}

constexpr const char* exampleColumn = "example";
constexpr const char* longRanges = "E/50 to E/15";
constexpr const char* shorterRanges = "E/100 to E/50";
constexpr const char* randomLessVic2 = "random less Vic2";

} // namespace

/// Both ways to fill a point table: mu-t as measured, and less the post-edge line.
void tst_Arithmetic::comparePointTables(const char* column, const char* columnLessVic2,
                                        const std::vector<double>& energies, const Spectra& spectra,
                                        const SpectrumPoints& blank)
{
    const auto mut = [&](std::size_t i, double energy) {
        return *interpolateMut(i == 3 ? blank : spectra[i].data.points, energy);
    };
    const PointRows rows = pointTable(energies, mut);
    comparePoints(column, rows);
    compareRatios(column, rows);
    PointRows lessVic2 = pointTable(energies, [&](std::size_t i, double energy) {
        return i == 3 ? mut(i, energy) : mut(i, energy) - spectra[i].data.postVicAt(energy);
    });
    for (PointRow& row : lessVic2)
        row.useVicRefs = row.useVicTarget = true;
    comparePoints(columnLessVic2, lessVic2);
    compareRatios(columnLessVic2, lessVic2);
}

/// The example with the noise of another measurement; the shipped one is that of the seed 1.
void tst_Arithmetic::measureExample(std::uint_fast64_t seed)
{
    const QTemporaryDir folder;
    QVERIFY(writeSample(folder.path(), MixedSample(), seed).isEmpty());
    const FitRanges ranges{0.0, 0.0, -50.0, 100.0};
    const LcfRange lcf{8313.0, 8404.5};
    std::vector<SpectrumPoints> points;
    Spectra noisy;
    Spectra smooth;
    for (const Measurement measurement :
         {Measurement::Ref1, Measurement::Ref2, Measurement::Target, Measurement::Blank}) {
        const auto read = [&](const QString& name) {
            AXafsData data;
            return data.read(name) ? data.points : SpectrumPoints();
        };
        points.push_back(read(folder.filePath(fileName(measurement))));
        QVERIFY(!points.back().empty());
        if (measurement == Measurement::Blank)
            continue;
        noisy.push_back(fitted(points.back(), 8350.0, ranges));
        const SpectrumPoints noiseFree = read(
            QStringLiteral(BUILD_FOLDER "/examples/nickel-noise-free/") + fileName(measurement));
        QVERIFY(!noiseFree.empty());
        smooth.push_back(fitted(noiseFree, 8350.0, ranges));
    }
    for (const Both& spectrum : noisy) {
        compareLines(exampleColumn, spectrum);
        compareColumns(exampleColumn, spectrum);
    }
    compareCombination(exampleColumn, noisy, lcf);
    compareNoise(exampleColumn, noisy, smooth, lcf);
    comparePointTables(exampleColumn, "example less Vic2", {8313, 8381, 8390, 8404.5, 8460, 8475},
                       noisy, points[3]);
}

void tst_Arithmetic::compareSample(const char* column, const RandomSample& sample,
                                   const FitRanges& ranges, Random& random)
{
    const double edge = sample.edge;
    const Spectra spectra = fitted(sample.measured, edge, ranges);
    const LcfRange lcf{edge - 20.0, edge + 60.0};
    for (const Both& spectrum : spectra) {
        compareLines(column, spectrum);
        compareColumns(column, spectrum);
    }
    compareCombination(column, spectra, lcf);
    if (sample.noise > 0.0)
        compareNoise(column, spectra, fitted(sample.smooth, edge, ranges), lcf);
    comparePointTables("random", randomLessVic2,
                       {edge - random.uniform(11.0, 19.0), edge + random.uniform(25.0, 35.0),
                        edge + random.uniform(8.0, 14.0), edge + random.uniform(45.0, 60.0),
                        edge + random.uniform(65.0, 80.0)},
                       spectra, sample.measured[3]);
}

/// @param parts, fewerParts  of the edge's energy that the fitted ranges are, from and to
void tst_Arithmetic::measureRandomSpectra(const char* column, double parts, double fewerParts)
{
    Random random;
    const FitRanges ranges{1.0 / parts, 1.0 / fewerParts, -30.0, 80.0};
    for (int i = 0; i < 40; ++i)
        compareSample(column, randomSample(ranges, random), ranges, random);
}

void tst_Arithmetic::initTestCase()
{
    for (std::uint_fast64_t seed = 1; seed <= 10; ++seed)
        measureExample(seed);
    measureRandomSpectra(longRanges, 50.0, 15.0);
    measureRandomSpectra(shorterRanges, 100.0, 50.0);
    measureRandomSpectra("E/300 to E/100", 300.0, 100.0);
    measureRandomSpectra("E/1000 to E/300", 1000.0, 300.0);
}

void tst_Arithmetic::coefficientsLoseWhatTheirConditionTakes()
{
    qInfo("largest error of a line: %.2g of what its condition allows", m_growth);
    QVERIFY(m_growth < 1.0);
}

void tst_Arithmetic::shownDigitsAreRight_data()
{
    QTest::addColumn<double>("worst");  // over long ranges
    QTest::addColumn<double>("median"); // over shorter ones
    for (const char* quantity :
         {"Edge Jump(1)", "Edge Jump(2)", "Vic2, ratio of the edge jumps",
          "mu-t at the edge + 40 eV", "LCF, first weight", "LCF, second weight", "LCF, a"})
        QTest::newRow(quantity) << 6.0 << 6.0;
    // Differences that may be as small as one likes, and the fewer their right digits.
    QTest::newRow("mu-t less Vic1") << 0.0 << 6.0;
    QTest::newRow("mu-t less Vic2") << 0.0 << 6.0;
    QTest::newRow("LCF, constant") << 0.0 << 4.0;
}

void tst_Arithmetic::shownDigitsAreRight()
{
    QFETCH(double, worst);
    QFETCH(double, median);
    const QString quantity = QString::fromUtf8(QTest::currentDataTag());
    for (const char* column : {exampleColumn, longRanges, shorterRanges}) {
        const DigitCell cell = m_spectra.cell(QString::fromUtf8(column), quantity);
        QVERIFY2(cell.median >= median, qPrintable(cell.text()));
    }
    for (const char* column : {exampleColumn, longRanges}) {
        const DigitCell cell = m_spectra.cell(QString::fromUtf8(column), quantity);
        QVERIFY2(cell.worst >= worst, qPrintable(cell.text()));
    }
}

void tst_Arithmetic::pointMethodsShowRightDigits()
{
    for (const QString& column : m_points.columns()) {
        // A line of a short range may leave so straight a target that the least squares suffer.
        const double worst = column == QLatin1String(randomLessVic2) ? 3.0 : 6.0;
        for (const QString& row : m_points.rows()) {
            const DigitCell cell = m_points.cell(column, row);
            QVERIFY2(cell.worst >= worst && cell.median >= 6.0, qPrintable(row));
        }
    }
}

namespace
{

QStringList linesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
               ? QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))
               : QStringList();
}

/// The numbers of a table's line from its second cell on.
std::vector<double> numbersOf(const QString& line)
{
    static const QRegularExpression number(QStringLiteral("[0-9]+\\.[0-9]"));
    std::vector<double> numbers;
    for (auto found = number.globalMatch(line, line.indexOf(QLatin1Char('|'), 1)); found.hasNext();)
        numbers.push_back(numberFromText(found.next().captured()));
    return numbers;
}

} // namespace

// To one digit: the example's spectra pass through the logarithm of the system's library.
void tst_Arithmetic::documentHasTheseDigits()
{
    if (qEnvironmentVariableIsSet("DROVIK_TEST_SEED"))
        QSKIP("The document has the digits of the usual seed.");
    const QStringList english = linesOf(QStringLiteral(SOURCE_FOLDER "/docs/numerics.md"));
    const QStringList japanese = linesOf(QStringLiteral(SOURCE_FOLDER "/docs/ja/numerics.md"));
    for (const DigitTable* table : {&m_spectra, &m_points}) {
        for (const QString& row : table->rows()) {
            const QStringList lines = english.filter(QStringLiteral("| %1 |").arg(row));
            QVERIFY2(lines.size() == 1, qPrintable(row));
            const std::vector<double> found = numbersOf(table->markdownRow(row));
            const std::vector<double> shown = numbersOf(lines.first());
            QCOMPARE(shown.size(), found.size());
            for (std::size_t i = 0; i < found.size(); ++i)
                QVERIFY2(std::abs(shown[i] - found[i]) <= 1.0, qPrintable(row));
            const QString cells = lines.first().mid(lines.first().indexOf(QLatin1Char('|'), 1));
            QVERIFY2(!japanese.filter(cells).isEmpty(), qPrintable(row));
        }
    }
}

void tst_Arithmetic::cleanupTestCase()
{
    qInfo("\n%s\n%s", qPrintable(m_spectra.markdown(QStringLiteral("Correct digits"))),
          qPrintable(m_points.markdown(QStringLiteral("Correct digits"))));
}

QTEST_GUILESS_MAIN(tst_Arithmetic)
#include "tst_Arithmetic.moc"

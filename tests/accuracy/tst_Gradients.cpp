#include "analysis/LcfUncertainty.h"
#include "analysis/PointRatio.h"
#include "analysis/TableCovariance.h"
#include "tests/accuracy/RandomSpectra.h"
#include "tests/accuracy/SixtyDigits.h"

#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace
{

using exact::Real;

constexpr FitRanges ranges{1.0 / 50.0, 1.0 / 15.0, -50.0, 100.0};

/// What a point method is to be done with.
struct Case {
    Method method;
    ThicknessType type;
    Conditions conditions;
    std::vector<ChosenPoint> points;
    RandomSample sample;
};

SubtractedLine lineOf(const Case& that, std::size_t spectrum)
{
    return subtractedLine(static_cast<SpectrumSet::Index>(spectrum), that.conditions);
}

Real entry(const Case& that, std::size_t i, const exact::Spectrum& spectrum, double energy)
{
    const SubtractedLine line = lineOf(that, i);
    Real mut = spectrum.mutAt(energy);
    if (line != SubtractedLine::None)
        mut -= (line == SubtractedLine::Pre ? spectrum.pre : spectrum.post).full.at(energy);
    return mut;
}

PointRows tableOf(const Case& that, const std::vector<exact::Spectrum>& spectra)
{
    PointRows rows;
    for (const ChosenPoint& point : that.points) {
        PointRow row;
        row.use = point.use;
        row.tRatio = point.tRatio;
        row.vPoint = point.vPoint;
        row.useVicRefs = that.conditions.referencesMinusVictreen;
        row.useVicTarget = that.conditions.targetMinusVictreen;
        row.energy = *point.energy;
        double* const muts[] = {&row.mut1, &row.mut2, &row.mutTarget, &row.mutBlank};
        for (std::size_t i = 0; i < spectra.size(); ++i)
            *muts[i] = static_cast<double>(entry(that, i, spectra[i], row.energy));
        rows.push_back(row);
    }
    return rows;
}

double selected(const exact::Ratios& ratios, ThicknessType type, const Real& edgeJumps)
{
    switch (type) {
    case ThicknessType::SumBySum:
        return static_cast<double>(ratios.sumBySum);
    case ThicknessType::Mean:
        return static_cast<double>(ratios.mean);
    case ThicknessType::LeastSquares:
        return static_cast<double>(ratios.leastSquares.slope);
    case ThicknessType::LeastSquaresNoBlank:
        return static_cast<double>(ratios.leastSquaresNoBlank.slope);
    case ThicknessType::EdgeJumps:
        break;
    }
    return static_cast<double>(edgeJumps);
}

/// The rows that the thickness ratio uses, as the normalization points of a choice.
PointChoice ratioChoice(const PointRows& rows)
{
    const bool marked =
        std::any_of(rows.begin(), rows.end(), [](const PointRow& row) { return row.tRatio; });
    PointChoice choice;
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (!rows[i].vPoint && (marked ? rows[i].tRatio : rows[i].use))
            choice.normalization.push_back(i);
    return choice;
}

exact::PointResult literalResult(const Case& that, const std::vector<exact::Spectrum>& spectra)
{
    const PointRows rows = tableOf(that, spectra);
    const PointChoice choice = choosePoints(rows);
    if (that.method == Method::ThreePoint)
        return exact::threePoints(rows, choice);
    const double rho = selected(exact::thicknessRatios(rows, ratioChoice(rows)), that.type,
                                spectra[0].edgeJump() / spectra[1].edgeJump());
    return that.method == Method::FourPointExact ? exact::fourPointsExact(rows, choice, rho)
                                                 : exact::fourPointsLeastSquares(rows, choice, rho);
}

exact::Spectrum literalSpectrum(const Case& that, const SpectrumPoints& points)
{
    return {points, that.sample.edge, ranges.preEdgeEnd, ranges.postEdgeStart};
}

FittedSpectrum programSpectrum(const Case& that, const SpectrumPoints& points)
{
    FittedSpectrum spectrum;
    spectrum.setBounds({that.sample.edge + ranges.preEdgeEnd, that.sample.edge,
                        that.sample.edge + ranges.postEdgeStart});
    spectrum.setPoints(points);
    return spectrum;
}

/// Derivatives by the measured mu-t of one spectrum.
struct PointGradient {
    std::vector<double> a;
    std::vector<double> t;
};

PointGradient programGradient(const Case& that, const PointRatio& ratio, const PointRows& rows,
                              std::size_t i)
{
    const FittedSpectrum spectrum = programSpectrum(that, that.sample.measured[i]);
    const MeasuredSums sums(spectrum);
    const auto entries = entrySums(sums, lineOf(that, i), rows);
    const EntryGradient byA = ratio.fractionGradient();
    PointGradient gradient{std::vector<double>(spectrum.points.size(), 0.0),
                           std::vector<double>(spectrum.points.size(), 0.0)};
    for (std::size_t k = 0; k < entries.size(); ++k) {
        const std::vector<double> weights = sums.weights(entries[k]);
        for (std::size_t j = 0; j < weights.size(); ++j) {
            gradient.a[j] += byA[i][k] * weights[j];
            gradient.t[j] += ratio.byThickness[i][k] * weights[j];
        }
    }
    return gradient;
}

double largest(const std::vector<double>& values)
{
    double found = 0.0;
    for (const double value : values)
        found = std::max(found, std::abs(value));
    return found;
}

/// Points of a spectrum at and beside the table's energies, and some of either fit.
std::vector<std::size_t> pointsToMove(const Case& that, const SpectrumPoints& points)
{
    std::vector<std::size_t> chosen{0, 1, points.size() / 8, points.size() - 1,
                                    points.size() - points.size() / 8};
    for (const ChosenPoint& row : that.points)
        for (std::size_t j = 1; j < points.size(); ++j)
            if (points[j - 1].energy < *row.energy && *row.energy <= points[j].energy) {
                chosen.push_back(j - 1);
                chosen.push_back(j);
            }
    std::sort(chosen.begin(), chosen.end());
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    return chosen;
}

} // namespace

/// The derivatives of the point methods' results by every measured mu-t, against differences of the
/// whole chain in sixty digits.
class tst_Gradients : public QObject
{
    Q_OBJECT

private:
    Random m_random;

    Case caseOf(Method method, ThicknessType type, int rows);
    void compare(const Case& that);
    void compareSpectrum(const Case& that, const PointRatio& ratio, const PointRows& rows,
                         std::vector<exact::Spectrum> spectra, std::size_t i);
    void compareFit(const LcfRange& range, std::vector<exact::Spectrum> spectra, std::size_t i,
                    const std::vector<double>& gradient);

private slots:
    void pointMethods_data();
    void pointMethods();
    void combinationFits();
    void covarianceIsTheSumOverAllPoints();
    void missingPointsAndRowsWeighNothing();
};

Case tst_Gradients::caseOf(Method method, ThicknessType type, int rows)
{
    Case that{method, type, {}, {}, randomSample(ranges, m_random)};
    that.conditions.thickness = type;
    that.conditions.referencesMinusVictreen = m_random.oneIn(2);
    that.conditions.targetMinusVictreen = m_random.oneIn(2);
    that.conditions.victreenIsPre = m_random.oneIn(2);
    const bool marks = m_random.oneIn(2);
    const double above[] = {m_random.uniform(-19.0, -11.0), m_random.uniform(25.0, 35.0),
                            m_random.uniform(8.0, 14.0),    m_random.uniform(45.0, 60.0),
                            m_random.uniform(65.0, 70.0),   m_random.uniform(71.0, 78.0)};
    for (int i = 0; i < 6; ++i)
        that.points.push_back(
            {that.sample.edge + above[i], i < rows, marks && i != 2 && i < 5, i == 2});
    return that;
}

void tst_Gradients::pointMethods_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("method");
    QTest::newRow("three points") << 3 << int(Method::ThreePoint);
    QTest::newRow("exact") << 4 << int(Method::FourPointExact);
    QTest::newRow("least squares of 4") << 4 << int(Method::FourPointLeastSquares);
    QTest::newRow("least squares of 5") << 5 << int(Method::FourPointLeastSquares);
    QTest::newRow("least squares of 6") << 6 << int(Method::FourPointLeastSquares);
}

void tst_Gradients::pointMethods()
{
    QFETCH(int, rows);
    QFETCH(int, method);
    for (const ThicknessType type :
         {ThicknessType::SumBySum, ThicknessType::Mean, ThicknessType::LeastSquares,
          ThicknessType::LeastSquaresNoBlank, ThicknessType::EdgeJumps})
        compare(caseOf(static_cast<Method>(method), type, rows));
}

void tst_Gradients::compare(const Case& that)
{
    std::vector<exact::Spectrum> spectra;
    for (const SpectrumPoints& points : that.sample.measured)
        spectra.push_back(literalSpectrum(that, points));
    const PointRows rows = tableOf(that, spectra);
    const RatioGradient rho =
        ratioGradient(rows, that.type, static_cast<double>(spectra[0].edgeJump()),
                      static_cast<double>(spectra[1].edgeJump()));
    const PointRatio ratio = pointRatio(rows, choosePoints(rows), that.method, rho);
    const exact::PointResult truth = literalResult(that, spectra);
    QVERIFY(exact::correctDigits(ratio.fraction(), truth.a) > 6.0);
    if (that.method != Method::ThreePoint)
        QVERIFY(exact::correctDigits(ratio.thickness, truth.t) > 6.0);
    for (std::size_t i = 0; i < spectra.size(); ++i)
        compareSpectrum(that, ratio, rows, spectra, i);
}

void tst_Gradients::compareSpectrum(const Case& that, const PointRatio& ratio,
                                    const PointRows& rows, std::vector<exact::Spectrum> spectra,
                                    std::size_t i)
{
    const PointGradient gradient = programGradient(that, ratio, rows, i);
    const SpectrumPoints& measured = that.sample.measured[i];
    const double scaleA = largest(gradient.a) + 1e-3;
    const double scaleT = largest(gradient.t) + 1e-3;
    // short where the result bends strongly; the derivatives tell
    const double step = 0x1p-15 / std::max(1.0, scaleA);
    for (const std::size_t j : pointsToMove(that, measured)) {
        std::array<exact::PointResult, 2> moved;
        for (const int side : {0, 1}) {
            SpectrumPoints points = measured;
            points[j].mut += side == 0 ? -step : step;
            spectra[i] = literalSpectrum(that, points);
            moved[side] = literalResult(that, spectra);
        }
        const auto byA = static_cast<double>((moved[1].a - moved[0].a) / (2.0 * step));
        const auto byT = static_cast<double>((moved[1].t - moved[0].t) / (2.0 * step));
        const QByteArray where =
            "spectrum " + QByteArray::number(int(i)) + ", point " + QByteArray::number(int(j)) +
            ": " + QByteArray::number(gradient.a[j]) + " " + QByteArray::number(byA) + ", t " +
            QByteArray::number(gradient.t[j]) + " " + QByteArray::number(byT);
        QVERIFY2(std::abs(gradient.a[j] - byA) < 1e-5 * scaleA, where.constData());
        if (that.method != Method::ThreePoint)
            QVERIFY2(std::abs(gradient.t[j] - byT) < 1e-5 * scaleT, where.constData());
    }
}

void tst_Gradients::combinationFits()
{
    for (int round = 0; round < 5; ++round) {
        const Case that = caseOf(Method::ThreePoint, ThicknessType::EdgeJumps, 3);
        const LcfRange range{that.sample.edge - 20.0, that.sample.edge + 60.0};
        std::vector<FittedSpectrum> fitted;
        std::vector<MeasuredSums> sums;
        std::vector<exact::Spectrum> spectra;
        for (std::size_t i = 0; i < 3; ++i) {
            SpectrumPoints points = that.sample.measured[i];
            for (SpectrumPoint& point : points) // references between the target's points
                point.energy += i == 2 ? 0.0 : m_random.uniform(-0.1, 0.1);
            fitted.push_back(programSpectrum(that, points));
            fitted.back().fitVictreens();
            spectra.push_back(literalSpectrum(that, points));
        }
        for (const FittedSpectrum& spectrum : fitted)
            sums.emplace_back(spectrum);
        const LinearCombination fit = fitLinearCombination(fitted[0], fitted[1], fitted[2], range);
        const LcfGradient gradient = lcfGradient({sums[0], sums[1], sums[2], range, fit});
        for (std::size_t i = 0; i < 3; ++i)
            compareFit(range, spectra, i, gradient[i]);
    }
}

void tst_Gradients::compareFit(const LcfRange& range, std::vector<exact::Spectrum> spectra,
                               std::size_t i, const std::vector<double>& gradient)
{
    const exact::Spectrum measured = spectra[i];
    constexpr double step = 0x1p-18;
    for (std::size_t j = 0; j < gradient.size(); j += 1 + gradient.size() / 12) {
        std::array<Real, 2> moved;
        for (const int side : {0, 1}) {
            SpectrumPoints points = measured.points;
            points[j].mut += side == 0 ? -step : step;
            spectra[i] = {points, measured.edge, ranges.preEdgeEnd, ranges.postEdgeStart};
            moved[side] =
                exact::fitCombination(spectra[0], spectra[1], spectra[2], range.min, range.max)
                    .share1();
        }
        const auto by = static_cast<double>((moved[1] - moved[0]) / (2.0 * step));
        QVERIFY2(std::abs(gradient[j] - by) < 1e-5 * largest(gradient),
                 qPrintable(QStringLiteral("spectrum %1, point %2: %3 %4")
                                .arg(i)
                                .arg(j)
                                .arg(gradient[j])
                                .arg(by)));
    }
}

/// With noise that differs from point to point, and with the same for all.
void tst_Gradients::covarianceIsTheSumOverAllPoints()
{
    for (int round = 0; round < 6; ++round) {
        const Case that = caseOf(Method::FourPointLeastSquares, ThicknessType::EdgeJumps, 6);
        FittedSpectrum spectrum = programSpectrum(that, that.sample.measured[0]);
        if (round >= 4)
            spectrum.preEdgeEnd = spectrum.postEdgeStart + 50.0; // the fits share points
        SpectrumNoise noise;
        noise.sigma = 0.01;
        noise.degrees = 17.0;
        for (std::size_t j = 0; round % 2 == 1 && j < spectrum.points.size(); ++j)
            noise.variance.push_back(m_random.uniform(1e-5, 1e-3));
        const SubtractedLine line = round < 2   ? SubtractedLine::None
                                    : round < 4 ? SubtractedLine::Pre
                                                : SubtractedLine::Post;
        const MeasuredSums sums(spectrum);
        PointRows rows = tableOf(that, {literalSpectrum(that, that.sample.measured[0])});
        rows[5].energy = rows[4].energy + 1e-3; // between the same neighbours
        const auto entries = entrySums(sums, line, rows);
        const TableCovariance covariance = tableCovariance(sums, line, rows, noise);
        QCOMPARE(covariance.degrees, 17.0);
        for (std::size_t k = 0; k < entries.size(); ++k)
            for (std::size_t l = 0; l < entries.size(); ++l) {
                const std::vector<double> first = sums.weights(entries[k]);
                const std::vector<double> second = sums.weights(entries[l]);
                double sum = 0.0;
                for (std::size_t j = 0; j < first.size(); ++j)
                    sum += first[j] * second[j] * noise.varianceAt(j);
                QVERIFY2(std::abs(covariance.noise[k][l] - sum) < 1e-12,
                         qPrintable(QStringLiteral("%1 %2").arg(covariance.noise[k][l]).arg(sum)));
            }
    }
}

void tst_Gradients::missingPointsAndRowsWeighNothing()
{
    const Case that = caseOf(Method::ThreePoint, ThicknessType::SumBySum, 3);
    const FittedSpectrum spectrum = programSpectrum(that, that.sample.measured[0]);
    const MeasuredSums sums(spectrum);
    const MeasuredSum beyond =
        sums.mutLess(SubtractedLine::Post, spectrum.points.back().energy + 1.0);
    for (const double weight : sums.weights(beyond))
        QCOMPARE(weight, 0.0);
    PointRows rows(2);
    rows[0].use = true;                          // without an energy
    rows[1].energy = spectrum.points[20].energy; // nothing is calculated from it
    const auto entries = entrySums(sums, SubtractedLine::None, rows);
    for (const std::size_t row : {0U, 1U})
        for (const double weight : sums.weights(entries[row]))
            QCOMPARE(weight, 0.0);
    // Below the first point the line runs through the origin.
    const double half = 0.5 * spectrum.points[0].energy;
    const std::vector<double> first = sums.weights(sums.mutLess(SubtractedLine::None, half));
    QCOMPARE(first[0], 0.5);
    QCOMPARE(std::count(first.begin(), first.end(), 0.0),
             static_cast<std::ptrdiff_t>(first.size() - 1));
    const FittedSpectrum none;
    QVERIFY(MeasuredSums(none).weights(MeasuredSum()).empty());
}

QTEST_APPLESS_MAIN(tst_Gradients)
#include "tst_Gradients.moc"

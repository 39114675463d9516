#include "tests/accuracy/CoverageTable.h"
#include "tests/accuracy/SimulatedSample.h"

#include <QtTest>

#include <array>
#include <cmath>

namespace
{

constexpr int fewDraws = 200;
constexpr double oneSigma = 0.683;
constexpr double twoSigma = 0.954;

/// A point method on the sample.
struct PointCase {
    const char* name;
    Method method;
    int rows;
    ThicknessType type;
    const char* typeName;
    bool lessLine; ///< the references lose the post-edge line
};

std::vector<PointCase> allCases()
{
    std::vector<PointCase> cases;
    for (const bool lessLine : {false, true}) {
        cases.push_back(
            {"three points", Method::ThreePoint, 3, ThicknessType::EdgeJumps, "-", lessLine});
        for (const auto& [type, typeName] :
             {std::pair(ThicknessType::SumBySum, "Sum by Sum"),
              std::pair(ThicknessType::Mean, "Mean"),
              std::pair(ThicknessType::LeastSquares, "Least Square"),
              std::pair(ThicknessType::LeastSquaresNoBlank, "Least Square(NB)"),
              std::pair(ThicknessType::EdgeJumps, "Victreen")}) {
            cases.push_back({"exact", Method::FourPointExact, 4, type, typeName, lessLine});
            cases.push_back({"4 rows", Method::FourPointLeastSquares, 4, type, typeName, lessLine});
            cases.push_back({"5 rows", Method::FourPointLeastSquares, 5, type, typeName, lessLine});
            cases.push_back({"6 rows", Method::FourPointLeastSquares, 6, type, typeName, lessLine});
        }
    }
    return cases;
}

AnalysisInput inputOf(const PointCase& that, const SimulatedSample::Spectra& spectra)
{
    Conditions conditions;
    conditions.thickness = that.type;
    conditions.referencesMinusVictreen = that.lessLine;
    conditions.exact = that.method == Method::FourPointExact;
    return SimulatedSample::input(spectra, that.rows, conditions);
}

double fractionOf(const AnalysisInput& input)
{
    return std::get<TargetResult>(targetResult(input)).a;
}

/// What is expected of a case.
struct Expected {
    PointCase that;
    double a;          ///< without noise
    double sigma;      ///< of a, from the known noise
    double scaleError; ///< sigma(c) / c; for three points that of the target's step
};

Expected expectedOf(const PointCase& that, const SimulatedSample& sample, double sigma)
{
    SpectrumNoises noises;
    for (auto& noise : noises)
        noise = SpectrumNoise{sigma, 1e9, {}};
    const AnalysisInput input = inputOf(that, sample.smooth());
    const auto result = std::get<TargetResult>(targetResult(input));
    const TargetUncertainty uncertainty =
        targetUncertainty(input, that.method, tableCovariances(input, noises), oneSigma);
    const double sigmaA = std::hypot(uncertainty.sigmaA, uncertainty.sigmaARef);
    if (that.method != Method::ThreePoint)
        return {that, result.a, sigmaA,
                std::hypot(uncertainty.sigmaT, uncertainty.sigmaTRef) / std::abs(result.thickness)};
    const double step = input.table[1].target() - input.table[0].target();
    return {that, result.a, sigmaA, std::sqrt(2.0) * sigma / std::abs(step)};
}

} // namespace

/// How often the intervals of the point methods hold the result without noise, where all four
/// spectra are equally noisy and the noise is found in their scatter.
class tst_PointCoverage : public QObject
{
    Q_OBJECT

private:
    CoverageTable m_cells; ///< one for each case, fraction and noise; for each case in a short run
    CoverageTable m_wellKnown; ///< the same where the scale is known to a tenth

    void draw(double fraction, double sigma, std::uint_fast64_t seed);
    void judge(const Expected& expected, const SimulatedSample::Spectra& spectra,
               const SpectrumNoises& noises, const QByteArray& name);

private slots:
    void initTestCase();
    void intervalsHoldTheResultWithoutNoise();
    void deviationsAreAsPredicted();
    void cleanupTestCase();
};

/// Deviations are counted in those expected, so that different noises go together.
void tst_PointCoverage::judge(const Expected& expected, const SimulatedSample::Spectra& spectra,
                              const SpectrumNoises& noises, const QByteArray& name)
{
    const AnalysisInput input = inputOf(expected.that, spectra);
    const TableCovariances covariances = tableCovariances(input, noises);
    const Method method = expected.that.method;
    const auto one = targetUncertainty(input, method, covariances, oneSigma);
    const auto two = targetUncertainty(input, method, covariances, twoSigma);
    const double sigma = std::hypot(one.sigmaA, one.sigmaARef) / expected.sigma;
    Coverage single;
    single.add((fractionOf(input) - expected.a) / expected.sigma, sigma * sigma,
               holds(one.a, expected.a), holds(two.a, expected.a));
    m_cells[name].add(single);
    if (expected.scaleError <= 0.1)
        m_wellKnown[name].add(single);
}

void tst_PointCoverage::draw(double fraction, double sigma, std::uint_fast64_t seed)
{
    MixedSample truth;
    truth.fraction = fraction;
    const SimulatedSample sample(truth);
    std::vector<Expected> cases;
    for (const PointCase& that : allCases()) {
        cases.push_back(expectedOf(that, sample, sigma));
        if (cases.back().scaleError > 0.3 || cases.back().sigma > 0.1)
            cases.pop_back();
    }
    NormalNoise random(seed);
    for (int draw = drawsOr(fewDraws); draw > 0; --draw) {
        const SimulatedSample::Spectra spectra = sample.noisy(sigma, random);
        const SpectrumNoises noises = SimulatedSample::scatter(spectra);
        for (const Expected& expected : cases) {
            const PointCase& that = expected.that;
            QByteArray name =
                QByteArray(that.name) + ", " + that.typeName + (that.lessLine ? ", less Vic2" : "");
            if (isFull())
                name +=
                    ", a " + QByteArray::number(fraction) + ", noise " + QByteArray::number(sigma);
            judge(expected, spectra, noises, name);
        }
    }
}

void tst_PointCoverage::initTestCase()
{
    std::uint_fast64_t seed = 100;
    for (const double fraction : {0.0, 0.35, 1.0})
        for (const double sigma : {5e-5, 5e-4, 2e-3, 4.5e-3})
            draw(fraction, sigma, ++seed);
}

void tst_PointCoverage::intervalsHoldTheResultWithoutNoise()
{
    for (const auto& [name, cell] : m_cells.cells()) {
        QVERIFY2(std::abs(cell.percentOne() - 68.3) < 3.0, cell.text(name));
        QVERIFY2(std::abs(cell.percentTwo() - 95.4) < 1.5, cell.text(name));
    }
}

void tst_PointCoverage::deviationsAreAsPredicted()
{
    for (const auto& [name, cell] : m_wellKnown.cells())
        QVERIFY2(std::abs(cell.predictedOverFound() - 1.0) < 0.05, cell.text(name));
}

void tst_PointCoverage::cleanupTestCase()
{
    m_cells.print("68.3 % intervals of the point methods");
    m_wellKnown.print("the same, scale known to a tenth");
}

QTEST_APPLESS_MAIN(tst_PointCoverage)
#include "tst_PointCoverage.moc"

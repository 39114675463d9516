#include "analysis/EnergyCandidates.h"
#include "analysis/EnergyRanking.h"
#include "examples/AbsorptionModel.h"
#include "examples/MixedSampleFiles.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/NormalNoise.h"

#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using Spectra = std::array<FittedSpectrum, SpectrumSet::count>;

constexpr FitBounds bounds{8300.0, 8350.0, 8450.0};

/// The shipped example; without a seed, the one without noise.
Spectra example(std::optional<std::uint_fast64_t> seed)
{
    Spectra spectra;
    constexpr std::array<Measurement, SpectrumSet::count> measurements{
        Measurement::Ref1, Measurement::Ref2, Measurement::Target, Measurement::Blank};
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        SpectrumPoints points;
        std::optional<std::uint_fast64_t> own;
        if (seed)
            own = *seed * 4 + static_cast<std::uint_fast64_t>(measurements[i]);
        for (const ScanStep& step : scan(MixedSample(), measurements[i], own))
            points.push_back({0.0, step.energy, std::log(step.incident / step.transmitted)});
        spectra[i].setBounds(bounds);
        spectra[i].setPoints(points);
        spectra[i].fitVictreens();
    }
    return spectra;
}

AnalysisInput inputOf(const Spectra& spectra)
{
    AnalysisInput input;
    for (std::size_t i = 0; i < spectra.size(); ++i)
        input.spectra.all[i] = &spectra[i];
    input.conditions.thickness = ThicknessType::SumBySum;
    input.conditions.referencesMinusVictreen = false;
    return input;
}

bool holds(const std::vector<double>& energies, double wanted, double within)
{
    return std::any_of(energies.begin(), energies.end(),
                       [=](double energy) { return std::abs(energy - wanted) <= within; });
}

double muTAt(const FittedSpectrum& spectrum, double energy)
{
    return *formulas::muTAt(spectrum.points, energy);
}

/// A target of thickness t/ts = 1 from the references, literally.
struct LiteralTarget {
    const Spectra& spectra;
    double a;
    double rho = 1.1;

    double blank(double energy) const { return muTAt(spectra[SpectrumSet::Blank], energy); }
    double ref1(double energy) const
    {
        return muTAt(spectra[SpectrumSet::Ref1], energy) - blank(energy);
    }
    double ref2(double energy) const
    {
        return muTAt(spectra[SpectrumSet::Ref2], energy) - blank(energy);
    }
    /// Blank included.
    double mut(double energy) const
    {
        return 0.5 *
                   ((1.0 + 1.0 / rho) * a * ref1(energy) + (1.0 + rho) * (1.0 - a) * ref2(energy)) +
               blank(energy);
    }
    formulas::Point point(double energy, double targetMut) const
    {
        return {energy, ref1(energy), ref2(energy), targetMut - blank(energy)};
    }

    /// The points of a choice, the V point last, of a target that shows what `shown` says.
    template <class Shown>
    std::vector<formulas::Point> points(const RankedChoice& choice, const Shown& shown) const
    {
        std::vector<formulas::Point> points;
        for (const double energy : choice.points)
            points.push_back(point(energy, shown(energy)));
        points.push_back(point(choice.vPoint, shown(choice.vPoint)));
        return points;
    }

    /// @param points  as points() gives them
    static formulas::Result result(std::vector<formulas::Point> points)
    {
        const formulas::Point vPoint = points.back();
        points.pop_back();
        double sum1 = 0.0;
        double sum2 = 0.0;
        for (const formulas::Point& point : points) {
            sum1 += point.r1;
            sum2 += point.r2;
        }
        return formulas::fourPoint(formulas::exactScale(points), sum1 / sum2, vPoint);
    }

    template <class Shown>
    formulas::Result result(const RankedChoice& choice, const Shown& shown) const
    {
        return result(points(choice, shown));
    }
};

/// A target whose absorption is counted, at the points of a choice: a million photons before it.
class CountedTarget
{
public:
    CountedTarget(const LiteralTarget& target, const RankedChoice& choice)
        : m_points(target.points(choice, [&](double energy) { return target.mut(energy); }))
    {
        for (const formulas::Point& point : m_points) {
            m_blank.push_back(target.blank(point.e));
            m_passed.push_back(1e6 * std::exp(-target.mut(point.e)));
        }
    }

    /// The points with what one count shows.
    std::vector<formulas::Point> draw(NormalNoise& random) const
    {
        std::vector<formulas::Point> points = m_points;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double incident = 1e6 + 1e3 * random.next();
            const double transmitted = m_passed[i] + std::sqrt(m_passed[i]) * random.next();
            points[i].t = std::log(incident / transmitted) - m_blank[i];
        }
        return points;
    }

private:
    std::vector<formulas::Point> m_points;
    std::vector<double> m_blank;
    std::vector<double> m_passed; ///< behind the sample, without noise
};

} // namespace

/// Which energies to measure.
class tst_EnergyRanking : public QObject
{
    Q_OBJECT

private:
    Spectra m_noisy = example(1);
    Spectra m_smooth = example(std::nullopt);

private slots:
    void examplesCrossingsAreFound();
    void crossingsAreThoseOfTheDifference();
    void noiseMakesNoCrossings();
    void candidatesBelowTheEdgeAreAlike();
    void deviationsAreThoseOfManyDraws();
    void otherFiguresAreLiteral();
    void frontIsNotBeaten();
    void orderIsByClosureAndDeviation();
    void missingReferenceHasNoRanking();
};

void tst_EnergyRanking::examplesCrossingsAreFound()
{
    for (const Spectra& spectra : {m_noisy, m_smooth}) {
        const std::vector<double> found = crossings(
            spectra[SpectrumSet::Ref1], spectra[SpectrumSet::Ref2], &spectra[SpectrumSet::Blank]);
        for (const double energy : absorption::isosbestic)
            QVERIFY2(holds(found, energy, 0.3), qPrintable(QString::number(energy)));
        QVERIFY(!holds(found, 8313.0, 5.0)); // below the edge the states are alike everywhere
        QVERIFY(std::is_sorted(found.begin(), found.end()));
    }
}

/// Straight spectra of different slope, alike below the edge, cross where they are made to.
void tst_EnergyRanking::crossingsAreThoseOfTheDifference()
{
    FittedSpectrum ref1;
    FittedSpectrum ref2;
    SpectrumPoints points1;
    SpectrumPoints points2;
    for (int i = 0; i < 200; ++i) {
        const double energy = 8250.0 + i;
        const double common = energy < 8350.0 ? 0.3 : 1.3;
        const double apart = energy < 8350.0 ? 0.0 : 0.01 * std::cos(0.1 * (energy - 8360.25));
        points1.push_back({0.0, energy, 2.0 * (common + apart)});
        points2.push_back({0.0, energy, common - apart});
    }
    ref1.setBounds(bounds);
    ref1.setPoints(points1);
    ref2.setBounds(bounds);
    ref2.setPoints(points2);
    const StateDifference difference = stateDifference(ref1, ref2, nullptr);
    QVERIFY(std::abs(difference.rho - 2.0) < 1e-12);
    const std::vector<double> found = crossings(ref1, ref2, nullptr);
    const double quarter = 5.0 * 3.14159265358979323846; // of the cosine's period, eV
    QCOMPARE(found.size(), std::size_t{3});
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(found[static_cast<std::size_t>(i)] - 8360.25 - (2 * i + 1) * quarter) <
                0.01);
    const std::vector<double> v = vPointsOf(difference, 8350.0);
    QVERIFY(holds(v, 8360.0, 0.0)); // the extremes on the grid
    QVERIFY(holds(v, 8392.0, 0.0));
}

void tst_EnergyRanking::noiseMakesNoCrossings()
{
    NormalNoise random(3);
    FittedSpectrum ref1 = m_smooth[SpectrumSet::Ref2];
    FittedSpectrum ref2 = m_smooth[SpectrumSet::Ref2];
    for (FittedSpectrum* spectrum : {&ref1, &ref2})
        for (SpectrumPoint& point : spectrum->points)
            point.mut += 1e-4 * random.next();
    QVERIFY(crossings(ref1, ref2, nullptr).size() <= 1);
}

void tst_EnergyRanking::candidatesBelowTheEdgeAreAlike()
{
    const StateDifference difference = stateDifference(
        m_smooth[SpectrumSet::Ref1], m_smooth[SpectrumSet::Ref2], &m_smooth[SpectrumSet::Blank]);
    QVERIFY(std::abs(difference.rho - 1.1) < 1e-6);
    const std::vector<double> found = preEdgePointsOf(difference, bounds.edge);
    QVERIFY(!found.empty());
    for (const double energy : found)
        QVERIFY(energy < 8328.0); // from there on the peaks before the edge differ
}

/// Counts before and behind the sample, 4,000 and more times.
void tst_EnergyRanking::deviationsAreThoseOfManyDraws()
{
    const std::vector<RankedChoice> ranked = rankEnergies(inputOf(m_smooth), {1e6, 1.0});
    QVERIFY(ranked.size() > 20);
    NormalNoise random(5);
    constexpr int draws = 10000;
    for (const std::size_t place : {std::size_t{0}, std::size_t{7}, ranked.size() - 1}) {
        const RankedChoice& choice = ranked[place];
        for (const int part : {0, 1, 2}) {
            const LiteralTarget target{m_smooth, 0.5 * part};
            const CountedTarget counted(target, choice);
            double sum = 0.0, squares = 0.0, sumT = 0.0, squaresT = 0.0;
            for (int i = 0; i < draws; ++i) {
                const formulas::Result found = LiteralTarget::result(counted.draw(random));
                sum += found.a;
                squares += found.a * found.a;
                sumT += found.thickness;
                squaresT += found.thickness * found.thickness;
            }
            const double sigma = std::sqrt(squares / draws - sum / draws * sum / draws);
            const double told = choice.sigmaA.at(static_cast<std::size_t>(part));
            if (told > 0.05)
                continue; // too large for a first order
            QVERIFY2(std::abs(told / sigma - 1.0) < 0.05,
                     qPrintable(QStringLiteral("%1: %2 %3").arg(place).arg(told).arg(sigma)));
            const double sigmaT = std::sqrt(squaresT / draws - sumT / draws * sumT / draws);
            if (part == 1)
                QVERIFY(std::abs(choice.sigmaT / sigmaT - 1.0) < 0.05);
        }
    }
}

void tst_EnergyRanking::otherFiguresAreLiteral()
{
    const std::vector<RankedChoice> ranked = rankEnergies(inputOf(m_smooth), {});
    for (const std::size_t place : {0U, 5U, 30U}) {
        const RankedChoice& choice = ranked[place];
        const LiteralTarget target{m_smooth, 0.5};
        const double a = target.result(choice, [&](double e) { return target.mut(e); }).a;
        const double shifted =
            target.result(choice, [&](double e) { return target.mut(e - 0.1); }).a;
        QVERIFY(std::abs(choice.shift - (shifted - a)) < 1e-6);
        const auto reference = [&](SpectrumSet::Index i) {
            return target.result(choice, [&](double e) { return muTAt(m_smooth[i], e); }).a;
        };
        QVERIFY(std::abs(choice.closure1 - reference(SpectrumSet::Ref1)) < 1e-9);
        QVERIFY(std::abs(choice.closure2 - reference(SpectrumSet::Ref2)) < 1e-9);
        double robust = 0.0;
        for (std::size_t k = 0; k <= choice.points.size(); ++k)
            for (const double by : {-0.5, 0.5}) {
                RankedChoice moved = choice;
                (k < choice.points.size() ? moved.points[k] : moved.vPoint) += by;
                const double other =
                    target.result(moved, [&](double e) { return target.mut(e); }).a;
                robust = std::max(robust, std::abs(other - a));
            }
        QVERIFY(std::abs(choice.robust - robust) < 1e-6);
        QVERIFY(choice.gainOfOneMore >= 1.0);
    }
}

void tst_EnergyRanking::frontIsNotBeaten()
{
    const std::vector<RankedChoice> ranked = rankEnergies(inputOf(m_noisy), {});
    int front = 0;
    for (const RankedChoice& one : ranked) {
        const bool beaten =
            std::any_of(ranked.begin(), ranked.end(), [&](const RankedChoice& other) {
                return other.closes() && other.sigmaA[1] < one.sigmaA[1] &&
                       std::abs(other.shift) < std::abs(one.shift);
            });
        QCOMPARE(one.front, one.closes() && !beaten);
        front += one.front ? 1 : 0;
    }
    QVERIFY(front > 1);
    QVERIFY(ranked.front().front);
}

void tst_EnergyRanking::orderIsByClosureAndDeviation()
{
    const std::vector<RankedChoice> ranked = rankEnergies(inputOf(m_noisy), {}, 40);
    QVERIFY(ranked.size() >= 40);
    for (std::size_t i = 1; i < ranked.size(); ++i) {
        QVERIFY(ranked[i].closes());
        QVERIFY(ranked[i - 1].sigmaA[1] <= ranked[i].sigmaA[1]);
        QVERIFY(std::is_sorted(ranked[i].points.begin(), ranked[i].points.end()));
        QCOMPARE(ranked[i].points.size(), std::size_t{3});
    }
}

void tst_EnergyRanking::missingReferenceHasNoRanking()
{
    AnalysisInput input = inputOf(m_smooth);
    input.spectra.all[SpectrumSet::Ref2] = nullptr;
    QVERIFY(rankEnergies(input, {}).empty());
    QVERIFY(crossings(FittedSpectrum(), m_smooth[1], nullptr).empty());
    QVERIFY(crossings(m_smooth[0], FittedSpectrum(), nullptr).empty());
}

QTEST_APPLESS_MAIN(tst_EnergyRanking)
#include "tst_EnergyRanking.moc"

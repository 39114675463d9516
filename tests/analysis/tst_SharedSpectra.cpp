#include "analysis/LinearCombinationFit.h"
#include "analysis/TargetResult.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <cmath>
#include <thread>

/// The analysis of one set of spectra by several threads at once, as a batch over many targets does
/// it: spectra are constants, nothing else is shared.
class tst_SharedSpectra : public QObject
{
    Q_OBJECT

private slots:
    void allThreadsFindTheSame();
};

namespace
{

constexpr int threads = 8;
constexpr int rounds = 40;

SpectrumPoints noisySpectrum(double thickness, double share, Random& random)
{
    SpectrumPoints points;
    for (int i = 0; i < 300; ++i) {
        const double energy = 8200.0 + i;
        const double x = (energy - 8350.0) / 3.0;
        const double edge = 0.5 + std::atan(x) / 3.2 + share * std::exp(-x * x / 8.0);
        points.push_back(
            {14.0 - 0.001 * i, energy, thickness * (0.2 + edge) + random.uniform(-1e-4, 1e-4)});
    }
    return points;
}

struct Spectra {
    std::vector<FittedSpectrum> all{4};

    explicit Spectra(Random& random)
    {
        const double thickness[] = {1.0, 0.75, 1.25, 0.1};
        const double share[] = {0.0, 0.75, 0.25, 0.0};
        for (std::size_t i = 0; i < all.size(); ++i) {
            all[i].setBounds({8300.0, 8350.0, 8420.0});
            all[i].setPoints(noisySpectrum(thickness[i], share[i], random));
            all[i].fitVictreens();
        }
    }
    SpectrumSet set() const { return {{&all[0], &all[1], &all[2], &all[3]}}; }
};

/// All that one analysis brings, as numbers.
std::vector<double> analyse(const SpectrumSet& spectra, const Conditions& conditions)
{
    std::vector<ChosenPoint> points{{8310.0, true, true, false},
                                    {8340.5, true, false, false},
                                    {8352.25, true, true, true},
                                    {8400.0, true, false, false},
                                    {8450.0, false, true, false}};
    points[4].use = !conditions.exact;
    const AnalysisInput input{pointTable(points, spectra, conditions), spectra, conditions, {}};
    std::vector<double> found;
    const auto target = targetResult(input);
    if (const auto* result = std::get_if<TargetResult>(&target)) {
        const ThicknessRatios& r = result->ratios.value();
        found = {result->a, result->valence, result->thickness, r.trSbyS, r.trMean,
                 r.trLsA,   r.trLsB,         r.trLsANB,         r.trVic2};
    }
    const auto fitted = lcfResult(input);
    if (const auto* fit = std::get_if<LinearCombination>(&fitted)) {
        found.insert(found.end(), {fit->p1, fit->p2, fit->p3});
        for (const SpectrumPoint& point : fit->curve)
            found.push_back(point.mut);
    }
    return found;
}

std::vector<Conditions> allConditions()
{
    std::vector<Conditions> all;
    for (int i = 0; i < 16; ++i) {
        Conditions conditions;
        conditions.referencesMinusVictreen = (i & 1) != 0;
        conditions.targetMinusVictreen = (i & 2) != 0;
        conditions.victreenIsPre = (i & 4) != 0;
        conditions.exact = (i & 8) != 0;
        conditions.leastSquares = !conditions.exact;
        conditions.thickness = i % 3 == 0 ? ThicknessType::SumBySum : ThicknessType::EdgeJumps;
        all.push_back(conditions);
    }
    return all;
}

} // namespace

void tst_SharedSpectra::allThreadsFindTheSame()
{
    Random random;
    const Spectra spectra(random);
    const std::vector<Conditions> conditions = allConditions();
    std::vector<std::vector<double>> expected;
    for (const Conditions& chosen : conditions) {
        expected.push_back(analyse(spectra.set(), chosen));
        QCOMPARE(expected.back().size(), std::size_t{9 + 3 + 141}); // 8310 to 8450 eV
        for (const double value : expected.back())
            QVERIFY(std::isfinite(value));
    }
    std::vector<int> different(threads, 0);
    std::vector<std::thread> running;
    for (int n = 0; n < threads; ++n)
        running.emplace_back([&, n] {
            for (int round = 0; round < rounds; ++round) {
                const auto i = static_cast<std::size_t>(round + 2 * n) % conditions.size();
                if (analyse(spectra.set(), conditions[i]) != expected[i])
                    ++different[static_cast<std::size_t>(n)];
            }
        });
    for (std::thread& thread : running)
        thread.join();
    QCOMPARE(different, std::vector<int>(threads, 0));
}

QTEST_APPLESS_MAIN(tst_SharedSpectra)
#include "tst_SharedSpectra.moc"

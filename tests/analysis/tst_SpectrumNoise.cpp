#include "analysis/SpectrumNoise.h"
#include "tests/support/NormalNoise.h"

#include <QtTest>

#include <cmath>

namespace
{

constexpr double limit = 8300.0;

SpectrumPoints pointsOf(const std::vector<double>& energies, const std::vector<double>& muts)
{
    SpectrumPoints points;
    for (std::size_t i = 0; i < energies.size(); ++i)
        points.push_back({0.0, energies[i], muts[i]});
    return points;
}

/// Points below the limit in steps of 5 eV on a slightly bent line.
SpectrumPoints smoothPoints(int count)
{
    SpectrumPoints points;
    for (int i = 0; i < count; ++i) {
        const double energy = 8000.0 + 5.0 * i;
        const double u = 8000.0 / energy;
        points.push_back({0.0, energy, 0.3 * u * u * u});
    }
    return points;
}

} // namespace

class tst_SpectrumNoise : public QObject
{
    Q_OBJECT

private slots:
    void threePointsGiveTheirBend();
    void unequalStepsAreWeighted();
    void straightLineHasNone();
    void onlyPointsBelowTheLimitCount();
    void fewOrDisorderlyPointsTellNothing();
    void degreesOfEqualSteps();
    void estimateIsRightOnTheMean();
    void oneGlitchHardlyMatters();
    void countsGiveTheirVariance();
    void countsThatMakeNoSenseTellNothing();
    void gainTellsPhotonsFromOthers();
};

/// The middle lies 1 above the line through its neighbours, which scatters by the root of 1.5.
void tst_SpectrumNoise::threePointsGiveTheirBend()
{
    const auto noise = scatterNoise(pointsOf({8000, 8010, 8020}, {0.5, 1.5, 0.5}), limit);
    QVERIFY(noise.has_value());
    QVERIFY(std::abs(noise->sigma - std::sqrt(1.0 / 1.5)) < 1e-15);
    QCOMPARE(noise->degrees, 1.0);
    QVERIFY(noise->variance.empty());
    QCOMPARE(noise->varianceAt(2), noise->sigma * noise->sigma);
}

/// At a quarter of the way the line is 3/4 of the left and 1/4 of the right neighbour.
void tst_SpectrumNoise::unequalStepsAreWeighted()
{
    const auto noise = scatterNoise(pointsOf({8000, 8010, 8040}, {0.8, 1.0, 0.4}), limit);
    QVERIFY(noise.has_value());
    const double difference = 0.75 * 0.8 + 0.25 * 0.4 - 1.0;
    const double squares = 0.75 * 0.75 + 0.25 * 0.25 + 1.0;
    QVERIFY(std::abs(noise->sigma - std::abs(difference) / std::sqrt(squares)) < 1e-15);
    const auto falling = scatterNoise(pointsOf({8040, 8010, 8000}, {0.4, 1.0, 0.8}), limit);
    QVERIFY(std::abs(falling->sigma - noise->sigma) < 1e-15);
}

void tst_SpectrumNoise::straightLineHasNone()
{
    const auto noise = scatterNoise(pointsOf({8000, 8010, 8030, 8040}, {1, 2, 4, 5}), limit);
    QVERIFY(noise.has_value());
    QVERIFY(noise->sigma < 1e-15);
}

void tst_SpectrumNoise::onlyPointsBelowTheLimitCount()
{
    const auto noise = scatterNoise(
        pointsOf({8000, 8010, 8020, 8300, 8310, 8320}, {0.5, 1.5, 0.5, 9, 3, 7}), limit);
    QVERIFY(noise.has_value());
    QVERIFY(std::abs(noise->sigma - std::sqrt(1.0 / 1.5)) < 1e-15);
}

void tst_SpectrumNoise::fewOrDisorderlyPointsTellNothing()
{
    QVERIFY(!scatterNoise({}, limit));
    QVERIFY(!scatterNoise(pointsOf({8000, 8010}, {1, 2}), limit));
    QVERIFY(!scatterNoise(pointsOf({8400, 8410, 8420}, {1, 2, 1}), limit));
    QVERIFY(!scatterNoise(pointsOf({8000, 8000, 8000}, {1, 2, 1}), limit));
    QVERIFY(!scatterNoise(pointsOf({8000, 8050, 8010}, {1, 2, 1}), limit));
    const double none = std::nan("");
    QVERIFY(!scatterNoise(pointsOf({none, 8050, 8110}, {1, 2, 1}), limit));
    QVERIFY(!scatterNoise(pointsOf({8000, 8050, 8110}, {1, none, 1}), limit));
}

/// The differences beside one another correlate by -2/3, those with one between them by 1/6; the
/// squares of n of them have the variance of n^2 / sum of the squared correlations degrees.
void tst_SpectrumNoise::degreesOfEqualSteps()
{
    const auto noise = scatterNoise(smoothPoints(22), limit);
    const double n = 20.0;
    const double squares = n + 2.0 * ((n - 1.0) * 4.0 / 9.0 + (n - 2.0) / 36.0);
    QVERIFY(std::abs(noise->degrees - n * n / squares) < 1e-9);
}

void tst_SpectrumNoise::estimateIsRightOnTheMean()
{
    NormalNoise random(7);
    const int draws = 4000;
    double sum = 0.0;
    double sumOfSquares = 0.0;
    const SpectrumPoints smooth = smoothPoints(30);
    const double degrees = scatterNoise(smooth, limit)->degrees;
    for (int draw = 0; draw < draws; ++draw) {
        SpectrumPoints points = smooth;
        for (SpectrumPoint& point : points)
            point.mut += 0.01 * random.next();
        const double sigma = scatterNoise(points, limit)->sigma;
        sum += sigma * sigma;
        sumOfSquares += sigma * sigma * sigma * sigma;
    }
    const double mean = sum / draws / 1e-4;
    const double variance = sumOfSquares / draws / 1e-8 - mean * mean;
    // 2 / degrees is the relative variance of a mean square; of 4,000 it is known to 3 %.
    QVERIFY2(std::abs(mean - 1.0) < 0.02, qPrintable(QString::number(mean)));
    QVERIFY2(std::abs(variance * degrees / 2.0 - 1.0) < 0.12,
             qPrintable(QString::number(variance * degrees / 2.0)));
}

void tst_SpectrumNoise::oneGlitchHardlyMatters()
{
    NormalNoise random(11);
    for (const std::size_t at : {1U, 10U, 28U}) {
        SpectrumPoints points = smoothPoints(30);
        for (SpectrumPoint& point : points)
            point.mut += 1e-4 * random.next();
        const double clean = scatterNoise(points, limit)->sigma;
        points[at].mut += 0.01;
        const auto noise = scatterNoise(points, limit);
        QVERIFY2(std::abs(noise->sigma / clean - 1.0) < 0.25,
                 qPrintable(QString::number(noise->sigma / clean)));
        QVERIFY(noise->degrees < scatterNoise(smoothPoints(30), limit)->degrees);
    }
}

void tst_SpectrumNoise::countsGiveTheirVariance()
{
    QVERIFY(std::abs(countingVariance({1e4, 2e3}, {}) - (1e-4 + 5e-4)) < 1e-18);
    QVERIFY(std::abs(countingVariance({1e4, 2e3}, {3.0, 0.5}) - (3e-4 + 2.5e-4)) < 1e-18);
    const SpectrumPoints points = pointsOf({8000, 8010, 8400}, {1, 1, 2});
    const auto noise = countingNoise(points, {{100, 100}, {50, 50}, {10, 10}}, {}, limit);
    QVERIFY(noise.has_value());
    QVERIFY(std::abs(noise->sigma - std::sqrt(0.03)) < 1e-15);
    QVERIFY(std::isinf(noise->degrees));
    QVERIFY(std::abs(noise->varianceAt(2) - 0.2) < 1e-15);
}

void tst_SpectrumNoise::countsThatMakeNoSenseTellNothing()
{
    const SpectrumPoints points = pointsOf({8000, 8010}, {1, 1});
    QVERIFY(std::isnan(countingVariance({0, 5}, {})));
    QVERIFY(std::isnan(countingVariance({5, -1}, {})));
    QVERIFY(!countingNoise(points, {{100, 100}}, {}, limit));
    QVERIFY(!countingNoise(points, {{100, 100}, {100, 0}}, {}, limit));
    QVERIFY(!countingNoise(points, {{100, 100}, {100, 100}}, {}, 7000.0));
}

void tst_SpectrumNoise::gainTellsPhotonsFromOthers()
{
    NormalNoise random(13);
    SpectrumPoints points;
    std::vector<Readings> readings;
    for (int i = 0; i < 400; ++i) {
        const double incident = 1e6 + 1e3 * random.next();
        const double transmitted = 4e5 + std::sqrt(4e5) * random.next();
        readings.push_back({incident, transmitted});
        points.push_back({0.0, 7000.0 + i, std::log(incident / transmitted)});
    }
    const auto photons = gainFound(points, readings, limit);
    QVERIFY(photons.has_value());
    QVERIFY2(std::abs(*photons - 1.0) < 0.25, qPrintable(QString::number(*photons)));
    for (Readings& reading : readings)
        reading = {reading.incident * 1e-3, reading.transmitted * 1e-3};
    const auto others = gainFound(points, readings, limit);
    QVERIFY(std::abs(*others / *photons - 1e-3) < 1e-9);
    QVERIFY(*others < smallestGain);
    QVERIFY(!gainFound({}, {}, limit));
}

QTEST_APPLESS_MAIN(tst_SpectrumNoise)
#include "tst_SpectrumNoise.moc"

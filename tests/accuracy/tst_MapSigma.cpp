#include "analysis/FourPoint.h"
#include "analysis/MapCalculation.h"
#include "analysis/MapMean.h"
#include "analysis/ThreePoint.h"
#include "tests/accuracy/CoverageTable.h"
#include "tests/accuracy/SimulatedSample.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

namespace
{

Conditions exactConditions()
{
    Conditions conditions;
    conditions.thickness = ThicknessType::SumBySum;
    conditions.referencesMinusVictreen = false;
    return conditions;
}

/// a and t of one pixel by the scalar methods.
struct Found {
    double a;
    double t;
};

Found scalar(const MapTask& task, const std::vector<double>& t, double tV)
{
    if (task.method == Method::ThreePoint) {
        const ThreePoint method(task.points, task.choice);
        return {method.fraction(t[0], t[1], tV), method.thickness(t[0], t[1])};
    }
    const TargetScale scale = task.method == Method::FourPointExact
                                  ? FourPointExact(task.points, task.choice).scale(t[0], t[1], t[2])
                                  : FourPointLeastSquares(task.points, task.choice).scale(t.data());
    return {vPointFraction(task.points, task.choice, task.rho).at(scale, tV), scale.thickness()};
}

/// Variance and shift of the mean by the noise, from differences of the scalar methods.
struct Expected {
    double varianceA = 0.0;
    double varianceT = 0.0;
    double biasA = 0.0;
    double biasT = 0.0;
};

Expected expectedOf(const MapTask& task, const std::vector<double>& t, double tV,
                    const std::vector<double>& variances, double varianceV)
{
    Expected expected;
    const Found here = scalar(task, t, tV);
    for (std::size_t k = 0; k <= t.size(); ++k) {
        const auto moved = [&](double by) {
            std::vector<double> other = t;
            if (k < t.size())
                other[k] += by;
            return scalar(task, other, k < t.size() ? tV : tV + by);
        };
        const double variance = k < t.size() ? variances[k] : varianceV;
        constexpr double step = 1e-5;
        const Found up = moved(step);
        const Found down = moved(-step);
        expected.varianceA += std::pow((up.a - down.a) / (2.0 * step), 2) * variance;
        expected.varianceT += std::pow((up.t - down.t) / (2.0 * step), 2) * variance;
        constexpr double longStep = 2e-4; // for second differences
        const Found high = moved(longStep);
        const Found low = moved(-longStep);
        const double half = 0.5 * variance / (longStep * longStep);
        expected.biasA += (high.a - 2.0 * here.a + low.a) * half;
        expected.biasT += (high.t - 2.0 * here.t + low.t) * half;
    }
    return expected;
}

bool near(double value, double expected, double part, double absolute = 0.0)
{
    return std::abs(value - expected) <= part * std::abs(expected) + absolute;
}

} // namespace

/// Standard deviations of a map's pixels and of its mean.
class tst_MapSigma : public QObject
{
    Q_OBJECT

private:
    SimulatedSample m_sample{MixedSample()};
    AnalysisInput m_input;
    std::vector<std::vector<double>> m_images;
    std::vector<std::vector<float>> m_variances;

    MapTask makeTask(Method method, int rows, int columns, int height);
    void compare(const MapTask& task, const MapSigmas& sigmas, const MapResults& results);

private slots:
    void pixelsAreThoseOfTheScalarMethods_data();
    void pixelsAreThoseOfTheScalarMethods();
    void sameForAnyNumberOfThreads();
    void pixelsThatMeanNothingAreLeftOut();
    void emptyMapHasNoMean();
};

/// Images of a mixed sample whose fraction and thickness change from pixel to pixel.
MapTask tst_MapSigma::makeTask(Method method, int rows, int columns, int height)
{
    m_input = SimulatedSample::input(m_sample.smooth(), rows, exactConditions());
    MapTask task;
    task.method = method;
    task.points = m_input.table;
    task.choice = choosePoints(task.points);
    task.rho = 1.1;
    task.columns = columns;
    task.rows = height;
    m_images.clear();
    for (const PointRow& row : task.points) {
        std::vector<double> image;
        for (int i = 0; i < columns * height; ++i) {
            const double a = static_cast<double>(i % columns) / columns;
            const double t = 0.3 + 0.5 * (i / columns) / height;
            image.push_back(t * (a * row.reference1() / 0.55 + (1.0 - a) * row.reference2() / 0.5) +
                            0.4 - 3e-5 * row.energy + 0.001 * std::sin(7.0 * i + row.energy));
        }
        m_images.push_back(image);
    }
    for (const std::vector<double>& image : m_images)
        task.images.push_back({image.data(), image.size(), columns});
    return task;
}

void tst_MapSigma::pixelsAreThoseOfTheScalarMethods_data()
{
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("noise"); ///< the same, another one for each image, for each pixel
    for (const int noise : {0, 1, 2}) {
        const QByteArray kind = QByteArray(", noise ") + QByteArray::number(noise);
        QTest::addRow("three points%s", kind.constData()) << int(Method::ThreePoint) << 3 << noise;
        QTest::addRow("exact%s", kind.constData()) << int(Method::FourPointExact) << 4 << noise;
        for (const int rows : {4, 5, 6})
            QTest::addRow("least squares of %d%s", rows, kind.constData())
                << int(Method::FourPointLeastSquares) << rows << noise;
    }
}

void tst_MapSigma::pixelsAreThoseOfTheScalarMethods()
{
    QFETCH(int, method);
    QFETCH(int, rows);
    QFETCH(int, noise);
    MapTask task = makeTask(static_cast<Method>(method), rows, 7, 5);
    Random random;
    MapSigmas sigmas;
    m_variances.clear();
    for (std::size_t k = 0; k < task.points.size(); ++k) {
        std::vector<float> variances;
        for (int i = 0; i < 35; ++i)
            variances.push_back(static_cast<float>(noise == 0 ? 1e-6
                                                   : noise == 1
                                                       ? 1e-6 * (1.0 + static_cast<double>(k))
                                                       : random.uniform(1e-7, 1e-5)));
        m_variances.push_back(variances);
    }
    for (const std::vector<float>& variances : m_variances)
        sigmas.noise.push_back({variances[0], noise == 2 ? variances.data() : nullptr});
    task.sigmas = &sigmas;
    MapResults results;
    QVERIFY(calculatePixels(task, results));
    compare(task, sigmas, results);
}

void tst_MapSigma::compare(const MapTask& task, const MapSigmas& sigmas, const MapResults& results)
{
    MapSums sums;
    for (std::size_t i = 0; i < results.size(); ++i) {
        std::vector<double> t;
        std::vector<double> variances;
        for (const std::size_t row : task.choice.normalization) {
            t.push_back(m_images[row][i]);
            variances.push_back(m_variances[row][i]);
        }
        const Expected expected = expectedOf(task, t, m_images[task.choice.vPoint][i], variances,
                                             m_variances[task.choice.vPoint][i]);
        QVERIFY2(near(sigmas.a[i], std::sqrt(expected.varianceA), 2e-5),
                 qPrintable(
                     QStringLiteral("%1 %2").arg(sigmas.a[i]).arg(std::sqrt(expected.varianceA))));
        QVERIFY(near(sigmas.t[i], std::sqrt(expected.varianceT), 2e-5));
        QVERIFY(!meansNothing(results.t[i], sigmas.t[i]));
        sums += {1.0,
                 results.a[i],
                 results.t[i],
                 expected.varianceA,
                 expected.varianceT,
                 expected.biasA,
                 expected.biasT};
    }
    QCOMPARE(sigmas.sums.pixels, sums.pixels);
    QVERIFY(near(sigmas.sums.a, sums.a, 1e-12));
    QVERIFY(near(sigmas.sums.t, sums.t, 1e-12));
    QVERIFY(near(sigmas.sums.varianceA, sums.varianceA, 1e-5));
    QVERIFY(near(sigmas.sums.varianceT, sums.varianceT, 1e-5));
    const auto told = [](double value, double expected) {
        return qPrintable(QStringLiteral("%1 %2").arg(value).arg(expected));
    };
    // The biases' derivation takes the target for a mixture; the images are off by 0.001.
    QVERIFY2(near(sigmas.sums.biasA, sums.biasA, 0.05, 1e-7), told(sigmas.sums.biasA, sums.biasA));
    QVERIFY2(near(sigmas.sums.biasT, sums.biasT, 0.05, 1e-7), told(sigmas.sums.biasT, sums.biasT));
}

void tst_MapSigma::sameForAnyNumberOfThreads()
{
    MapTask task = makeTask(Method::FourPointLeastSquares, 5, 300, 170);
    MapSums first;
    std::vector<float> a;
    for (const unsigned threads : {1U, 2U, 5U}) {
        Workers workers(threads);
        MapSigmas sigmas;
        sigmas.noise.resize(task.points.size(), {1e-5, nullptr});
        task.sigmas = &sigmas;
        MapResults results;
        QVERIFY(calculatePixels(task, results, {}, workers));
        if (threads == 1) {
            first = sigmas.sums;
            a.assign(sigmas.a.begin(), sigmas.a.end());
            continue;
        }
        QCOMPARE(sigmas.sums.a, first.a);
        QCOMPARE(sigmas.sums.varianceA, first.varianceA);
        QCOMPARE(sigmas.sums.biasA, first.biasA);
        QCOMPARE(sigmas.sums.biasT, first.biasT);
        QVERIFY(std::equal(a.begin(), a.end(), sigmas.a.begin()));
    }
    QCOMPARE(first.pixels, 51000.0);
}

/// Outside the sample, and where an image was stopped early.
void tst_MapSigma::pixelsThatMeanNothingAreLeftOut()
{
    MapTask task = makeTask(Method::FourPointExact, 4, 7, 5);
    for (std::vector<double>& image : m_images)
        image[9] = 0.1; // nothing there
    task.images[1].size = 33;
    MapSigmas sigmas;
    sigmas.noise.resize(task.points.size(), {1e-6, nullptr});
    task.sigmas = &sigmas;
    MapResults results;
    QVERIFY(calculatePixels(task, results));
    QCOMPARE(sigmas.sums.pixels, 32.0);
    for (const std::size_t i : {9U, 33U, 34U})
        QVERIFY(meansNothing(results.t[i], sigmas.t[i]));
    double sum = 0.0;
    for (std::size_t i = 0; i < 33; ++i)
        sum += i == 9 ? 0.0 : results.a[i];
    QVERIFY(near(sigmas.sums.a, sum, 1e-12));
    QVERIFY(meansNothing(0.1, 0.034));
    QVERIFY(!meansNothing(0.1, 0.033));
    QVERIFY(!meansNothing(-0.1, 0.033));
}

void tst_MapSigma::emptyMapHasNoMean()
{
    makeTask(Method::FourPointExact, 4, 2, 2);
    const MapMean mean = mapMean(m_input, Method::FourPointExact, MapSums(), {});
    QVERIFY(std::isnan(mean.a));
    QVERIFY(std::isnan(mean.sigmaA));
}

QTEST_APPLESS_MAIN(tst_MapSigma)
#include "tst_MapSigma.moc"

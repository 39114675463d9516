#include "analysis/FourPoint.h"
#include "analysis/MapCalculation.h"
#include "analysis/ThreePoint.h"
#include "tests/support/AddressLimit.h"
#include "tests/support/PlainMapMethods.h"
#include "tests/support/Random.h"
#include "tests/support/TableRow.h"

#include <QtTest>

#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace
{

using Engine = std::mt19937_64;

bool same(double x, double y)
{
    if (std::isnan(x) && std::isnan(y))
        return true; // which of the two not-a-numbers does not show anywhere
    return std::memcmp(&x, &y, sizeof x) == 0;
}

/// A table with one image for each row, and what is asked of it.
struct Case {
    Method method = Method::ThreePoint;
    PointRows points;
    std::vector<plain::Image> images;
    double rho = 1.0;
    int columns = 0;
    int rows = 0;
    SharedPositions positions;

    MapTask task() const
    {
        MapTask task;
        task.method = method;
        task.points = points;
        task.choice = choosePoints(points);
        for (const plain::Image& image : images)
            task.images.push_back({image.mut.data(), image.mut.size(), image.columns});
        task.columns = columns;
        task.rows = rows;
        task.positions = positions;
        task.rho = rho;
        return task;
    }

    plain::PixelInput input(int x, int y) const
    {
        plain::PixelInput in;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (!points[i].use)
                continue;
            const formulas::Point point = plain::point(points[i], images[i].at(x, y));
            if (points[i].vPoint)
                in.v = point;
            else
                in.points.push_back(point);
        }
        return in;
    }

    plain::PixelResult expected(int x, int y) const
    {
        if (method == Method::ThreePoint)
            return plain::threePoint(input(x, y));
        if (method == Method::FourPointExact)
            return plain::fourPointExact(input(x, y), rho);
        return plain::fourPointLeastSquares(input(x, y), rho);
    }
};

/// Empty where all pixels are those of the plain formulas, otherwise the first that differs.
QString difference(const Case& test, const MapResults& results)
{
    if (results.columns != test.columns || results.rows != test.rows ||
        results.size() != static_cast<std::size_t>(test.columns * test.rows) ||
        results.t.size() != results.size())
        return QStringLiteral("size");
    for (int y = 0; y < test.rows; ++y) {
        for (int x = 0; x < test.columns; ++x) {
            const auto i = static_cast<std::size_t>(y * test.columns + x);
            const plain::PixelResult pixel = test.expected(x, y);
            if (!same(results.a[i], pixel.a) || !same(results.t[i], pixel.t))
                return QStringLiteral("pixel %1, %2: %3 %4 instead of %5 %6")
                    .arg(x)
                    .arg(y)
                    .arg(results.a[i], 0, 'g', 17)
                    .arg(results.t[i], 0, 'g', 17)
                    .arg(pixel.a, 0, 'g', 17)
                    .arg(pixel.t, 0, 'g', 17);
        }
    }
    return {};
}

/// Iron between two oxides: rows as they are measured.
PointRows ironRows(std::size_t count)
{
    const PointRows all = {row(7090, -1.40839, -1.35304),     row(7130.2, 0.41099, 0.406381),
                           vRow(7124, 0.143478, -0.574742),   row(7157.1, -0.174796, -0.166428),
                           row(7181.7, 0.0485119, 0.0499337), row(7050, -1.44133, -1.38753)};
    return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)};
}

double randomValue(Engine& random)
{
    static const std::array<double, 9> odd = {0.0,
                                              -0.0,
                                              1.0,
                                              -1.0,
                                              2.0,
                                              std::numeric_limits<double>::quiet_NaN(),
                                              std::numeric_limits<double>::infinity(),
                                              1e300,
                                              1e-300};
    if (random() % 20 == 0)
        return odd[random() % odd.size()];
    return std::uniform_real_distribution<double>(-3.0, 3.0)(random);
}

/// Energies at which the solver's pivots fall this way and that.
double randomEnergy(Engine& random)
{
    static const std::array<double, 4> scales = {8000.0, 1.0, 0.3, 2.0};
    const double scale = scales[random() % scales.size()];
    return random() % 30 == 0 ? 0.0 : std::uniform_real_distribution<double>(-scale, scale)(random);
}

Case randomCase(Engine& random, int columns, int rows)
{
    static const std::array<Method, 3> methods = {Method::ThreePoint, Method::FourPointExact,
                                                  Method::FourPointLeastSquares};
    Case test;
    test.method = methods[random() % methods.size()];
    test.columns = columns;
    test.rows = rows;
    test.rho = randomValue(random);
    const std::size_t normalization = test.method == Method::ThreePoint ? 2 : 3 + random() % 5;
    const std::size_t v = random() % (normalization + 1);
    for (std::size_t i = 0; i <= normalization; ++i) {
        PointRow point = row(randomEnergy(random), randomValue(random), randomValue(random));
        point.vPoint = i == v;
        point.mutBlank = random() % 2 == 0 ? 0.0 : randomValue(random);
        point.useVicTarget = random() % 2 == 0; // must not matter to a map
        test.points.push_back(point);
        plain::Image image;
        image.columns = random() % 5 == 0 ? static_cast<int>(random() % 9) - 2 : columns;
        const auto full = static_cast<std::size_t>(columns * rows);
        image.mut.resize(random() % 5 == 0 ? random() % (full + 5) : full);
        for (double& value : image.mut)
            value = randomValue(random);
        test.images.push_back(image);
    }
    return test;
}

Case regularCase(Method method, std::size_t count, int columns, int rows)
{
    Case test;
    test.method = method;
    test.points = ironRows(count);
    test.rho = 1.043;
    test.columns = columns;
    test.rows = rows;
    for (std::size_t i = 0; i < count; ++i) {
        plain::Image image;
        image.columns = columns;
        for (int k = 0; k < columns * rows; ++k)
            image.mut.push_back(0.1 + 0.37 * static_cast<double>(i) + 0.001 * (k % 1009) +
                                0.0001 * static_cast<double>(i) * (k % 31));
        test.images.push_back(image);
    }
    return test;
}

} // namespace

class tst_MapCalculation : public QObject
{
    Q_OBJECT

private slots:
    void pixelsAreTargets_data();
    void pixelsAreTargets();
    void missingPixelsAreMinusOne();
    void imagesOfOtherColumns();
    void rowsWithoutData();
    void unusedRowsDoNotCount();
    void blankOfMapValuesStays();
    void tooFewNormalizationPoints_data();
    void tooFewNormalizationPoints();
    void positionsOfTheVPoint();
    void emptyGrid_data();
    void emptyGrid();
    void hugeGridIsRefused();
    void gridOutOfProportionIsRefused();
    void gridFitsInPlaceOfTheEarlierOne();
    void memoryIsKeptOrGivenBack();
    void energiesOfZero();
    void measuredPixelsAllowAGrid();
    void sinkSeesEveryPixelOnce();
    void sameForAnyNumberOfThreads_data();
    void sameForAnyNumberOfThreads();
    void equalsThePlainFormulas();
};

void tst_MapCalculation::pixelsAreTargets_data()
{
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("rows");
    QTest::newRow("three-point") << static_cast<int>(Method::ThreePoint) << 3;
    QTest::newRow("exact") << static_cast<int>(Method::FourPointExact) << 4;
    QTest::newRow("least squares, four rows")
        << static_cast<int>(Method::FourPointLeastSquares) << 4;
    QTest::newRow("least squares, six rows")
        << static_cast<int>(Method::FourPointLeastSquares) << 6;
}

/// Each pixel gets what the target form gets from the same numbers.
void tst_MapCalculation::pixelsAreTargets()
{
    QFETCH(int, method);
    QFETCH(int, rows);
    const Case test =
        regularCase(static_cast<Method>(method), static_cast<std::size_t>(rows), 13, 7);
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    const PointChoice choice = choosePoints(test.points);
    const VPointFraction fraction = vPointFraction(test.points, choice, test.rho);
    for (std::size_t i = 0; i < results.size(); ++i) {
        std::vector<double> t;
        for (const std::size_t k : choice.normalization)
            t.push_back(test.images[k].mut[i]);
        const double tV = test.images[choice.vPoint].mut[i];
        if (test.method == Method::ThreePoint) {
            const ThreePoint target(test.points, choice);
            QVERIFY(same(results.a[i], target.fraction(t[0], t[1], tV)));
            QVERIFY(same(results.t[i], target.thickness(t[0], t[1])));
            continue;
        }
        const TargetScale scale = test.method == Method::FourPointExact
                                      ? FourPointExact(test.points, choice).scale(t[0], t[1], t[2])
                                      : FourPointLeastSquares(test.points, choice).scale(t.data());
        QVERIFY(same(results.a[i], fraction.at(scale, tV)));
        QVERIFY(same(results.t[i], scale.thickness()));
    }
}

void tst_MapCalculation::missingPixelsAreMinusOne()
{
    Case test = regularCase(Method::ThreePoint, 3, 4, 3);
    test.images[1].mut.resize(5);
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    QCOMPARE(difference(test, results), QString());
    // Pixel 5 is the first one that the second image does not have: its value is -1.
    const ThreePoint method(test.points, choosePoints(test.points));
    QCOMPARE(results.a[5], method.fraction(test.images[0].mut[5], -1.0, test.images[2].mut[5]));
    QCOMPARE(results.t[5], method.thickness(test.images[0].mut[5], -1.0));
}

void tst_MapCalculation::imagesOfOtherColumns()
{
    Case test = regularCase(Method::ThreePoint, 3, 3, 2);
    test.images[0].columns = 2;
    test.images[0].mut = {10.5, 11.5, 12.5, 13.5};
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    // Column 2 of row 0 has index 0 * 2 + 2 in the narrow image, column 0 of row 1 index 2 as well;
    // column 2 of row 1 would be the fifth of its four pixels.
    const ThreePoint method(test.points, choosePoints(test.points));
    const std::array<double, 6> narrow = {10.5, 11.5, 12.5, 12.5, 13.5, -1.0};
    for (std::size_t i = 0; i < narrow.size(); ++i) {
        QCOMPARE(results.a[i],
                 method.fraction(narrow[i], test.images[1].mut[i], test.images[2].mut[i]));
        QCOMPARE(results.t[i], method.thickness(narrow[i], test.images[1].mut[i]));
    }
}

void tst_MapCalculation::rowsWithoutData()
{
    for (const Method method : {Method::ThreePoint, Method::FourPointExact}) {
        Case test = regularCase(method, 4, 3, 2);
        test.images[0] = plain::Image();
        MapResults results;
        QVERIFY(calculatePixels(test.task(), results));
        QCOMPARE(difference(test, results), QString());
    }
}

void tst_MapCalculation::unusedRowsDoNotCount()
{
    Case test = regularCase(Method::FourPointLeastSquares, 6, 3, 2);
    test.points[1].use = false;
    test.points[4].use = false;
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    QCOMPARE(difference(test, results), QString());
    test.points.erase(test.points.begin() + 4);
    test.images.erase(test.images.begin() + 4);
    test.points.erase(test.points.begin() + 1);
    test.images.erase(test.images.begin() + 1);
    QCOMPARE(difference(test, results), QString());
}

void tst_MapCalculation::blankOfMapValuesStays()
{
    Case test = regularCase(Method::ThreePoint, 3, 1, 1);
    MapResults without;
    QVERIFY(calculatePixels(test.task(), without));
    // A blank that shifts each reference and is added to them again leaves all as it was, unless
    // the map's own values lost it too.
    for (std::size_t i = 0; i < 3; ++i) {
        const double blank = 0.25 * static_cast<double>(i + 1);
        test.points[i].mut1 += blank;
        test.points[i].mut2 += blank;
        test.points[i].mutBlank = blank;
    }
    MapResults with;
    QVERIFY(calculatePixels(test.task(), with));
    QVERIFY(std::abs(with.a[0] - without.a[0]) < 1e-12);
    QVERIFY(std::abs(with.t[0] - without.t[0]) < 1e-12);
}

void tst_MapCalculation::tooFewNormalizationPoints_data()
{
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("rows");
    QTest::newRow("three-point") << static_cast<int>(Method::ThreePoint) << 3;
    QTest::newRow("exact") << static_cast<int>(Method::FourPointExact) << 4;
    QTest::newRow("exact, three rows") << static_cast<int>(Method::FourPointExact) << 3;
}

void tst_MapCalculation::tooFewNormalizationPoints()
{
    QFETCH(int, method);
    QFETCH(int, rows);
    Case test = regularCase(static_cast<Method>(method), static_cast<std::size_t>(rows), 2, 2);
    test.points[1].vPoint = true; // the last one counts, and a normalization point is missing
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    QCOMPARE(results.size(), std::size_t{4});
    for (std::size_t i = 0; i < results.size(); ++i)
        QVERIFY(std::isnan(results.a[i]) && std::isnan(results.t[i]));
}

void tst_MapCalculation::positionsOfTheVPoint()
{
    Case test = regularCase(Method::ThreePoint, 3, 2, 2);
    auto positions = std::make_shared<MapPositions>();
    for (const MapPosition& position : {MapPosition{1, 2}, MapPosition{3, 4}, MapPosition{5, 6}})
        positions->append(&position, 1);
    test.positions = positions;
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    QCOMPARE(results.position(0).first, 1.0);
    QCOMPARE(results.position(2).second, 6.0);
    QCOMPARE(results.position(3).first, 0.0); // outside the image
    QCOMPARE(results.position(3).second, 0.0);
    QCOMPARE(MapResults().position(0).first, 0.0);
}

void tst_MapCalculation::emptyGrid_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    QTest::newRow("nothing") << 0 << 0;
    QTest::newRow("no rows") << 4 << 0;
    QTest::newRow("negative columns") << -4 << 3;
    QTest::newRow("both negative") << -4 << -3;
}

void tst_MapCalculation::emptyGrid()
{
    QFETCH(int, columns);
    QFETCH(int, rows);
    MapResults results;
    QVERIFY(calculatePixels(regularCase(Method::ThreePoint, 3, 2, 2).task(), results));
    MapTask task = regularCase(Method::ThreePoint, 3, 2, 2).task();
    task.columns = columns;
    task.rows = rows;
    QVERIFY(calculatePixels(task, results));
    QCOMPARE(results.size(), std::size_t{0});
    QCOMPARE(results.columns, columns);
    QCOMPARE(results.rows, rows);
}

void tst_MapCalculation::hugeGridIsRefused()
{
    const Case test = regularCase(Method::ThreePoint, 3, 2, 2);
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    MapTask task = test.task();
    task.columns = 2000000000;
    task.rows = 2000000000;
    QVERIFY(!mapFits(task.columns, task.rows, std::size_t{1} << 40, results));
    bool called = false;
    QVERIFY(
        !calculatePixels(task, results, [&](unsigned, const double*, const double*, std::size_t) {
            called = true;
        }));
    QVERIFY(!called);
    QCOMPARE(results.columns, 2);
    QCOMPARE(difference(test, results), QString());
}

void tst_MapCalculation::gridOutOfProportionIsRefused()
{
    const MapResults none;
    // Four million pixels need no measurement, a larger grid one in sixteen.
    QVERIFY(mapFits(2048, 2048, 0, none));
    QVERIFY(!mapFits(4096, 2048, 8 * 1024 * 64 - 1, none));
    QVERIFY(mapFits(4096, 2048, 8 * 1024 * 64, none));
}

void tst_MapCalculation::gridFitsInPlaceOfTheEarlierOne()
{
    constexpr int columns = 2000;
    constexpr int rows = 1000; // 32 megabytes of results
    MapResults earlier;
    QVERIFY(earlier.a.resize(columns * rows));
    QVERIFY(earlier.t.resize(columns * rows));
    QCOMPARE(mapBytes(columns, rows, earlier), std::size_t{0});
    QCOMPARE(mapBytes(columns, rows, MapResults()), std::size_t{32000000});
    QCOMPARE(mapBytes(columns, rows + 1, earlier), std::size_t{32032000});
    const AddressLimit limit(AddressLimit::beside(10000000));
    QVERIFY(mapFits(columns, rows, 0, earlier));
    QVERIFY(!mapFits(columns, rows + 1, 0, earlier));
    QVERIFY(!mapFits(columns, rows, 0, MapResults()));
    QVERIFY(mapFits(columns, rows / 10, 0, MapResults()));
}

void tst_MapCalculation::memoryIsKeptOrGivenBack()
{
    const Case large = regularCase(Method::ThreePoint, 3, 100, 100);
    MapResults results;
    QVERIFY(calculatePixels(large.task(), results));
    const double* a = results.a.data();
    const double* t = results.t.data();
    const Case half = regularCase(Method::ThreePoint, 3, 100, 50);
    QVERIFY(calculatePixels(half.task(), results));
    QCOMPARE(static_cast<const double*>(results.a.data()), a); // the same place is used again
    QCOMPARE(static_cast<const double*>(results.t.data()), t);
    QCOMPARE(difference(half, results), QString());
    const Case small = regularCase(Method::ThreePoint, 3, 10, 10);
    QVERIFY(calculatePixels(small.task(), results));
    QVERIFY(results.a.capacity() < 5000); // what is much too large goes back to the system
    QVERIFY(results.t.capacity() < 5000);
    QCOMPARE(difference(small, results), QString());
    QVERIFY(calculatePixels(large.task(), results));
    QCOMPARE(difference(large, results), QString());
}

// As in rows whose energies are not typed. The second pivot is exactly zero then, and counts as 1.
void tst_MapCalculation::energiesOfZero()
{
    Case test;
    test.method = Method::FourPointLeastSquares;
    test.columns = 1;
    test.rows = 1;
    // The sums of the references are 2 T + 1: half as thick as their sum, as thick as their mean.
    const std::array<double, 3> targets = {1.0, 2.0, 4.0};
    for (const double target : targets) {
        test.points.push_back(row(0.0, target, target + 1.0));
        test.images.push_back({{target}, 1});
    }
    test.points.push_back(vRow(8390.0, 0.9, 0.4));
    test.images.push_back({{0.75}, 1});
    MapResults results;
    QVERIFY(calculatePixels(test.task(), results));
    QVERIFY2(std::abs(results.t[0] - 1.0) < 1e-12, qPrintable(QString::number(results.t[0])));
    QCOMPARE(difference(test, results), QString());
}

void tst_MapCalculation::measuredPixelsAllowAGrid()
{
    const Case test = regularCase(Method::ThreePoint, 3, 2, 2);
    MapTask task = test.task();
    task.columns = 4096;
    task.rows = 1025; // a few thousand pixels more than need no measurement
    auto positions = std::make_shared<MapPositions>();
    task.positions = positions;
    MapResults results;
    QVERIFY(!calculatePixels(task, results));
    QVERIFY(positions->resize(4096 * 1025 / 16));
    std::fill(positions->begin(), positions->end(), MapPosition{});
    QVERIFY(calculatePixels(task, results));
    QCOMPARE(results.size(), std::size_t{4096} * 1025);
}

void tst_MapCalculation::sinkSeesEveryPixelOnce()
{
    const Case test = regularCase(Method::ThreePoint, 3, 201, 103);
    MapResults results;
    Workers workers(3);
    std::vector<std::vector<std::size_t>> seen(workers.size());
    QVERIFY(calculatePixels(
        test.task(), results,
        [&](unsigned worker, const double* a, const double* t, std::size_t count) {
            const auto first = static_cast<std::size_t>(a - results.a.data());
            for (std::size_t i = first; i < first + count; ++i)
                if (t[i - first] ==
                    test.expected(static_cast<int>(i % 201), static_cast<int>(i / 201)).t)
                    seen[worker].push_back(i);
        },
        workers));
    std::vector<int> times(results.size(), 0);
    for (const auto& part : seen)
        for (const std::size_t i : part)
            ++times[i];
    QVERIFY(std::all_of(times.begin(), times.end(), [](int n) { return n == 1; }));
}

void tst_MapCalculation::sameForAnyNumberOfThreads_data()
{
    pixelsAreTargets_data();
}

void tst_MapCalculation::sameForAnyNumberOfThreads()
{
    QFETCH(int, method);
    QFETCH(int, rows);
    const Case test =
        regularCase(static_cast<Method>(method), static_cast<std::size_t>(rows), 211, 97);
    for (const unsigned threads : {1U, 2U, 3U, 8U}) {
        Workers workers(threads);
        MapResults results;
        QVERIFY(calculatePixels(test.task(), results, {}, workers));
        QCOMPARE(difference(test, results), QString());
    }
}

void tst_MapCalculation::equalsThePlainFormulas()
{
    const quint64 seed = Random::seed();
    qInfo("seed %llu", seed);
    Engine random(seed);
    std::vector<std::unique_ptr<Workers>> workers;
    for (const unsigned threads : {1U, 2U, 3U, 8U})
        workers.push_back(std::make_unique<Workers>(threads));
    constexpr int pixels = 1000000;
    MapResults results; // reused, as the panel does
    for (int done = 0; done < pixels;) {
        const int columns = 1 + static_cast<int>(random() % 40);
        const int rows = 1 + static_cast<int>(random() % (random() % 30 == 0 ? 300 : 20));
        const Case test = randomCase(random, columns, rows);
        QVERIFY(calculatePixels(test.task(), results, {}, *workers[random() % workers.size()]));
        const QString differs = difference(test, results);
        QVERIFY2(differs.isEmpty(), qPrintable(differs));
        done += columns * rows;
    }
}

QTEST_APPLESS_MAIN(tst_MapCalculation)
#include "tst_MapCalculation.moc"

#include "analysis/LinearSolver.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <limits>

using formulas::Lines;
using formulas::Numbers;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <std::size_t n>
bool sameLines(const Matrix<n>& found, const Lines& expected)
{
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            if (!same(found[i][j], expected[i][j]))
                return false;
    return true;
}

template <std::size_t n>
bool sameNumbers(const Vector<n>& found, const Numbers& expected)
{
    for (std::size_t i = 0; i < n; ++i)
        if (!same(found[i], expected[i]))
            return false;
    return true;
}

/// Every step of the solution against the literal one, to the last bit.
template <std::size_t n>
bool agrees(const Matrix<n>& a, const Vector<n>& b)
{
    Lines lines;
    for (const auto& row : a)
        lines.emplace_back(row.begin(), row.end());
    const Numbers right(b.begin(), b.end());
    const formulas::Decomposition expected = formulas::luDecompose(n, lines);
    const Numbers expectedY = formulas::luForward(n, expected, right);
    const Numbers expectedX = formulas::luBackward(n, expected, expectedY);

    Matrix<n> lower{};
    Matrix<n> upper{};
    Permutation<n> perm{};
    Vector<n> y{};
    Vector<n> x{};
    luDecompose<n>(a, lower, upper, perm);
    luForward<n>(lower, b, y, perm);
    luBackward<n>(upper, y, x, perm);
    for (std::size_t i = 0; i < n; ++i)
        if (perm[i] != expected.perm[i])
            return false;
    return sameLines<n>(lower, expected.lower) && sameLines<n>(upper, expected.upper) &&
           sameNumbers<n>(y, expectedY) && sameNumbers<n>(x, expectedX) &&
           sameNumbers<n>(solveLinear<n>(a, b), formulas::solve(lines, right));
}

/// How the entries of a matrix are drawn.
enum class Entries { Below1, Around1, SmallWhole, AnyMagnitude, WithNonFinite };

double entry(Random& random, Entries entries)
{
    switch (entries) {
    case Entries::Below1:
        return random.uniform(-1.0, 1.0);
    case Entries::Around1:
        return random.uniform(-5.0, 5.0);
    case Entries::SmallWhole:
        return random.below(9) - 4;
    case Entries::AnyMagnitude:
        return random.anyNumber();
    case Entries::WithNonFinite:
        break;
    }
    const double odd[] = {infinity, -infinity, notANumber, 0.0, -0.0, 5e-324, 1.7e308};
    return random.oneIn(3) ? odd[random.below(7)] : random.uniform(-3.0, 3.0);
}

template <std::size_t n>
void compareRandom(Random& random, Entries entries)
{
    for (int run = 0; run < 4000; ++run) {
        Matrix<n> a{};
        Vector<n> b{};
        for (std::size_t i = 0; i < n; ++i) {
            b[i] = entry(random, entries);
            for (double& value : a[i])
                value = entry(random, entries);
        }
        if (random.oneIn(4)) {
            const auto column = static_cast<std::size_t>(random.below(static_cast<int>(n)));
            for (auto& row : a)
                row[column] = 0.0;
        }
        if (random.oneIn(4))
            a[static_cast<std::size_t>(random.below(static_cast<int>(n)))] = a[0];
        QVERIFY2(agrees<n>(a, b), qPrintable(QStringLiteral("run %1").arg(run)));
    }
}

template <std::size_t n>
Permutation<n> permutationOf(const Matrix<n>& a)
{
    Matrix<n> lower{};
    Matrix<n> upper{};
    Permutation<n> perm{};
    luDecompose<n>(a, lower, upper, perm);
    return perm;
}

} // namespace

class tst_LinearSolver : public QObject
{
    Q_OBJECT
private slots:
    void decompositionByHand();
    void unknownsByHand();
    void magnitudeIsComparedWithTheIndex_data();
    void magnitudeIsComparedWithTheIndex();
    void pivotRuleShowsInTheLastDigits();
    void diagonalSystem();
    void zeroColumnGivesNonFiniteUnknowns();
    void zeroPivotStaysInU();
    void inputIsKept();
    void agreesWithTheLiteralRule_data();
    void agreesWithTheLiteralRule();
};

// Column 0: |2| > 0 takes row 0, |4| > 0 stays with index 0 as best, so row 1 becomes best, and
// |1| > 1 is false. The first pivot is 4.
void tst_LinearSolver::decompositionByHand()
{
    Matrix<3> lower{};
    Matrix<3> upper{};
    Permutation<3> perm{};
    luDecompose<3>({{{2, 3, 5}, {4, 8, 2}, {1, 4, 7}}}, lower, upper, perm);
    // Multipliers 0.5 and 0.25; the rest is {-1, 4} in row 0 and {2, 6.5} in row 2. In column 1 the
    // index starts at 1: |-1| > 1 is false, |2| > 1 takes row 2.
    QCOMPARE(perm, (Permutation<3>{1, 2, 0}));
    QCOMPARE(lower, (Matrix<3>{{{0.5, -0.5, 1}, {1, 0, 0}, {0.25, 1, 0}}}));
    QCOMPARE(upper, (Matrix<3>{{{0, 0, 7.25}, {4, 8, 2}, {0, 2, 6.5}}}));
}

// The same system with x = 1, y = 2, z = 3; every step of it is exact.
void tst_LinearSolver::unknownsByHand()
{
    const Vector<3> x = solveLinear<3>({{{2, 3, 5}, {4, 8, 2}, {1, 4, 7}}}, {23, 26, 30});
    QCOMPARE(x, (Vector<3>{1, 2, 3}));
}

void tst_LinearSolver::magnitudeIsComparedWithTheIndex_data()
{
    QTest::addColumn<QVector<double>>("column");
    QTest::addColumn<int>("first");
    using Column = QVector<double>;
    QTest::newRow("all below 1: the first row that is not zero") << Column{0, 0.5, 0.9, 0.1} << 1;
    QTest::newRow("zero column") << Column{0, 0, 0, 0} << 0;
    QTest::newRow("later, smaller one wins") << Column{9, 0.5, 1.5, 0} << 2;
    QTest::newRow("exactly the index does not win") << Column{3, 5, 1, 1} << 1;
    QTest::newRow("must exceed the index of the best") << Column{1, 1.5, 1.5, 2.5} << 3;
    QTest::newRow("sign does not count") << Column{-1, -1.5, 0, 0} << 1;
}

void tst_LinearSolver::magnitudeIsComparedWithTheIndex()
{
    QFETCH(QVector<double>, column);
    QFETCH(int, first);
    Matrix<4> a{};
    for (std::size_t i = 0; i < 4; ++i)
        a[i][0] = column[static_cast<int>(i)];
    QCOMPARE(static_cast<int>(permutationOf<4>(a)[0]), first);
    for (auto& row : a)
        std::swap(row[0], row[3]);
    // In the last column nothing is left to choose.
    QCOMPARE(permutationOf<4>(a), (Permutation<4>{0, 1, 2, 3}));
}

// Textbook pivoting takes the row of 10 first; here the row of 3 follows it and wins. The two
// orders round differently.
void tst_LinearSolver::pivotRuleShowsInTheLastDigits()
{
    const Matrix<2> a{{{10, 7}, {3, 0.1}}};
    const Vector<2> b{1, 0.7};
    QCOMPARE(permutationOf<2>(a), (Permutation<2>{1, 0}));
    const double multiplier = 10.0 / 3.0;
    const double y = (1.0 - 0.7 * multiplier) / (7.0 - 0.1 * multiplier);
    const Vector<2> x = solveLinear<2>(a, b);
    COMPARE_EXACT(x[1], y);
    QVERIFY(same(x[0], (0.7 - y * 0.1) / 3.0));
    const double textbook = (0.7 - 1.0 * (3.0 / 10.0)) / (0.1 - 7.0 * (3.0 / 10.0));
    QVERIFY(x[1] != textbook);
    QVERIFY(std::abs(x[1] - textbook) < 1e-15);
}

void tst_LinearSolver::diagonalSystem()
{
    const Vector<4> x = solveLinear<4>(
        {{{0.3, 0, 0, 0}, {0, 7, 0, 0}, {0, 0, -1.1, 0}, {0, 0, 0, 90}}}, {0.7, 1.9, 2.2, 5});
    QCOMPARE(x, (Vector<4>{0.7 / 0.3, 1.9 / 7, 2.2 / -1.1, 5.0 / 90}));
}

void tst_LinearSolver::zeroColumnGivesNonFiniteUnknowns()
{
    for (std::size_t column = 0; column < 3; ++column) {
        Matrix<3> a{{{1, 2, 3}, {2, 1, 1}, {1, 1, 2}}};
        for (auto& row : a)
            row[column] = 0.0;
        const Vector<3> x = solveLinear<3>(a, {14, 7, 9});
        QVERIFY(!std::isfinite(x[column]));
    }
    for (const double x : solveLinear<3>(Matrix<3>{}, Vector<3>{}))
        QVERIFY(std::isnan(x));
}

// The second equation is twice the first: U ends with an exact zero, which is divided by.
void tst_LinearSolver::zeroPivotStaysInU()
{
    Matrix<2> lower{};
    Matrix<2> upper{};
    Permutation<2> perm{};
    luDecompose<2>({{{1, 2}, {2, 4}}}, lower, upper, perm);
    QCOMPARE(perm, (Permutation<2>{1, 0}));
    COMPARE_EXACT(upper[0][1], 0.0);
    const Vector<2> x = solveLinear<2>({{{1, 2}, {2, 4}}}, {3, 4});
    COMPARE_EXACT(x[1], infinity);
    COMPARE_EXACT(x[0], -infinity);
    // With a zero first pivot the multiplier is the entry over 1.
    luDecompose<2>({{{0, 5}, {0, 4}}}, lower, upper, perm);
    QCOMPARE(upper, (Matrix<2>{{{0, 5}, {0, 4}}}));
    QCOMPARE(lower, (Matrix<2>{{{1, 0}, {0, 1}}}));
}

void tst_LinearSolver::inputIsKept()
{
    const Matrix<3> a{{{1, 2, 3}, {2, 1, 1}, {1, 1, 2}}};
    const Matrix<3> before = a;
    solveLinear<3>(a, {1, 2, 3});
    QCOMPARE(a, before);
}

void tst_LinearSolver::agreesWithTheLiteralRule_data()
{
    QTest::addColumn<int>("entries");
    QTest::newRow("below 1") << static_cast<int>(Entries::Below1);
    QTest::newRow("around 1") << static_cast<int>(Entries::Around1);
    QTest::newRow("small whole numbers, many zeros") << static_cast<int>(Entries::SmallWhole);
    QTest::newRow("any magnitude") << static_cast<int>(Entries::AnyMagnitude);
    QTest::newRow("infinities and not-a-number") << static_cast<int>(Entries::WithNonFinite);
}

void tst_LinearSolver::agreesWithTheLiteralRule()
{
    QFETCH(int, entries);
    Random random;
    const auto kind = static_cast<Entries>(entries);
    compareRandom<1>(random, kind);
    compareRandom<2>(random, kind);
    compareRandom<3>(random, kind);
    compareRandom<4>(random, kind);
    compareRandom<5>(random, kind);
}

QTEST_GUILESS_MAIN(tst_LinearSolver)
#include "tst_LinearSolver.moc"

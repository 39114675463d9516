#include "tests/accuracy/SixtyDigits.h"

#include <algorithm>
#include <cmath>

namespace exact
{

namespace
{

using Row = std::vector<Real>;

/// Gaussian elimination with the largest pivot of the column. Each row ends with its right side.
Row solve(std::vector<Row> rows)
{
    const std::size_t n = rows.size();
    for (std::size_t k = 0; k < n; ++k) {
        const auto largest =
            std::max_element(rows.begin() + static_cast<std::ptrdiff_t>(k), rows.end(),
                             [k](const Row& a, const Row& b) { return abs(a[k]) < abs(b[k]); });
        std::swap(rows[k], *largest);
        for (std::size_t i = k + 1; i < n; ++i) {
            const Real factor = rows[i][k] / rows[k][k];
            for (std::size_t j = k; j <= n; ++j)
                rows[i][j] -= factor * rows[k][j];
        }
    }
    Row x(n);
    for (std::size_t k = n; k-- > 0;) {
        x[k] = rows[k][n];
        for (std::size_t j = k + 1; j < n; ++j)
            x[k] -= rows[k][j] * x[j];
        x[k] /= rows[k][k];
    }
    return x;
}

/// Largest sum of magnitudes of a row's first n entries.
Real largestRow(const std::vector<Row>& rows)
{
    Real largest = 0;
    for (const Row& row : rows) {
        Real sum = 0;
        for (std::size_t j = 0; j < rows.size(); ++j)
            sum += abs(row[j]);
        largest = std::max(largest, sum);
    }
    return largest;
}

/// Least squares: the weights of the base functions that come nearest to the values.
class LeastSquares
{
public:
    explicit LeastSquares(std::size_t n) : m_rows(n, Row(n + 1)) {}

    void add(const Row& base, const Real& value)
    {
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            for (std::size_t j = i; j < m_rows.size(); ++j)
                m_rows[i][j] += base[i] * base[j];
            m_rows[i].back() += base[i] * value;
        }
    }
    Row weights() const { return solve(whole()); }
    /// Without the first base function.
    Row weightsOfRest() const
    {
        std::vector<Row> rows = whole();
        rows.erase(rows.begin());
        for (Row& row : rows)
            row.erase(row.begin());
        return solve(rows);
    }
    Real norm(std::size_t i) const { return sqrt(m_rows[i][i]); }
    /// Condition of the normal equations when each base function is scaled to a norm of 1: the
    /// factor by which a relative error of the sums grows in the weights, at the worst.
    Real condition() const
    {
        const std::vector<Row> rows = whole();
        std::vector<Row> scaled = rows;
        for (std::size_t i = 0; i < rows.size(); ++i)
            for (std::size_t j = 0; j < rows.size(); ++j)
                scaled[i][j] /= norm(i) * norm(j);
        std::vector<Row> inverse;
        for (std::size_t column = 0; column < rows.size(); ++column) {
            for (std::size_t i = 0; i < rows.size(); ++i)
                scaled[i].back() = i == column ? 1 : 0;
            inverse.push_back(solve(scaled));
        }
        return largestRow(scaled) * largestRow(inverse);
    }

private:
    /// The normal equations with both halves of their symmetric matrix.
    std::vector<Row> whole() const
    {
        std::vector<Row> rows = m_rows;
        for (std::size_t i = 0; i < rows.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                rows[i][j] = rows[j][i];
        return rows;
    }

    std::vector<Row> m_rows;
};

const Real hc("12398.424360387684");

} // namespace

Real Line::at(double energy) const
{
    const Real l = hc / energy;
    return c + l * l * l * (a + b * l);
}

LineFit fitLines(const SpectrumPoints& points, const std::function<bool(double)>& selected)
{
    LeastSquares fit(3);
    int count = 0;
    for (const SpectrumPoint& point : points) {
        if (!selected(point.energy))
            continue;
        ++count;
        const Real l = hc / point.energy;
        const Real cube = l * l * l;
        fit.add({1, cube, cube * l}, point.mut);
    }
    const Row full = fit.weights();
    const Row rest = fit.weightsOfRest();
    return {{full[0], full[1], full[2]},
            {0, rest[0], rest[1]},
            {fit.norm(0), fit.norm(1), fit.norm(2)},
            fit.condition(),
            count};
}

Real LineFit::relativeError(double c, double a, double b) const
{
    const Real error = std::max({Real(abs(c - full.c) * norms.c), Real(abs(a - full.a) * norms.a),
                                 Real(abs(b - full.b) * norms.b)});
    const Real size = std::max(
        {Real(abs(full.c) * norms.c), Real(abs(full.a) * norms.a), Real(abs(full.b) * norms.b)});
    return error / size;
}

Spectrum::Spectrum(const SpectrumPoints& from, double edgeEnergy, double preEdgeEnd,
                   double postEdgeStart)
    : points(from), edge(edgeEnergy),
      pre(fitLines(from, [=](double energy) { return energy < edgeEnergy + preEdgeEnd; })),
      post(fitLines(from, [=](double energy) { return energy > edgeEnergy + postEdgeStart; }))
{
}

std::size_t Spectrum::rightNeighbour(double energy) const
{
    std::size_t i = 1;
    while (points[i].energy < energy)
        ++i;
    return i;
}

Real Spectrum::between(double energy, const Real& left, const Real& right) const
{
    const std::size_t i = rightNeighbour(energy);
    const Real part =
        (Real(energy) - points[i - 1].energy) / (Real(points[i].energy) - points[i - 1].energy);
    return left + part * (right - left);
}

Real Spectrum::mutAt(double energy) const
{
    const std::size_t i = rightNeighbour(energy);
    return between(energy, points[i - 1].mut, points[i].mut);
}

Real Spectrum::normalizedPoint(std::size_t i) const
{
    const Real below = pre.full.at(points[i].energy);
    return (points[i].mut - below) / (post.full.at(points[i].energy) - below);
}

Real Spectrum::normalizedAt(double energy) const
{
    const std::size_t i = rightNeighbour(energy);
    return between(energy, normalizedPoint(i - 1), normalizedPoint(i));
}

Combination fitCombination(const Spectrum& ref1, const Spectrum& ref2, const Spectrum& target,
                           double min, double max)
{
    LeastSquares fit(3);
    for (std::size_t i = 0; i < target.points.size(); ++i) {
        const double energy = target.points[i].energy;
        if (min <= energy && energy <= max)
            fit.add({ref1.normalizedAt(energy), ref2.normalizedAt(energy), 1},
                    target.normalizedPoint(i));
    }
    const Row x = fit.weights();
    return {x[0], x[1], x[2]};
}

namespace
{

/// A row of the point table in full precision.
struct Point {
    Real e;
    Real r1;
    Real r2;
    Real t;

    explicit Point(const PointRow& row)
        : e(row.energy), r1(Real(row.mut1) - row.mutBlank), r2(Real(row.mut2) - row.mutBlank),
          t(row.useVicTarget ? Real(row.mutTarget) : Real(row.mutTarget) - row.mutBlank)
    {
    }
    Real s() const { return r1 + r2; }
};

std::vector<Point> normalization(const PointRows& rows, const PointChoice& choice)
{
    std::vector<Point> points;
    for (const std::size_t row : choice.normalization)
        points.emplace_back(rows[row]);
    return points;
}

/// T = c S + mu0 + k E is known; what is left at the V point tells a.
PointResult atVPoint(const Point& v, const Real& rho, const Real& c, const Real& mu0, const Real& k)
{
    // The rest is t (a R1 / t1 + (1 - a) R2 / t2) with t1 / t2 = rho and c = t / (t1 + t2).
    const Real perT1 = c * (1 + rho) / rho; // t / t1
    const Real perT2 = c * (1 + rho);       // t / t2
    const Real rest = v.t - mu0 - k * v.e;
    return {(rest - perT2 * v.r2) / (perT1 * v.r1 - perT2 * v.r2), 2 * c};
}

StraightLine straightLine(const std::vector<std::pair<Real, Real>>& points)
{
    LeastSquares fit(2);
    for (const auto& [x, y] : points)
        fit.add({x, 1}, y);
    const Row weights = fit.weights();
    return {weights[0], weights[1]};
}

} // namespace

PointResult threePoints(const PointRows& rows, const PointChoice& choice)
{
    const std::vector<Point> p = normalization(rows, choice);
    const Point v(rows[choice.vPoint]);
    const Real x1 = (v.r1 - p[0].r1) / (p[1].r1 - p[0].r1);
    const Real x2 = (v.r2 - p[0].r2) / (p[1].r2 - p[0].r2);
    const Real x = (v.t - p[0].t) / (p[1].t - p[0].t);
    return {(x - x2) / (x1 - x2), 0};
}

PointResult fourPointsExact(const PointRows& rows, const PointChoice& choice, double rho)
{
    const std::vector<Point> p = normalization(rows, choice);
    std::vector<Row> equations;
    for (std::size_t i = 0; i < 3; ++i)
        equations.push_back({p[i].s(), 1, p[i].e, p[i].t});
    const Row x = solve(equations);
    return atVPoint(Point(rows[choice.vPoint]), rho, x[0], x[1], x[2]);
}

PointResult fourPointsLeastSquares(const PointRows& rows, const PointChoice& choice, double rho)
{
    LeastSquares fit(3);
    for (const Point& point : normalization(rows, choice))
        fit.add({1, point.e, point.t}, point.s());
    const Row x = fit.weights();
    return atVPoint(Point(rows[choice.vPoint]), rho, 1 / x[2], -x[0] / x[2], -x[1] / x[2]);
}

Ratios thicknessRatios(const PointRows& rows, const PointChoice& choice)
{
    std::vector<std::pair<Real, Real>> corrected;
    std::vector<std::pair<Real, Real>> typed;
    Real sum1 = 0;
    Real sum2 = 0;
    Real ratios = 0;
    for (const std::size_t i : choice.normalization) {
        const Real blank = rows[i].useVicRefs ? 0 : rows[i].mutBlank;
        const Real y = rows[i].mut1 - blank;
        const Real x = rows[i].mut2 - blank;
        corrected.emplace_back(x, y);
        typed.emplace_back(rows[i].mut2, rows[i].mut1);
        sum1 += y;
        sum2 += x;
        ratios += y / x;
    }
    return {sum1 / sum2, ratios / corrected.size(), straightLine(corrected), straightLine(typed)};
}

double correctDigits(double value, const Real& truth)
{
    constexpr double all = 16;
    if (!std::isfinite(value))
        return 0;
    const Real error = abs((value - truth) / truth);
    return error == 0 ? all : std::clamp(-static_cast<double>(log10(error)), 0.0, all);
}

} // namespace exact

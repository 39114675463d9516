#include "analysis/PointRatio.h"

#include "analysis/Constants.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace
{

/// Derivatives by the entries from those by what a method takes of a row: the references less the
/// blank, and the target.
class RowDerivatives
{
public:
    RowDerivatives(const PointRows& rows, EntryGradient& by) : m_rows(rows), m_by(by) {}

    void reference1(std::size_t row, double derivative)
    {
        less(SpectrumSet::Ref1, row, derivative);
    }
    void reference2(std::size_t row, double derivative)
    {
        less(SpectrumSet::Ref2, row, derivative);
    }
    void sum(std::size_t row, double derivative)
    {
        reference1(row, derivative);
        reference2(row, derivative);
    }
    void target(std::size_t row, double derivative)
    {
        m_by[SpectrumSet::Target][row] += derivative;
        if (!m_rows[row].useVicTarget)
            m_by[SpectrumSet::Blank][row] -= derivative;
    }

private:
    void less(SpectrumSet::Index spectrum, std::size_t row, double derivative)
    {
        m_by[spectrum][row] += derivative;
        m_by[SpectrumSet::Blank][row] -= derivative;
    }

    const PointRows& m_rows;
    EntryGradient& m_by;
};

void add(const EntryGradient& what, double factor, EntryGradient& to)
{
    for (std::size_t s = 0; s < to.size(); ++s)
        for (std::size_t i = 0; i < to[s].size(); ++i)
            if (what[s][i] != 0.0)
                to[s][i] += factor * what[s][i];
}

/// Ref 2 (x) and Ref 1 (y) at the rows that a thickness ratio uses.
struct RatioPoints {
    std::vector<std::size_t> rows;
    std::vector<double> x;
    std::vector<double> y;
};

double sumOf(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum;
}

RatioPoints ratioPoints(const PointRows& rows, bool withBlank)
{
    const bool marked =
        std::any_of(rows.begin(), rows.end(), [](const PointRow& row) { return row.tRatio; });
    RatioPoints points;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const PointRow& row = rows[i];
        if (row.vPoint || !(marked ? row.tRatio : row.use))
            continue;
        const double blank = withBlank || row.useVicRefs ? 0.0 : row.mutBlank;
        points.rows.push_back(i);
        points.x.push_back(row.mut2 - blank);
        points.y.push_back(row.mut1 - blank);
    }
    return points;
}

/// Derivatives of the ratio by x and y of one point.
using ByXY = std::pair<double, double>;

/// Slope of the least-squares line y = A x + B.
std::vector<ByXY> slopeDerivatives(const RatioPoints& points, double& slope)
{
    const auto n = static_cast<double>(points.x.size());
    const double meanX = sumOf(points.x) / n;
    const double meanY = sumOf(points.y) / n;
    double xx = 0.0;
    double xy = 0.0;
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        xx += (points.x[i] - meanX) * (points.x[i] - meanX);
        xy += (points.x[i] - meanX) * (points.y[i] - meanY);
    }
    slope = xy / xx;
    std::vector<ByXY> by;
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        const double x = points.x[i] - meanX;
        by.emplace_back((points.y[i] - meanY - 2.0 * slope * x) / xx, x / xx);
    }
    return by;
}

std::vector<ByXY> ratioDerivatives(const RatioPoints& points, ThicknessType type, double& rho)
{
    if (type == ThicknessType::LeastSquares || type == ThicknessType::LeastSquaresNoBlank)
        return slopeDerivatives(points, rho);
    std::vector<ByXY> by;
    const double sumX = sumOf(points.x);
    const double sumY = sumOf(points.y);
    const auto n = static_cast<double>(points.x.size());
    double ratios = 0.0;
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        const double ratio = points.y[i] / points.x[i];
        ratios += ratio;
        if (type == ThicknessType::SumBySum)
            by.emplace_back(-sumY / (sumX * sumX), 1.0 / sumX);
        else
            by.emplace_back(-ratio / (points.x[i] * n), 1.0 / (points.x[i] * n));
    }
    rho = type == ThicknessType::SumBySum ? sumY / sumX : ratios / n;
    return by;
}

PointRatio threePointRatio(const PointRows& rows, const PointChoice& choice)
{
    const std::size_t i0 = choice.normalization[0];
    const std::size_t i1 = choice.normalization[1];
    const std::size_t iV = choice.vPoint;
    const double step1 = rows[i1].reference1() - rows[i0].reference1();
    const double step2 = rows[i1].reference2() - rows[i0].reference2();
    const double step = rows[i1].target() - rows[i0].target();
    const double scaled1 = (rows[iV].reference1() - rows[i0].reference1()) / step1;
    const double scaled2 = (rows[iV].reference2() - rows[i0].reference2()) / step2;
    const double meanStep = ((rows[i1].reference1() - rows[i0].reference1()) +
                             (rows[i1].reference1() - rows[i0].reference2())) *
                            0.5;
    PointRatio ratio;
    ratio.l1 = rows[iV].target() - rows[i0].target() - scaled2 * step;
    ratio.l2 = (scaled1 - scaled2) * step;
    ratio.thickness = step / meanStep;

    // by: weight of d(scaled1) and d(scaled2) in a quotient's part
    const auto scaled = [&](RowDerivatives by, double weight1, double weight2) {
        by.reference1(iV, weight1 / step1);
        by.reference1(i0, weight1 * (scaled1 - 1.0) / step1);
        by.reference1(i1, -weight1 * scaled1 / step1);
        by.reference2(iV, weight2 / step2);
        by.reference2(i0, weight2 * (scaled2 - 1.0) / step2);
        by.reference2(i1, -weight2 * scaled2 / step2);
    };
    RowDerivatives by1(rows, ratio.by1);
    by1.target(iV, 1.0);
    by1.target(i0, scaled2 - 1.0);
    by1.target(i1, -scaled2);
    scaled(by1, 0.0, -step);
    RowDerivatives by2(rows, ratio.by2);
    by2.target(i1, scaled1 - scaled2);
    by2.target(i0, scaled2 - scaled1);
    scaled(by2, step, -step);
    RowDerivatives byT(rows, ratio.byThickness);
    byT.target(i1, 1.0 / meanStep);
    byT.target(i0, -1.0 / meanStep);
    const double perStep = -ratio.thickness / meanStep;
    byT.reference1(i1, perStep);
    byT.reference1(i0, -0.5 * perStep);
    byT.reference2(i0, -0.5 * perStep);
    return ratio;
}

/// T = c S + B at the normalization points, S regressed on energy and T; with three points this is
/// the exact form as well, since nothing is left over.
class ScaledTarget
{
public:
    ScaledTarget(const PointRows& rows, const PointChoice& choice, std::size_t count);

    double c() const { return m_c; }
    /// The line B at the V point.
    double background() const { return m_background; }
    EntryGradient byC() const;
    EntryGradient byBackground() const;

private:
    struct Point {
        std::size_t row;
        double t;      ///< target less its straight line
        double s;      ///< sum of the references less its straight line
        double weight; ///< of the point in a straight line's value at the V point
    };

    const PointRows& m_rows;
    std::vector<Point> m_points;
    double m_ts = 0.0;    ///< product of t and s
    double m_lineS = 0.0; ///< the straight line of S at the V point
    double m_c = 0.0;
    double m_background = 0.0;
};

ScaledTarget::ScaledTarget(const PointRows& rows, const PointChoice& choice, std::size_t count)
    : m_rows(rows)
{
    const auto n = static_cast<double>(count);
    double meanE = 0.0;
    double meanT = 0.0;
    double meanS = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const PointRow& row = rows[choice.normalization[i]];
        meanE += row.energy / n;
        meanT += row.target() / n;
        meanS += (row.reference1() + row.reference2()) / n;
    }
    double ee = 0.0;
    double et = 0.0;
    double es = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const PointRow& row = rows[choice.normalization[i]];
        const double e = row.energy - meanE;
        ee += e * e;
        et += e * (row.target() - meanT);
        es += e * (row.reference1() + row.reference2() - meanS);
    }
    const double eV = rows[choice.vPoint].energy - meanE;
    double tt = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const PointRow& row = rows[choice.normalization[i]];
        const double e = row.energy - meanE;
        const double t = row.target() - meanT - et / ee * e;
        const double s = row.reference1() + row.reference2() - meanS - es / ee * e;
        m_points.push_back({choice.normalization[i], t, s, 1.0 / n + e * eV / ee});
        tt += t * t;
        m_ts += t * s;
    }
    m_c = tt / m_ts;
    m_lineS = meanS + es / ee * eV;
    m_background = meanT + et / ee * eV - m_c * m_lineS;
}

EntryGradient ScaledTarget::byC() const
{
    EntryGradient by{};
    RowDerivatives derivatives(m_rows, by);
    for (const Point& point : m_points) {
        derivatives.target(point.row, (2.0 * point.t - m_c * point.s) / m_ts);
        derivatives.sum(point.row, -m_c * point.t / m_ts);
    }
    return by;
}

EntryGradient ScaledTarget::byBackground() const
{
    EntryGradient by{};
    RowDerivatives derivatives(m_rows, by);
    for (const Point& point : m_points) {
        derivatives.target(point.row, point.weight);
        derivatives.sum(point.row, -m_c * point.weight);
    }
    add(byC(), -m_lineS, by);
    return by;
}

PointRatio fourPointRatio(const PointRows& rows, const PointChoice& choice, std::size_t count,
                          const RatioGradient& rhoGradient)
{
    const ScaledTarget scaled(rows, choice, count);
    const PointRow& v = rows[choice.vPoint];
    const double rho = rhoGradient.rho;
    const double c = scaled.c();
    const double r2 = v.reference2();
    const double contrast = r2 - v.reference1() / rho;
    const EntryGradient byC = scaled.byC();
    PointRatio ratio;
    ratio.l1 = c * (rho + 1.0) * r2 + scaled.background() - v.target();
    ratio.l2 = c * (rho + 1.0) * contrast;
    ratio.thickness = 2.0 * c;
    ratio.by1 = scaled.byBackground();
    add(byC, (rho + 1.0) * r2, ratio.by1);
    add(rhoGradient.by, c * r2, ratio.by1);
    RowDerivatives by1(rows, ratio.by1);
    by1.reference2(choice.vPoint, c * (rho + 1.0));
    by1.target(choice.vPoint, -1.0);
    add(byC, (rho + 1.0) * contrast, ratio.by2);
    add(rhoGradient.by, c * (contrast + (rho + 1.0) * v.reference1() / (rho * rho)), ratio.by2);
    RowDerivatives by2(rows, ratio.by2);
    by2.reference2(choice.vPoint, c * (rho + 1.0));
    by2.reference1(choice.vPoint, -c * (rho + 1.0) / rho);
    add(byC, 2.0, ratio.byThickness);
    return ratio;
}

} // namespace

RatioGradient ratioGradient(const PointRows& rows, ThicknessType type, double edgeJump1,
                            double edgeJump2)
{
    RatioGradient gradient;
    if (type == ThicknessType::EdgeJumps) {
        gradient.rho = edgeJump1 / edgeJump2;
        gradient.by[SpectrumSet::Ref1][edgeJumpEntry] = 1.0 / edgeJump2;
        gradient.by[SpectrumSet::Ref2][edgeJumpEntry] = -gradient.rho / edgeJump2;
        return gradient;
    }
    const bool withBlank = type == ThicknessType::LeastSquaresNoBlank;
    const RatioPoints points = ratioPoints(rows, withBlank);
    const std::vector<ByXY> by = ratioDerivatives(points, type, gradient.rho);
    for (std::size_t i = 0; i < by.size(); ++i) {
        const auto& [byX, byY] = by[i];
        const std::size_t row = points.rows[i];
        gradient.by[SpectrumSet::Ref2][row] += byX;
        gradient.by[SpectrumSet::Ref1][row] += byY;
        if (!withBlank && !rows[row].useVicRefs)
            gradient.by[SpectrumSet::Blank][row] -= byX + byY;
    }
    return gradient;
}

EntryGradient PointRatio::fractionGradient() const
{
    EntryGradient by{};
    add(by1, 1.0 / l2, by);
    add(by2, -l1 / (l2 * l2), by);
    return by;
}

PointRatio pointRatio(const PointRows& rows, const PointChoice& choice, Method method,
                      const RatioGradient& ratio)
{
    const std::size_t needed = method == Method::ThreePoint ? 2 : 3;
    if (!choice.hasVPoint() || choice.normalization.size() < needed) {
        PointRatio none;
        none.l1 = none.l2 = none.thickness = notANumber;
        return none;
    }
    if (method == Method::ThreePoint)
        return threePointRatio(rows, choice);
    const bool exact = method == Method::FourPointExact;
    return fourPointRatio(rows, choice, exact ? needed : choice.normalization.size(), ratio);
}

#include "analysis/Victreen.h"

#include "analysis/LinearSolver.h"

namespace
{

/// Sums over the selected points for the normal equations; s3 is the sum of lambda^3 and so on,
/// m3 the sum of mu-t times lambda^3.
struct Sums {
    double n = 0.0;
    double s3 = 0.0;
    double s4 = 0.0;
    double s6 = 0.0;
    double s7 = 0.0;
    double s8 = 0.0;
    double m = 0.0;
    double m3 = 0.0;
    double m4 = 0.0;

    void add(const SpectrumPoint& point)
    {
        const double l = wavelength(point.energy);
        const double l3 = l * l * l;
        const double l4 = l * l3;
        n += 1.0;
        s3 += l3;
        s4 += l4;
        s6 += l3 * l3;
        s7 += l3 * l4;
        s8 += l4 * l4;
        m += point.mut;
        m3 += point.mut * l3;
        m4 += point.mut * l4;
    }

    VictreenFit fit() const
    {
        VictreenFit result;
        result.noC.a = (m3 * s8 - m4 * s7) / (s6 * s8 - s7 * s7);
        result.noC.b = m3 / s7 - result.noC.a * s6 / s7;
        const Matrix<3> normal{{{n, s3, s4}, {s3, s6, s7}, {s4, s7, s8}}};
        const Vector<3> solution = solveLinear<3>(normal, {m, m3, m4});
        result.full = {solution[0], solution[1], solution[2]};
        return result;
    }
};

} // namespace

VictreenFit fitVictreenBelow(const SpectrumPoints& points, double limit)
{
    Sums sums;
    for (const SpectrumPoint& point : points)
        if (point.energy < limit)
            sums.add(point);
    return sums.fit();
}

VictreenFit fitVictreenAbove(const SpectrumPoints& points, double limit)
{
    Sums sums;
    for (const SpectrumPoint& point : points)
        if (point.energy > limit)
            sums.add(point);
    return sums.fit();
}

double normalizedPoint(const SpectrumPoint& point, const VictreenLine& pre,
                       const VictreenLine& post)
{
    const double below = pre.at(point.energy);
    return (point.mut - below) / (post.at(point.energy) - below);
}

double normalizedBetween(const SpectrumPoint& left, const SpectrumPoint& right,
                         const VictreenLine& pre, const VictreenLine& post, double energy)
{
    const double nLeft = normalizedPoint(left, pre, post);
    const double nRight = normalizedPoint(right, pre, post);
    return nLeft + (energy - left.energy) * (nRight - nLeft) / (right.energy - left.energy);
}

double normalizedAt(const SpectrumPoints& points, const VictreenLine& pre, const VictreenLine& post,
                    double energy)
{
    if (points.size() < 2 || energy < points.front().energy || energy > points.back().energy)
        return 0.0;
    for (std::size_t i = 1; i < points.size(); ++i)
        if (points[i - 1].energy <= energy && energy <= points[i].energy)
            return normalizedBetween(points[i - 1], points[i], pre, post, energy);
    return 0.0;
}

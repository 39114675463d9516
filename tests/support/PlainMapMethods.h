#pragma once

#include "analysis/PointRow.h"

#include <cmath>
#include <cstddef>
#include <vector>

/// The point methods for one pixel of a map, the formulas written down one by one; a second reading
/// that shares nothing with the program's own.
namespace plain
{

struct PixelResult {
    double a;
    double t;
};

/// One image: mu-t of its pixels and its own number of columns.
struct Image {
    std::vector<double> mut;
    int columns = 0;

    /// Value of the pixel in column x and row y; -1 where the image has none.
    double at(int x, int y) const
    {
        const long long index = static_cast<long long>(y) * columns + x;
        if (index < 0 || index >= static_cast<long long>(mut.size()))
            return -1.0;
        return mut[static_cast<std::size_t>(index)];
    }
};

/// Decomposition, forward and back substitution for n equations, with the pivot found by comparing
/// magnitudes with the index of the best row so far.
inline std::vector<double> solve(std::vector<std::vector<double>> a, const std::vector<double>& b)
{
    const std::size_t n = b.size();
    std::vector<std::size_t> perm(n);
    for (std::size_t i = 0; i < n; ++i)
        perm[i] = i;
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t best = k;
        for (std::size_t j = k; j < n; ++j)
            if (std::fabs(a[perm[j]][k]) > static_cast<double>(best))
                best = j;
        const std::size_t swapped = perm[k];
        perm[k] = perm[best];
        perm[best] = swapped;
        double pivot = a[perm[k]][k];
        if (pivot == 0.0)
            pivot = 1.0;
        for (std::size_t i = k + 1; i < n; ++i) {
            const double multiplier = a[perm[i]][k] / pivot;
            a[perm[i]][k] = multiplier;
            for (std::size_t j = k + 1; j < n; ++j)
                a[perm[i]][j] -= a[perm[k]][j] * multiplier;
        }
    }
    std::vector<double> y = b;
    for (std::size_t k = 0; k + 1 < n; ++k)
        for (std::size_t i = k + 1; i < n; ++i)
            y[perm[i]] -= y[perm[k]] * a[perm[i]][k];
    std::vector<double> x = y;
    for (std::size_t k = n; k-- > 0;) {
        x[perm[k]] = x[perm[k]] / a[perm[k]][k];
        for (std::size_t i = k; i-- > 0;)
            x[perm[i]] -= x[perm[k]] * a[perm[i]][k];
    }
    std::vector<double> unknowns(n);
    for (std::size_t k = 0; k < n; ++k)
        unknowns[k] = x[perm[k]];
    return unknowns;
}

/// Normalization points in the table's order and the V point, with the target's value at each.
struct PixelInput {
    std::vector<PointRow> rows;
    std::vector<double> values;
    PointRow v;
    double valueV = 0.0;
};

inline double blanked1(const PointRow& row)
{
    return row.mut1 - row.mutBlank;
}

inline double blanked2(const PointRow& row)
{
    return row.mut2 - row.mutBlank;
}

inline PixelResult threePoint(const PixelInput& in)
{
    const double r1p0 = blanked1(in.rows[0]);
    const double r1p1 = blanked1(in.rows[1]);
    const double r1v = blanked1(in.v);
    const double r2p0 = blanked2(in.rows[0]);
    const double r2p1 = blanked2(in.rows[1]);
    const double r2v = blanked2(in.v);
    const double tp0 = in.values[0];
    const double tp1 = in.values[1];
    const double tv = in.valueV;
    const double k = (r2v - r2p0) / (r2p1 - r2p0);
    const double a = ((tv - tp0) / (tp1 - tp0) - k) / ((r1v - r1p0) / (r1p1 - r1p0) - k);
    const double t = (tp1 - tp0) / (((r1p1 - r1p0) + (r1p1 - r2p0)) * 0.5);
    return {a, t};
}

inline double fraction(const PixelInput& in, double rho, double q, double mu0, double k)
{
    const double r1v = blanked1(in.v);
    const double r2v = blanked2(in.v);
    const double u = q / (rho + 1.0);
    return (r2v * rho * u + rho * u * u * (mu0 + k * in.v.energy - in.valueV)) /
           (r2v * rho * u - u * r1v);
}

inline PixelResult fourPointExact(const PixelInput& in, double rho)
{
    const double e0 = in.rows[0].energy;
    const double e1 = in.rows[1].energy;
    const double e2 = in.rows[2].energy;
    const double s0 = blanked1(in.rows[0]) + blanked2(in.rows[0]);
    const double s1 = blanked1(in.rows[1]) + blanked2(in.rows[1]);
    const double s2 = blanked1(in.rows[2]) + blanked2(in.rows[2]);
    const double t0 = in.values[0];
    const double t1 = in.values[1];
    const double t2 = in.values[2];
    const double ds = s2 * (e1 - e0) + s1 * (e0 - e2) + s0 * (e2 - e1);
    const double dt = t2 * (e1 - e0) + t1 * (e0 - e2) + t0 * (e2 - e1);
    const double q = ds / dt;
    const double mu0 =
        -((e0 * t1 - t0 * e1) * s2 + (e1 * s0 - e0 * s1) * t2 + e2 * t0 * s1 - e2 * s0 * t1) / ds;
    const double k = ((t1 - t0) * s2 + (s0 - s1) * t2 + s1 * t0 - s0 * t1) / ds;
    return {fraction(in, rho, q, mu0, k), 1.0 / (q * 0.5)};
}

inline PixelResult fourPointLeastSquares(const PixelInput& in, double rho)
{
    double n = 0.0;
    double sumE = 0.0;
    double sumT = 0.0;
    double sumS = 0.0;
    double sumEE = 0.0;
    double sumET = 0.0;
    double sumTT = 0.0;
    double sumES = 0.0;
    double sumTS = 0.0;
    for (std::size_t i = 0; i < in.rows.size(); ++i) {
        const double e = in.rows[i].energy;
        const double s = blanked1(in.rows[i]) + blanked2(in.rows[i]);
        const double t = in.values[i];
        n += 1.0;
        sumE += e;
        sumT += t;
        sumS += s;
        sumEE += e * e;
        sumET += e * t;
        sumTT += t * t;
        sumES += e * s;
        sumTS += t * s;
    }
    const std::vector<double> x =
        solve({{n, sumE, sumT}, {sumE, sumEE, sumET}, {sumT, sumET, sumTT}}, {sumS, sumES, sumTS});
    return {fraction(in, rho, x[2], -x[0] / x[2], -x[1] / x[2]), 1.0 / (x[2] * 0.5)};
}

} // namespace plain

#pragma once

#include <cmath>
#include <cstddef>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

/// The program's formulas a second time, written down literally and without regard to speed: the
/// measure of the kernels, bit by bit, and of the whole panel. They share no code with the program;
/// points and rows are taken in whatever type has the members.
namespace formulas
{

using Numbers = std::vector<double>;
using Lines = std::vector<Numbers>;

// Linear equations -----------------------------------------------------------------------------

struct Decomposition {
    Lines lower;
    Lines upper;
    std::vector<std::size_t> perm;
};

inline Decomposition luDecompose(std::size_t n, Lines matrix)
{
    Decomposition d{std::move(matrix), Lines(n, Numbers(n, 0.0)), std::vector<std::size_t>(n)};
    Lines& a = d.lower;
    std::vector<std::size_t>& perm = d.perm;
    for (std::size_t i = 0; i < n; i++)
        perm[i] = i;
    for (std::size_t k = 0; k < n; k++) {
        std::size_t best = k;
        for (std::size_t j = k; j < n; j++)
            if (std::fabs(a[perm[j]][k]) > static_cast<double>(best))
                best = j;
        const std::size_t swapped = perm[k];
        perm[k] = perm[best];
        perm[best] = swapped;
        double pivot = a[perm[k]][k];
        if (pivot == 0.0)
            pivot = 1.0;
        for (std::size_t i = k + 1; i < n; i++) {
            a[perm[i]][k] = a[perm[i]][k] / pivot;
            for (std::size_t j = k + 1; j < n; j++)
                a[perm[i]][j] = a[perm[i]][j] - a[perm[k]][j] * a[perm[i]][k];
        }
    }
    for (std::size_t i = 0; i < n; i++) {
        for (std::size_t j = i; j < n; j++) {
            d.upper[perm[i]][j] = a[perm[i]][j];
            a[perm[i]][j] = i == j ? 1.0 : 0.0;
        }
    }
    return d;
}

/// @param y  the right side
inline Numbers luForward(std::size_t n, const Decomposition& d, Numbers y)
{
    for (std::size_t k = 0; k + 1 < n; k++) {
        const std::size_t r = d.perm[k];
        y[r] = y[r] / d.lower[r][k];
        for (std::size_t i = k + 1; i < n; i++)
            y[d.perm[i]] = y[d.perm[i]] - y[r] * d.lower[d.perm[i]][k];
    }
    return y;
}

/// @param x  what luForward brings
inline Numbers luBackward(std::size_t n, const Decomposition& d, Numbers x)
{
    for (std::size_t k = n; k-- > 0;) {
        const std::size_t r = d.perm[k];
        x[r] = x[r] / d.upper[r][k];
        for (std::size_t i = k; i-- > 0;)
            x[d.perm[i]] = x[d.perm[i]] - x[r] * d.upper[d.perm[i]][k];
    }
    return x;
}

inline Numbers solve(Lines matrix, Numbers right)
{
    const std::size_t n = matrix.size();
    const Decomposition d = luDecompose(n, std::move(matrix));
    const Numbers x = luBackward(n, d, luForward(n, d, std::move(right)));
    Numbers unknowns;
    for (std::size_t k = 0; k < n; k++)
        unknowns.push_back(x[d.perm[k]]);
    return unknowns;
}

// Victreen lines -------------------------------------------------------------------------------

struct Victreen {
    double c, a, b; ///< three terms
    double aNoC, bNoC;
};

inline double victreenAt(double c, double a, double b, double energy)
{
    const double lambda = 12398.424360387684 / energy;
    return lambda * lambda * lambda * (a + b * lambda) + c;
}

inline double noCAt(double a, double b, double energy)
{
    const double lambda = 12398.424360387684 / energy;
    return lambda * lambda * lambda * (a + b * lambda);
}

template <class Points>
Victreen fitVictreen(const Points& points, const std::function<bool(double energy)>& selects)
{
    double n = 0, S3 = 0, S4 = 0, S6 = 0, S7 = 0, S8 = 0, Sm = 0, Sm3 = 0, Sm4 = 0;
    for (const auto& p : points) {
        if (!selects(p.energy))
            continue;
        const double l = 12398.424360387684 / p.energy;
        const double l3 = l * l * l;
        const double l4 = l * l3;
        n += 1;
        S3 += l3;
        S4 += l4;
        S6 += l3 * l3;
        S7 += l3 * l4;
        S8 += l4 * l4;
        Sm += p.mut;
        Sm3 += p.mut * l3;
        Sm4 += p.mut * l4;
    }
    const double a = (Sm3 * S8 - Sm4 * S7) / (S6 * S8 - S7 * S7);
    const double b = Sm3 / S7 - a * S6 / S7;
    const Numbers x = solve({{n, S3, S4}, {S3, S6, S7}, {S4, S7, S8}}, {Sm, Sm3, Sm4});
    return {x[0], x[1], x[2], a, b};
}

// Spectra --------------------------------------------------------------------------------------

/// Energy (eV) at a Bragg angle (degrees) and a lattice spacing (angstrom).
inline double energyAt(double theta, double d)
{
    return 12.398424360387684 / (2 * d * std::sin(theta * 3.1415926535 / 180)) * 1000;
}

inline double muTOf(double i0, double i)
{
    return i != 0 && i0 / i > 0 ? std::log(i0 / i) : 0.0;
}

template <class Point>
double normalized(const Point& p, const Victreen& pre, const Victreen& post)
{
    const double below = victreenAt(pre.c, pre.a, pre.b, p.energy);
    const double above = victreenAt(post.c, post.a, post.b, p.energy);
    return (p.mut - below) / (above - below);
}

template <class Points>
double normalizedAt(const Points& points, const Victreen& pre, const Victreen& post, double energy)
{
    if (points.size() < 2)
        return 0.0;
    if (energy < points[0].energy || energy > points[points.size() - 1].energy)
        return 0.0;
    for (size_t i = 1; i < points.size(); i++) {
        const double e0 = points[i - 1].energy;
        const double e1 = points[i].energy;
        if (e0 <= energy && energy <= e1) {
            const double n0 = normalized(points[i - 1], pre, post);
            const double n1 = normalized(points[i], pre, post);
            return n0 + (energy - e0) * (n1 - n0) / (e1 - e0);
        }
    }
    return 0.0;
}

template <class Points>
std::optional<double> muTAt(const Points& points, double energy)
{
    double previousE = 0.0;
    double previousMut = 0.0;
    for (const auto& p : points) {
        if (p.energy >= energy)
            return previousMut +
                   (p.mut - previousMut) / (p.energy - previousE) * (energy - previousE);
        previousE = p.energy;
        previousMut = p.mut;
    }
    return std::nullopt;
}

// Point methods --------------------------------------------------------------------------------

/// An energy with the references, less the blank, and the target there.
struct Point {
    double e = 0.0;
    double r1 = 0.0;
    double r2 = 0.0;
    double t = 0.0;
};

struct Result {
    double a;
    double thickness;
};

inline Result threePoint(const Point& p0, const Point& p1, const Point& v)
{
    const double k = (v.r2 - p0.r2) / (p1.r2 - p0.r2);
    const double a = ((v.t - p0.t) / (p1.t - p0.t) - k) / ((v.r1 - p0.r1) / (p1.r1 - p0.r1) - k);
    return {a, (p1.t - p0.t) / (((p1.r1 - p0.r1) + (p1.r1 - p0.r2)) * 0.5)};
}

/// q, mu0 and k of the target's model.
struct Scale {
    double q, mu0, k;
};

/// From the first three points.
template <class Points>
Scale exactScale(const Points& p)
{
    const double E0 = p[0].e, E1 = p[1].e, E2 = p[2].e;
    const double S0 = p[0].r1 + p[0].r2, S1 = p[1].r1 + p[1].r2, S2 = p[2].r1 + p[2].r2;
    const double T0 = p[0].t, T1 = p[1].t, T2 = p[2].t;
    const double DS = S2 * (E1 - E0) + S1 * (E0 - E2) + S0 * (E2 - E1);
    const double DT = T2 * (E1 - E0) + T1 * (E0 - E2) + T0 * (E2 - E1);
    const double mu0 =
        -((E0 * T1 - T0 * E1) * S2 + (E1 * S0 - E0 * S1) * T2 + E2 * T0 * S1 - E2 * S0 * T1) / DS;
    const double k = ((T1 - T0) * S2 + (S0 - S1) * T2 + S1 * T0 - S0 * T1) / DS;
    return {DS / DT, mu0, k};
}

template <class Points>
Scale leastSquaresScale(const Points& points)
{
    double n = 0, sE = 0, sT = 0, sS = 0, sEE = 0, sET = 0, sTT = 0, sES = 0, sTS = 0;
    for (const auto& p : points) {
        const double S = p.r1 + p.r2;
        n += 1;
        sE += p.e;
        sT += p.t;
        sS += S;
        sEE += p.e * p.e;
        sET += p.e * p.t;
        sTT += p.t * p.t;
        sES += p.e * S;
        sTS += p.t * S;
    }
    const Numbers x = solve({{n, sE, sT}, {sE, sEE, sET}, {sT, sET, sTT}}, {sS, sES, sTS});
    return {x[2], -x[0] / x[2], -x[1] / x[2]};
}

inline Result fourPoint(const Scale& s, double rho, const Point& v)
{
    const double u = s.q / (rho + 1);
    const double a =
        (v.r2 * rho * u + rho * u * u * (s.mu0 + s.k * v.e - v.t)) / (v.r2 * rho * u - u * v.r1);
    return {a, 1 / (s.q * 0.5)};
}

// Pixels ---------------------------------------------------------------------------------------

inline double pixelMuT(double transmitted, double incident)
{
    if (incident == 0)
        return transmitted;
    if (transmitted == 0)
        return 1.0;
    return std::log(incident / transmitted);
}

// Thickness ratio ------------------------------------------------------------------------------

struct Ratios {
    double sbys, mean, lsA, lsB, lsANB, lsBNB, vic2;
};

template <class Rows>
Ratios thicknessRatios(const Rows& rows, double edgeJump1, double edgeJump2)
{
    bool anyMarked = false;
    for (const auto& row : rows)
        if (row.tRatio)
            anyMarked = true;
    double n = 0, sx = 0, sxx = 0, sy = 0, sxy = 0, syx = 0;
    double nx = 0, nxx = 0, ny = 0, nxy = 0;
    for (const auto& row : rows) {
        if (row.vPoint)
            continue;
        if (anyMarked ? !row.tRatio : !row.use)
            continue;
        double y = row.mut1;
        double x = row.mut2;
        if (!row.useVicRefs) {
            y -= row.mutBlank;
            x -= row.mutBlank;
        }
        n += 1;
        sx += x;
        sxx += x * x;
        sy += y;
        sxy += x * y;
        syx += y / x;
        nx += row.mut2;
        nxx += row.mut2 * row.mut2;
        ny += row.mut1;
        nxy += row.mut2 * row.mut1;
    }
    return {sy / sx,
            syx / n,
            (n * sxy - sy * sx) / (n * sxx - sx * sx),
            (sy * sxx - sxy * sx) / (n * sxx - sx * sx),
            (n * nxy - ny * nx) / (n * nxx - nx * nx),
            (nxx * ny - nxy * nx) / (n * nxx - nx * nx),
            edgeJump1 / edgeJump2};
}

// Linear combination fit -----------------------------------------------------------------------

/// A spectrum with its three-term lines.
template <class Points>
struct Spectrum {
    Points points;
    Victreen pre, post;
};

template <class Points>
struct Combination {
    double p1, p2, p3, a, rest, valence;
    Points curve;
};

/// @param ref1, ref2, target  have the members of a Spectrum
template <class Lined>
auto combine(const Lined& ref1, const Lined& ref2, const Lined& target, double eMin, double eMax,
             double valence1, double valence2)
{
    Numbers x1, x2, y, e, f0;
    for (const auto& p : target.points) {
        if (!(eMin <= p.energy && p.energy <= eMax))
            continue;
        x1.push_back(normalizedAt(ref1.points, ref1.pre, ref1.post, p.energy));
        x2.push_back(normalizedAt(ref2.points, ref2.pre, ref2.post, p.energy));
        y.push_back(normalized(p, target.pre, target.post));
        e.push_back(p.energy);
        f0.push_back(p.angle);
    }
    double S11 = 0, S12 = 0, S1 = 0, S22 = 0, S2 = 0, N = 0, S1y = 0, S2y = 0, Sy = 0;
    for (size_t k = 0; k < y.size(); k++) {
        S11 += x1[k] * x1[k];
        S12 += x1[k] * x2[k];
        S1 += x1[k];
        S22 += x2[k] * x2[k];
        S2 += x2[k];
        N += 1;
        S1y += x1[k] * y[k];
        S2y += x2[k] * y[k];
        Sy += y[k];
    }
    const Numbers p = solve({{S11, S12, S1}, {S12, S22, S2}, {S1, S2, N}}, {S1y, S2y, Sy});
    const double s = p[0] + p[1];
    Combination<std::decay_t<decltype(target.points)>> c{p[0],     p[1], p[2], p[0] / s,
                                                         p[1] / s, 0,    {}};
    c.valence = valence1 * p[0] / s + valence2 * p[1] / s;
    for (size_t k = 0; k < y.size(); k++)
        c.curve.push_back({f0[k], e[k], p[0] * x1[k] + p[1] * x2[k] + p[2]});
    return c;
}

} // namespace formulas

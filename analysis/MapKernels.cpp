#include "analysis/MapKernels.h"

#include "system/WideVectors.h"

#include <array>
#include <cstring>

namespace
{

/// The same number of four neighbouring pixels. Operations apply to each of them; a comparison
/// gives a mask that selects pixel by pixel. Handed on by reference only: how such numbers are
/// passed by value depends on the processor that a function is compiled for.
constexpr std::size_t lanes = 4;
using Lanes = double __attribute__((vector_size(lanes * sizeof(double))));

[[gnu::always_inline]] inline void load(const double* values, Lanes& to)
{
    std::memcpy(&to, values, sizeof to);
}

[[gnu::always_inline]] inline void store(const Lanes& from, double* values)
{
    std::memcpy(values, &from, sizeof from);
}

/// One of the three normal equations: coefficients, right-hand side, and the multiplier of its
/// elimination.
struct Equation {
    Lanes c0;
    Lanes c1;
    Lanes c2;
    Lanes b;
    Lanes multiplier;
};

template <class Mask>
[[gnu::always_inline]] inline Equation choose(const Mask& first, const Equation& x,
                                              const Equation& y)
{
    return {first ? x.c0 : y.c0, first ? x.c1 : y.c1, first ? x.c2 : y.c2, first ? x.b : y.b,
            first ? x.multiplier : y.multiplier};
}

/// A pivot of exactly zero counts as 1.
[[gnu::always_inline]] inline void divideByPivot(const Lanes& value, const Lanes& pivot,
                                                 Lanes& multiplier)
{
    const Lanes one = {1.0, 1.0, 1.0, 1.0};
    multiplier = value / (pivot == 0.0 ? one : pivot);
}

[[gnu::always_inline]] inline void eliminateFirst(const Equation& pivot, Equation& line)
{
    divideByPivot(line.c0, pivot.c0, line.multiplier);
    line.c1 -= pivot.c1 * line.multiplier;
    line.c2 -= pivot.c2 * line.multiplier;
}

/// Unknowns in the order of the columns.
struct Solution {
    Lanes x0;
    Lanes x1;
    Lanes x2;
};

/// Solves the normal equations as solveLinear() does, pivot rule included: a candidate's magnitude
/// is compared with the index of the best row so far.
[[gnu::always_inline]] inline Solution solve(const Equation& r0, const Equation& r1,
                                             const Equation& r2)
{
    const Lanes none = {};
    const Lanes one = {1.0, 1.0, 1.0, 1.0};
    const auto second = (r1.c0 > 0.0) | (r1.c0 < 0.0);
    const Lanes limit = second ? one : none;
    const auto third = (r2.c0 > limit) | (-r2.c0 > limit);
    const Equation p = choose(third, r2, choose(second, r1, r0));
    Equation x = choose(third, r1, choose(second, r0, r1));
    Equation y = choose(third, r0, r2);
    eliminateFirst(p, x);
    eliminateFirst(p, y);
    const auto swapped = (y.c1 > 1.0) | (y.c1 < -1.0);
    const Equation m = choose(swapped, y, x);
    Equation l = choose(swapped, x, y);
    Lanes multiplier;
    divideByPivot(l.c1, m.c1, multiplier);
    l.c2 -= m.c2 * multiplier;

    const Lanes yM = m.b - p.b * m.multiplier;
    const Lanes yL = l.b - p.b * l.multiplier - yM * multiplier;
    const Lanes x2 = yL / l.c2;
    const Lanes x1 = (yM - x2 * m.c2) / m.c1;
    const Lanes x0 = (p.b - x2 * p.c2 - x1 * p.c1) / p.c0;
    return {x0, x1, x2};
}

/// Sums over the normalization points that depend on the target, for each pixel of a block.
struct Sums {
    std::array<double, kernelBlock> t;
    std::array<double, kernelBlock> et;
    std::array<double, kernelBlock> tt;
    std::array<double, kernelBlock> ts;
};

/// Scale and background of the target, for each pixel of a block.
struct Scales {
    std::array<double, kernelBlock> q;
    std::array<double, kernelBlock> mu0;
    std::array<double, kernelBlock> k;
};

// The loops below hold nothing but operations on the numbers of one pixel, without branches: the
// compiler makes vector code of them.

struct ThreePointLoop {
    const ThreePoint& method;
    const BlockInputs& in;
    const BlockResults& out;

    [[gnu::always_inline]] void operator()() const
    {
        const double* __restrict const t0 = in.t[0];
        const double* __restrict const t1 = in.t[1];
        const double* __restrict const tV = in.tV;
        double* __restrict const a = out.a;
        double* __restrict const t = out.t;
        const ThreePoint local = method;
        for (std::size_t i = 0; i < out.count; ++i) {
            a[i] = local.fraction(t0[i], t1[i], tV[i]);
            t[i] = local.thickness(t0[i], t1[i]);
        }
    }
};

struct ExactLoop {
    const FourPointExact& method;
    const VPointFraction& fraction;
    const BlockInputs& in;
    const BlockResults& out;

    [[gnu::always_inline]] void operator()() const
    {
        const double* __restrict const t0 = in.t[0];
        const double* __restrict const t1 = in.t[1];
        const double* __restrict const t2 = in.t[2];
        const double* __restrict const tV = in.tV;
        double* __restrict const a = out.a;
        double* __restrict const t = out.t;
        const FourPointExact local = method;
        const VPointFraction localFraction = fraction;
        for (std::size_t i = 0; i < out.count; ++i) {
            const TargetScale scale = local.scale(t0[i], t1[i], t2[i]);
            a[i] = localFraction.at(scale, tV[i]);
            t[i] = scale.thickness();
        }
    }
};

struct LeastSquaresLoop {
    const FourPointLeastSquares& method;
    const VPointFraction& fraction;
    const BlockInputs& in;
    const BlockResults& out;

    [[gnu::always_inline]] void operator()() const
    {
        Sums sums;
        Scales scales;
        addUp(sums);
        solveAll(sums, scales);
        const double* __restrict const tV = in.tV;
        double* __restrict const a = out.a;
        double* __restrict const t = out.t;
        const VPointFraction local = fraction;
        for (std::size_t i = 0; i < out.count; ++i) {
            const TargetScale scale{scales.q[i], scales.mu0[i], scales.k[i]};
            a[i] = local.at(scale, tV[i]);
            t[i] = scale.thickness();
        }
    }

    [[gnu::always_inline]] void addUp(Sums& sums) const
    {
        sums.t.fill(0.0);
        sums.et.fill(0.0);
        sums.tt.fill(0.0);
        sums.ts.fill(0.0);
        for (std::size_t k = 0; k < method.size(); ++k) {
            const double* __restrict const target = in.t[k];
            const double energy = method.pointEnergy(k);
            const double reference = method.pointSum(k);
            for (std::size_t i = 0; i < out.count; ++i) {
                sums.t[i] += target[i];
                sums.et[i] += energy * target[i];
                sums.tt[i] += target[i] * target[i];
                sums.ts[i] += target[i] * reference;
            }
        }
    }

    /// The last group of pixels may be more than there are; their sums are zeros.
    [[gnu::always_inline]] void solveAll(const Sums& sums, Scales& scales) const
    {
        const NormalSums& f = method.sums();
        const Equation r0 = {
            {f.n, f.n, f.n, f.n}, {f.e, f.e, f.e, f.e}, {}, {f.s, f.s, f.s, f.s}, {}};
        const Equation r1 = {
            {f.e, f.e, f.e, f.e}, {f.ee, f.ee, f.ee, f.ee}, {}, {f.es, f.es, f.es, f.es}, {}};
        for (std::size_t i = 0; i < out.count; i += lanes) {
            Equation row0 = r0;
            Equation row1 = r1;
            Equation row2 = {};
            load(&sums.t[i], row0.c2);
            load(&sums.et[i], row1.c2);
            row2.c0 = row0.c2;
            row2.c1 = row1.c2;
            load(&sums.tt[i], row2.c2);
            load(&sums.ts[i], row2.b);
            const Solution x = solve(row0, row1, row2);
            store(x.x2, &scales.q[i]);
            store(-x.x0 / x.x2, &scales.mu0[i]);
            store(-x.x1 / x.x2, &scales.k[i]);
        }
    }
};

} // namespace

void threePointBlock(const ThreePoint& method, const BlockInputs& in, const BlockResults& out)
{
    callWide(ThreePointLoop{method, in, out});
}

void exactBlock(const FourPointExact& method, const VPointFraction& fraction, const BlockInputs& in,
                const BlockResults& out)
{
    callWide(ExactLoop{method, fraction, in, out});
}

void leastSquaresBlock(const FourPointLeastSquares& method, const VPointFraction& fraction,
                       const BlockInputs& in, const BlockResults& out)
{
    callWide(LeastSquaresLoop{method, fraction, in, out});
}

#pragma once

#include "analysis/LinearSolver.h"
#include "analysis/PointRow.h"

#include <cstddef>
#include <vector>

/// Four-point methods: at the normalization points, where both valence states absorb alike, the
/// target is a multiple c of the sum of the references on a straight background,
/// T = c S + mu0 + k E. With c, mu0 and k known, the fraction of Ref 1 follows at the V point.
///
/// As in ThreePoint, what does not depend on the target is formed once and the same objects serve
/// one target and each pixel of a map.

/// Background and scale of the target: q = 1 / c, mu0 (no unit) and k (1/eV).
struct TargetScale {
    double q;
    double mu0;
    double k;

    /// Thickness of the target against the mean thickness of the references, 2 c.
    double thickness() const { return 1.0 / (q * 0.5); }
};

/// The V point with the thickness ratio rho of Ref 1 to Ref 2.
struct VPointFraction {
    double energy = 0.0;
    double reference1 = 0.0;
    double reference2 = 0.0;
    double rho = 0.0;

    /// Fraction of Ref 1; tV is the target's mu-t at the V point. Infinite or not-a-number where
    /// rho R2 equals R1 or the scale is degenerate; 0 for rho = 0.
    double at(const TargetScale& scale, double tV) const
    {
        const double u = scale.q / (rho + 1.0);
        return (reference2 * rho * u + rho * u * u * (scale.mu0 + scale.k * energy - tV)) /
               (reference2 * rho * u - u * reference1);
    }
};

/// The V point of a table. Not-a-number where none is chosen.
VPointFraction vPointFraction(const PointRows& rows, const PointChoice& choice, double rho);

/// Exact form: c, mu0 and k from the first three normalization points.
class FourPointExact
{
public:
    /// With fewer than three normalization points all results are not-a-number.
    FourPointExact(const PointRows& rows, const PointChoice& choice);

    /// @param t0, t1, t2  the target's mu-t at the first three normalization points
    TargetScale scale(double t0, double t1, double t2) const
    {
        const double dT = t2 * (m_e1 - m_e0) + t1 * (m_e0 - m_e2) + t0 * (m_e2 - m_e1);
        const double q = m_dS / dT;
        const double mu0 = -((m_e0 * t1 - t0 * m_e1) * m_s2 + (m_e1 * m_s0 - m_e0 * m_s1) * t2 +
                             m_e2 * t0 * m_s1 - m_e2 * m_s0 * t1) /
                           m_dS;
        const double k = ((t1 - t0) * m_s2 + (m_s0 - m_s1) * t2 + m_s1 * t0 - m_s0 * t1) / m_dS;
        return {q, mu0, k};
    }

private:
    double m_e0, m_e1, m_e2; ///< energies, eV
    double m_s0, m_s1, m_s2; ///< sums of the references
    double m_dS;
};

/// Sums over the normalization points that do not depend on the target: energies E (eV) and sums of
/// the references S.
struct NormalSums {
    double n = 0.0;
    double e = 0.0;
    double ee = 0.0;
    double s = 0.0;
    double es = 0.0;
};

/// Least-squares form: the sum of the references is regressed on energy and target,
/// S = x0 + x1 E + x2 T, over all normalization points. Regressing S and not T is the definition;
/// noisy data give other numbers the other way round.
class FourPointLeastSquares
{
public:
    /// With fewer than three normalization points the system is singular.
    FourPointLeastSquares(const PointRows& rows, const PointChoice& choice);

    std::size_t size() const { return m_energy.size(); }
    double pointEnergy(std::size_t i) const { return m_energy[i]; }
    double pointSum(std::size_t i) const { return m_sum[i]; }
    const NormalSums& sums() const { return m_sums; }

    /// @param t  the target's mu-t at each normalization point [size()]
    TargetScale scale(const double* t) const
    {
        double sumT = 0.0;
        double sumET = 0.0;
        double sumTT = 0.0;
        double sumTS = 0.0;
        for (std::size_t i = 0; i < m_energy.size(); ++i) {
            sumT += t[i];
            sumET += m_energy[i] * t[i];
            sumTT += t[i] * t[i];
            sumTS += t[i] * m_sum[i];
        }
        const Vector<3> x = solveLinear<3>(
            {{{m_sums.n, m_sums.e, sumT}, {m_sums.e, m_sums.ee, sumET}, {sumT, sumET, sumTT}}},
            {m_sums.s, m_sums.es, sumTS});
        return {x[2], -x[0] / x[2], -x[1] / x[2]};
    }

private:
    std::vector<double> m_energy; ///< eV
    std::vector<double> m_sum;    ///< sums of the references
    NormalSums m_sums;
};

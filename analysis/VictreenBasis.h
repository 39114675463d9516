#pragma once

#include "analysis/LinearSolver.h"
#include "analysis/Spectrum.h"

/// Base functions of a three-term Victreen fit that are orthonormal over the fitted points. With
/// them the fit is a weighted sum of what was measured: the line at an energy E is the sum over the
/// fitted points j of (q(E) . q(Ej)) mu-t(j).
///
/// The functions are formed by Gram and Schmidt's process and not from the normal equations, whose
/// condition is the square of this one's.
class VictreenBasis
{
public:
    /// Of the fit through the points with an energy strictly below the limit (eV).
    static VictreenBasis below(const SpectrumPoints& points, double limit);
    /// Of that through the points strictly above.
    static VictreenBasis above(const SpectrumPoints& points, double limit);

    /// q at an energy in eV; not-a-number or infinities where too few distinct energies are
    /// selected.
    Vector<3> at(double energy) const;
    bool selects(double energy) const { return m_isAbove ? energy > m_limit : energy < m_limit; }

private:
    VictreenBasis(const SpectrumPoints& points, double limit, bool isAbove);

    double m_limit;
    bool m_isAbove;
    double m_mean3 = 0.0; ///< of lambda^3 over the points
    double m_mean4 = 0.0;
    double m_slope = 0.0; ///< of lambda^4 against lambda^3
    Vector<3> m_scale{};
};

#include "analysis/FourPoint.h"

#include "analysis/Constants.h"

namespace
{

double referenceSum(const PointRow& row)
{
    return row.reference1() + row.reference2();
}

} // namespace

VPointFraction vPointFraction(const PointRows& rows, const PointChoice& choice, double rho)
{
    if (!choice.hasVPoint())
        return {notANumber, notANumber, notANumber, rho};
    const PointRow& v = rows[choice.vPoint];
    return {v.energy, v.reference1(), v.reference2(), rho};
}

FourPointExact::FourPointExact(const PointRows& rows, const PointChoice& choice)
    : m_e0(notANumber), m_e1(notANumber), m_e2(notANumber), m_s0(notANumber), m_s1(notANumber),
      m_s2(notANumber), m_dS(notANumber)
{
    if (choice.normalization.size() < 3)
        return;
    const PointRow& p0 = rows[choice.normalization[0]];
    const PointRow& p1 = rows[choice.normalization[1]];
    const PointRow& p2 = rows[choice.normalization[2]];
    m_e0 = p0.energy;
    m_e1 = p1.energy;
    m_e2 = p2.energy;
    m_s0 = referenceSum(p0);
    m_s1 = referenceSum(p1);
    m_s2 = referenceSum(p2);
    m_dS = m_s2 * (m_e1 - m_e0) + m_s1 * (m_e0 - m_e2) + m_s0 * (m_e2 - m_e1);
}

FourPointLeastSquares::FourPointLeastSquares(const PointRows& rows, const PointChoice& choice)
{
    for (const std::size_t i : choice.normalization) {
        const double e = rows[i].energy;
        const double s = referenceSum(rows[i]);
        m_energy.push_back(e);
        m_sum.push_back(s);
        m_sums.n += 1.0;
        m_sums.e += e;
        m_sums.ee += e * e;
        m_sums.s += s;
        m_sums.es += e * s;
    }
}

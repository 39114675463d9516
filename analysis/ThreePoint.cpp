#include "analysis/ThreePoint.h"

#include "analysis/Constants.h"

ThreePoint::ThreePoint(const PointRows& rows, const PointChoice& choice)
    : m_reference2(notANumber), m_contrast(notANumber), m_step(notANumber)
{
    if (!choice.hasVPoint() || choice.normalization.size() < 2)
        return;
    const PointRow& p0 = rows[choice.normalization[0]];
    const PointRow& p1 = rows[choice.normalization[1]];
    const PointRow& v = rows[choice.vPoint];
    m_reference2 = (v.reference2() - p0.reference2()) / (p1.reference2() - p0.reference2());
    m_contrast =
        (v.reference1() - p0.reference1()) / (p1.reference1() - p0.reference1()) - m_reference2;
    m_step = ((p1.reference1() - p0.reference1()) + (p1.reference1() - p0.reference2())) * 0.5;
}

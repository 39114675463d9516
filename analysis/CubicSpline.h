#pragma once

#include "analysis/Spectrum.h"

#include <vector>

/// The natural cubic spline through the points of a spectrum (C. de Boor, A Practical Guide to
/// Splines, ch. 4): unlike straight lines it has no bias where a curve bends between two points.
class CubicSpline
{
public:
    /// Points whose energy does not rise are left out.
    explicit CubicSpline(const SpectrumPoints& points);

    /// Energies between which there is a curve, eV.
    double from() const { return m_x.empty() ? 0.0 : m_x.front(); }
    double to() const { return m_x.empty() ? 0.0 : m_x.back(); }
    bool isEmpty() const { return m_x.size() < 2; }

    /// At an energy within the curve, which must not be empty.
    double at(double energy) const;

private:
    void findBends();

    std::vector<double> m_x;
    std::vector<double> m_y;
    std::vector<double> m_bends; ///< second derivatives
};

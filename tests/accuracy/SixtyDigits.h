#pragma once

#include "analysis/PointRow.h"
#include "analysis/Spectrum.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <functional>
#include <vector>

/// The fits and the point methods once more with sixty decimal digits, from the same doubles: what
/// they would be without rounding. Written from the least-squares problems and from the picture
/// behind the methods, with a solver that pivots as textbooks do.
namespace exact
{

using Real = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<60>>;

/// c + a l^3 + b l^4.
struct Line {
    Real c = 0;
    Real a = 0;
    Real b = 0;

    Real at(double energy) const;
};

/// Least-squares lines through the same points.
struct LineFit {
    Line full;
    Line withoutConstant;
    Line norms;     ///< of the three base functions of the full line at the points
    Real condition; ///< of its normal equations with base functions of norm 1
    int points;     ///< that were selected

    /// Error of the three coefficients over the largest of them, each in the units of its norm.
    Real relativeError(double c, double a, double b) const;
};

LineFit fitLines(const SpectrumPoints& points, const std::function<bool(double energy)>& selected);

/// A spectrum with its lines.
struct Spectrum {
    SpectrumPoints points;
    double edge;
    LineFit pre;
    LineFit post;

    /// @param preEdgeEnd, postEdgeStart  eV, relative to the edge
    Spectrum(const SpectrumPoints& from, double edgeEnergy, double preEdgeEnd,
             double postEdgeStart);

    Real edgeJump() const { return post.full.at(edge) - pre.full.at(edge); }
    Real edgeJumpWithoutConstant() const
    {
        return post.withoutConstant.at(edge) - pre.withoutConstant.at(edge);
    }
    /// Linear between the two points of rising energy that enclose the energy.
    Real mutAt(double energy) const;
    Real normalizedPoint(std::size_t i) const;
    Real normalizedAt(double energy) const;

private:
    std::size_t rightNeighbour(double energy) const;
    Real between(double energy, const Real& left, const Real& right) const;
};

/// Fit of a target by two references and a constant.
struct Combination {
    Real p1;
    Real p2;
    Real p3;

    Real share1() const { return p1 / (p1 + p2); }
};

/// Over the target's points from min to max, eV.
Combination fitCombination(const Spectrum& ref1, const Spectrum& ref2, const Spectrum& target,
                           double min, double max);

/// Results of a point method.
struct PointResult {
    Real a;
    Real t; ///< t/ts; not set by three points
};

PointResult threePoints(const PointRows& rows, const PointChoice& choice);
PointResult fourPointsExact(const PointRows& rows, const PointChoice& choice, double rho);
PointResult fourPointsLeastSquares(const PointRows& rows, const PointChoice& choice, double rho);

/// The straight line y = slope x + intercept that comes nearest.
struct StraightLine {
    Real slope;
    Real intercept;
};

/// The thickness ratios of the rows in use, the V point left out.
struct Ratios {
    Real sumBySum;
    Real mean;
    StraightLine leastSquares;
    StraightLine leastSquaresNoBlank;
};

Ratios thicknessRatios(const PointRows& rows, const PointChoice& choice);

/// Correct decimal digits of a double: 16 where it is right to the last bit, 0 where not even the
/// magnitude is.
double correctDigits(double value, const Real& truth);

} // namespace exact

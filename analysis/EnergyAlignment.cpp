#include "analysis/EnergyAlignment.h"

#include "analysis/CubicSpline.h"
#include "analysis/LinearSolver.h"
#include "analysis/SpectrumNoise.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

/// The slope is taken over twice as much, eV: from point to point it would be mostly noise, which
/// would pass for a steep edge and a well-known shift.
constexpr double slopeReach = 1.0;

/// Unknowns of a step: offset, slope, scale, and scale times the change of the shift.
constexpr std::size_t unknowns = 4;

/// Solves symmetric positive equations; the columns are of very different size.
std::optional<Matrix<unknowns>> inverseOf(Matrix<unknowns> a)
{
    Vector<unknowns> scale{};
    for (std::size_t i = 0; i < unknowns; ++i)
        scale[i] = 1.0 / std::sqrt(a[i][i]);
    for (std::size_t i = 0; i < unknowns; ++i)
        for (std::size_t j = 0; j < unknowns; ++j)
            a[i][j] *= scale[i] * scale[j];
    Matrix<unknowns> inverse{};
    for (std::size_t i = 0; i < unknowns; ++i) {
        Vector<unknowns> unit{};
        unit[i] = 1.0;
        const Vector<unknowns> column = solveLinear<unknowns>(a, unit);
        for (std::size_t j = 0; j < unknowns; ++j) {
            inverse[j][i] = column[j] * scale[i] * scale[j];
            if (!std::isfinite(inverse[j][i]))
                return std::nullopt;
        }
    }
    return inverse;
}

/// The foils at one shift.
struct Comparison {
    double residual; ///< mean square
    double change;   ///< of the shift, to the least residual of the straightened problem
    double scale;
    double variance; ///< of the shift, for a residual of variance 1
};

class Foils
{
public:
    Foils(const FittedSpectrum& foil, const FittedSpectrum& reference)
        : m_spline(reference.points), m_edge(reference.edge)
    {
        for (const SpectrumPoint& point : foil.points)
            if (point.energy >= m_edge + foilFrom && point.energy <= m_edge + foilTo &&
                std::isfinite(point.mut))
                m_points.push_back(point);
    }

    std::optional<Comparison> at(double shift) const;

private:
    SpectrumPoints m_points;
    CubicSpline m_spline;
    double m_edge;
};

std::optional<Comparison> Foils::at(double shift) const
{
    Matrix<unknowns> normal{};
    Vector<unknowns> right{};
    double squares = 0.0;
    double n = 0.0;
    for (const SpectrumPoint& point : m_points) {
        const double energy = point.energy + shift;
        if (m_spline.isEmpty() || energy - slopeReach < m_spline.from() ||
            energy + slopeReach > m_spline.to())
            continue;
        const double slope = (m_spline.at(energy + slopeReach) - m_spline.at(energy - slopeReach)) /
                             (2.0 * slopeReach);
        const Vector<unknowns> x{1.0, (point.energy - m_edge) / foilTo, m_spline.at(energy), slope};
        for (std::size_t i = 0; i < unknowns; ++i) {
            for (std::size_t j = 0; j < unknowns; ++j)
                normal[i][j] += x[i] * x[j];
            right[i] += x[i] * point.mut;
        }
        squares += point.mut * point.mut;
        n += 1.0;
    }
    constexpr double enough = 10.0;
    if (n < enough)
        return std::nullopt;
    const auto inverse = inverseOf(normal);
    if (!inverse)
        return std::nullopt;
    Vector<unknowns> x{};
    double explained = 0.0;
    for (std::size_t i = 0; i < unknowns; ++i) {
        for (std::size_t j = 0; j < unknowns; ++j)
            x[i] += (*inverse)[i][j] * right[j];
        explained += x[i] * right[i];
    }
    return Comparison{std::max(squares - explained, 0.0) / (n - unknowns), x[3] / x[2], x[2],
                      (*inverse)[3][3] / (x[2] * x[2])};
}

/// The best of a few shifts, from which the steps lead to the least residual.
double roughShift(const Foils& foils)
{
    constexpr double step = 0.25;
    double best = 0.0;
    double least = std::numeric_limits<double>::infinity();
    for (double shift = -largestShift; shift <= largestShift; shift += step) {
        const auto found = foils.at(shift);
        if (found && found->scale > 0.0 && found->residual < least) {
            least = found->residual;
            best = shift;
        }
    }
    return best;
}

} // namespace

std::optional<FoundShift> foundShift(const FittedSpectrum& foil, const FittedSpectrum& reference)
{
    const auto noise = scatterNoise(foil.points, foil.preEdgeEnd);
    const auto referenceNoise = scatterNoise(reference.points, reference.preEdgeEnd);
    const Foils foils(foil, reference);
    double shift = roughShift(foils);
    constexpr int steps = 50;
    constexpr double closeEnough = 1e-9; // eV
    for (int i = 0; i < steps; ++i) {
        const auto found = foils.at(shift);
        if (!found || !(std::abs(shift + found->change) <= largestShift) || !(found->scale > 0.0))
            return std::nullopt;
        shift += found->change;
        if (std::abs(found->change) > closeEnough)
            continue;
        // The spline evens out some of the reference's noise, but not of what moves the shift.
        const double own = noise ? noise->sigma : 0.0;
        const double other = referenceNoise ? found->scale * referenceNoise->sigma : 0.0;
        const double variance = std::max(found->residual, own * own + other * other);
        return FoundShift{shift, std::sqrt(variance * found->variance)};
    }
    return std::nullopt;
}

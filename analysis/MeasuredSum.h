#pragma once

#include "analysis/FittedSpectrum.h"
#include "analysis/SpectrumNoise.h"
#include "analysis/VictreenBasis.h"

#include <array>
#include <cstddef>
#include <vector>

/// A number that is a weighted sum of the measured mu-t of one spectrum: two neighbours of an
/// energy by themselves, and the base functions of the fits, whose weights reach all points.
struct MeasuredSum {
    std::array<std::size_t, 2> point{}; ///< indices
    std::array<double, 2> weight{};
    Vector<6> fits{}; ///< of the pre-edge fit's base functions, then of the post-edge fit's
};

/// A point of a spectrum in the normalization and in both fits.
struct NormalizedBases {
    double height = 0.0;     ///< of the post-edge line above the pre-edge line there
    double normalized = 0.0; ///< its value
    Vector<3> pre{};         ///< base functions of the pre-edge fit
    Vector<3> post{};
};

/// The sums that a spectrum's numbers are: everything that is taken from a spectrum is linear in
/// its mu-t.
class MeasuredSums
{
public:
    /// @param spectrum  with its bounds; kept by reference
    explicit MeasuredSums(const FittedSpectrum& spectrum);

    /// mutLess(); a sum of nothing where no point lies at or above the energy.
    MeasuredSum mutLess(SubtractedLine line, double energy) const;
    /// FittedSpectrum::edgeJump().
    MeasuredSum edgeJump() const;

    /// Base functions of both fits at a point of the spectrum: 0 for a fit that leaves it out.
    Vector<6> basesAt(std::size_t point) const;
    /// Their product with the weights of a sum.
    double fitWeight(const Vector<6>& fits, std::size_t point) const;
    /// Base functions of one fit at an energy (eV); the other's are 0.
    Vector<6> preAt(double energy) const;
    Vector<6> postAt(double energy) const;

    NormalizedBases normalizedBases(std::size_t point) const
    {
        return m_kept.empty() ? formNormalizedBases(point) : m_kept[point];
    }
    /// Forms those of all points now, for a spectrum that is asked for them again and again.
    void keepNormalizedBases();

    /// Weight of each measured mu-t [points].
    std::vector<double> weights(const MeasuredSum& sum) const;

    /// Sum over the points of variance times the products of the base functions.
    Matrix<6> baseProducts(const SpectrumNoise& noise) const;

    const FittedSpectrum& spectrum() const { return m_spectrum; }

private:
    NormalizedBases formNormalizedBases(std::size_t point) const;

    const FittedSpectrum& m_spectrum;
    VictreenBasis m_pre;
    VictreenBasis m_post;
    std::vector<NormalizedBases> m_kept; ///< [points], or empty
};

double dot(const Vector<6>& a, const Vector<6>& b);

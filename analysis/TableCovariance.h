#pragma once

#include "analysis/MeasuredSum.h"
#include "analysis/PointTable.h"

#include <array>
#include <cstddef>
#include <limits>

/// A number for each entry that the point methods take from one spectrum: its mu-t in each row of
/// the point table, then its edge jump.
using EntryVector = std::array<double, pointTableRows + 1>;
constexpr std::size_t edgeJumpEntry = pointTableRows;

/// The same for the four spectra: derivatives of a result by all that it is formed of.
using EntryGradient = std::array<EntryVector, SpectrumSet::count>;

/// How the noise of one spectrum, and an uncertain zero of its energies, move its entries together.
struct TableCovariance {
    Matrix<pointTableRows + 1> noise{};                       ///< covariances
    double degrees = std::numeric_limits<double>::infinity(); ///< of freedom, of the noise
    EntryVector shift{}; ///< change of the entries for one standard deviation of the energies

    /// Covariance of two results by their derivatives.
    double ofNoise(const EntryVector& g, const EntryVector& h) const;
    double ofShift(const EntryVector& g, const EntryVector& h) const;
};

/// The sums that the entries are; of rows that nothing is calculated from, and of rows without an
/// energy, sums of nothing.
/// @param rows  at most pointTableRows
std::array<MeasuredSum, pointTableRows + 1> entrySums(const MeasuredSums& sums, SubtractedLine line,
                                                      const PointRows& rows);

/// How the entries change for one standard deviation of the spectrum's energies: half of what lies
/// between the spectrum shifted upward and downward.
/// @param rows   at most pointTableRows
/// @param sigma  eV
EntryVector entryShift(const FittedSpectrum& spectrum, SubtractedLine line, const PointRows& rows,
                       double sigma);

/// Of a spectrum whose bounds are set.
/// @param rows  at most pointTableRows
TableCovariance tableCovariance(const MeasuredSums& sums, SubtractedLine line,
                                const PointRows& rows, const SpectrumNoise& noise);

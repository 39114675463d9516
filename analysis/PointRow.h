#pragma once

#include <cstddef>
#include <vector>

/// One row of the point table, as read from the window: an energy near the edge with the mu-t of
/// the four spectra there (no unit; six-digit values, since they are read from the fields' texts).
struct PointRow {
    bool use = false;          ///< takes part in the point methods
    bool tRatio = false;       ///< takes part in the thickness ratio and marks the LCF range
    bool vPoint = false;       ///< the energy at which the two valence states differ
    bool useVicRefs = false;   ///< references already have a Victreen line subtracted
    bool useVicTarget = false; ///< target already has a Victreen line subtracted
    double energy = 0.0;       ///< eV
    double mut1 = 0.0;         ///< Ref 1
    double mut2 = 0.0;         ///< Ref 2
    double mutTarget = 0.0;
    double mutBlank = 0.0;

    /// The references always lose the blank here.
    double reference1() const { return mut1 - mutBlank; }
    double reference2() const { return mut2 - mutBlank; }
    /// The target keeps it where a Victreen line was subtracted.
    double target() const { return useVicTarget ? mutTarget : mutTarget - mutBlank; }
};

using PointRows = std::vector<PointRow>;

/// The rows that a calculation uses: indices into the table.
struct PointChoice {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::size_t vPoint = none;              ///< the last used row marked as V point
    std::vector<std::size_t> normalization; ///< the other used rows, in the table's order
    int count = 0;                          ///< number of used rows, V point included

    bool hasVPoint() const { return vPoint != none; }
};

/// Walks the table from its first to its last row. Of several rows marked as V point the last one
/// counts; the others drop out of the normalization points all the same.
PointChoice choosePoints(const PointRows& rows);

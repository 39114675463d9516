#pragma once

#include "analysis/PointRow.h"
#include "examples/MapSample.h"
#include "examples/MixedSample.h"

/// The references at the energies of a map's sample, the third of which is the V point.
inline PointRows mapTable(const MixedSample& sample = {})
{
    PointRows rows;
    for (const double energy : mapEnergies()) {
        PointRow row;
        row.use = true;
        row.vPoint = rows.size() == 2;
        row.energy = energy;
        row.mut1 = muT(sample, Measurement::Ref1, energy);
        row.mut2 = muT(sample, Measurement::Ref2, energy);
        row.mutBlank = muT(sample, Measurement::Blank, energy);
        rows.push_back(row);
    }
    return rows;
}

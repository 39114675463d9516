#pragma once

#include "analysis/PointRow.h"

/// A used row of the point table, without a blank and a Victreen line.
inline PointRow row(double energy, double mut1, double mut2, double target = 0.0)
{
    PointRow made;
    made.use = true;
    made.energy = energy;
    made.mut1 = mut1;
    made.mut2 = mut2;
    made.mutTarget = target;
    return made;
}

/// One that is marked as V point.
inline PointRow vRow(double energy, double mut1, double mut2, double target = 0.0)
{
    PointRow made = row(energy, mut1, mut2, target);
    made.vPoint = true;
    return made;
}

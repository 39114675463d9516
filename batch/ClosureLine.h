#pragma once

#include "analysis/SystematicErrors.h"

#include <QString>

#include <vector>

/// What the closure test of a job says, in one line of plain English, with what it means at the
/// median of the fractions that were measured; begins with "warning: " where an end is farther off
/// than a physicist would accept.
/// @param fractions  of the targets; may be none
/// @return empty where a reference could not be calculated
QString closureLine(const Closure& closure, std::vector<double> fractions,
                    const ReferenceValences& valences);

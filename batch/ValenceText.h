#pragma once

#include "batch/OutputWords.h"

#include <optional>

/// A valence and how sure it is, as results.csv has it.
struct ValenceErrors {
    using Number = std::optional<double>;

    double valence = 0.0;
    Number own;    ///< standard deviation by the noise of the target
    Number common; ///< by that of references and blank
    Number shift;  ///< change where the target's energies are 0.1 eV higher
};

/// "2.660 ± 0.001 (counting) ± 0.001 (references), +0.024 for +0.1 eV", without what is not known.
/// The valence has the decimals of the first digit of both deviations together; a deviation that
/// these would show as 0 has a digit of its own, a change two. Without a deviation the valence has
/// six digits.
QString valenceText(const ValenceErrors& errors, const OutputWords& words);

/// A change with its sign and two digits.
QString changeText(double change);

/// A number with the decimals that tell two digits of a width: the ends of an interval.
QString endText(double end, double width);

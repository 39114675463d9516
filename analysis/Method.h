#pragma once

#include "analysis/PointTable.h"

#include <optional>
#include <variant>

/// The calculation that a run uses.
enum class Method {
    ThreePoint,
    FourPointExact,
    FourPointLeastSquares,
};

/// Why a calculation is refused.
enum class Refusal {
    NoVPoint,
    Ref1NotValid,
    Ref2NotValid,
    TargetNotValid,
    RowCount,
    NoFitRange,   ///< of the linear combination fit
    MapTooLarge,  ///< its results do not fit in memory, or hardly any pixel was measured
    TooManyBoxes, ///< a histogram's number of bins is refused, or its bins do not fit in memory
};

struct RunRefusal {
    Refusal reason = Refusal::NoVPoint;
    int rowsInUse = 0;
};

/// Either a method or the first reason against a run.
using RunDecision = std::variant<Method, RunRefusal>;

/// Chooses by the number of rows in use (V point included) and the type buttons.
/// @return nothing for fewer than three rows, or more than four without the least-squares type
std::optional<Method> chooseMethod(int rowsInUse, bool exactChosen, bool leastSquaresChosen);

/// Checks the inputs of a run in a fixed order: V point, Ref 1, Ref 2, target, number of rows.
RunDecision decideTargetRun(const PointChoice& choice, const SpectrumSet& spectra,
                            const Conditions& conditions);

/// The same for a map, which needs no target. Only rows with 2D data may be in the choice.
RunDecision decideMapRun(const PointChoice& choice, const SpectrumSet& spectra,
                         const Conditions& conditions);

#pragma once

#include "analysis/PointRow.h"

#include <optional>

/// The calculation that a run uses.
enum class Method {
    ThreePoint,
    FourPointExact,
    FourPointLeastSquares,
};

/// Why a run is refused. Words are the panel's.
enum class Refusal {
    NoVPoint,
    Ref1NotValid,
    Ref2NotValid,
    TargetNotValid,
    RowCount,
};

/// What is there to calculate with.
struct RunInputs {
    bool ref1Valid = false;
    bool ref2Valid = false;
    bool targetValid = false; ///< of no account for a map
    bool exactChosen = false;
    bool leastSquaresChosen = false;
};

/// Either a method or the first reason against a run.
struct RunDecision {
    std::optional<Method> method;
    Refusal refusal = Refusal::NoVPoint; ///< meaningful without a method only
};

/// Chooses by the number of rows in use (V point included) and the type buttons.
/// @return nothing for fewer than three rows, or more than four without the least-squares type
std::optional<Method> chooseMethod(int rowsInUse, bool exactChosen, bool leastSquaresChosen);

/// Checks the inputs of a run in a fixed order: V point, Ref 1, Ref 2, target, number of rows.
RunDecision decideTargetRun(const PointChoice& choice, const RunInputs& inputs);

/// The same for a map, which needs no target. Only rows with 2D data may be in the choice.
RunDecision decideMapRun(const PointChoice& choice, const RunInputs& inputs);

#pragma once

#include <optional>

/// The calculation that a run uses.
enum class Method {
    ThreePoint,
    FourPointExact,
    FourPointLeastSquares,
};

/// Chooses by the number of rows in use (V point included) and the type buttons.
/// @return nothing for fewer than three rows, or more than four without the least-squares type
inline std::optional<Method> chooseMethod(int rowsInUse, bool exactChosen, bool leastSquaresChosen)
{
    if (rowsInUse == 3)
        return Method::ThreePoint;
    if (rowsInUse == 4)
        return exactChosen ? Method::FourPointExact : Method::FourPointLeastSquares;
    if (rowsInUse > 4 && leastSquaresChosen)
        return Method::FourPointLeastSquares;
    return std::nullopt;
}

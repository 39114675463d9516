#include "analysis/Method.h"

std::optional<Method> chooseMethod(int rowsInUse, bool exactChosen, bool leastSquaresChosen)
{
    if (rowsInUse == 3)
        return Method::ThreePoint;
    if (rowsInUse == 4)
        return exactChosen ? Method::FourPointExact : Method::FourPointLeastSquares;
    if (rowsInUse > 4 && leastSquaresChosen)
        return Method::FourPointLeastSquares;
    return std::nullopt;
}

RunDecision decideTargetRun(const PointChoice& choice, const RunInputs& inputs)
{
    if (!choice.hasVPoint())
        return {std::nullopt, Refusal::NoVPoint};
    if (!inputs.ref1Valid)
        return {std::nullopt, Refusal::Ref1NotValid};
    if (!inputs.ref2Valid)
        return {std::nullopt, Refusal::Ref2NotValid};
    if (!inputs.targetValid)
        return {std::nullopt, Refusal::TargetNotValid};
    return {chooseMethod(choice.count, inputs.exactChosen, inputs.leastSquaresChosen),
            Refusal::RowCount};
}

RunDecision decideMapRun(const PointChoice& choice, const RunInputs& inputs)
{
    RunInputs withoutTarget = inputs;
    withoutTarget.targetValid = true;
    return decideTargetRun(choice, withoutTarget);
}

#include "analysis/Method.h"

namespace
{

RunDecision decideRun(const PointChoice& choice, const SpectrumSet& spectra, bool targetNeeded,
                      const Conditions& conditions)
{
    const auto refused = [&](Refusal reason) { return RunRefusal{reason, choice.count}; };
    if (!choice.hasVPoint())
        return refused(Refusal::NoVPoint);
    if (!spectra.isValid(SpectrumSet::Ref1))
        return refused(Refusal::Ref1NotValid);
    if (!spectra.isValid(SpectrumSet::Ref2))
        return refused(Refusal::Ref2NotValid);
    if (targetNeeded && !spectra.isValid(SpectrumSet::Target))
        return refused(Refusal::TargetNotValid);
    if (const auto method = chooseMethod(choice.count, conditions.exact, conditions.leastSquares))
        return *method;
    return refused(Refusal::RowCount);
}

} // namespace

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

RunDecision decideTargetRun(const PointChoice& choice, const SpectrumSet& spectra,
                            const Conditions& conditions)
{
    return decideRun(choice, spectra, true, conditions);
}

RunDecision decideMapRun(const PointChoice& choice, const SpectrumSet& spectra,
                         const Conditions& conditions)
{
    return decideRun(choice, spectra, false, conditions);
}

#include "analysis/TargetResult.h"

#include "analysis/Constants.h"
#include "analysis/FourPoint.h"
#include "analysis/ThreePoint.h"

#include <vector>

namespace
{

/// The target's mu-t at the first `count` normalization points; missing points are not-a-number.
std::vector<double> targetAt(const PointRows& table, const PointChoice& choice, std::size_t count)
{
    std::vector<double> result(count, notANumber);
    for (std::size_t i = 0; i < count && i < choice.normalization.size(); ++i)
        result[i] = table[choice.normalization[i]].target();
    return result;
}

TargetScale targetScale(const PointRows& table, const PointChoice& choice, Method method)
{
    if (method == Method::FourPointExact) {
        const std::vector<double> t = targetAt(table, choice, 3);
        return FourPointExact(table, choice).scale(t[0], t[1], t[2]);
    }
    const std::vector<double> t = targetAt(table, choice, choice.normalization.size());
    return FourPointLeastSquares(table, choice).scale(t.data());
}

} // namespace

ThicknessRatios thicknessRatios(const AnalysisInput& input)
{
    return thicknessRatios(input.table, input.spectra.edgeJump(SpectrumSet::Ref1),
                           input.spectra.edgeJump(SpectrumSet::Ref2));
}

std::variant<TargetResult, RunRefusal> targetResult(const AnalysisInput& input)
{
    const PointRows& table = input.table;
    const PointChoice choice = choosePoints(table);
    const RunDecision decision = decideTargetRun(choice, input.spectra, input.conditions);
    if (const auto* refusal = std::get_if<RunRefusal>(&decision))
        return *refusal;
    TargetResult result;
    result.method = std::get<Method>(decision);
    const double targetV = table[choice.vPoint].target();
    if (result.method == Method::ThreePoint) {
        const std::vector<double> t = targetAt(table, choice, 2);
        result.a = ThreePoint(table, choice).fraction(t[0], t[1], targetV);
        result.thickness = notANumber;
    } else {
        result.ratios = thicknessRatios(input);
        const double rho = result.ratios->selected(input.conditions.thickness);
        const TargetScale scale = targetScale(table, choice, result.method);
        result.a = vPointFraction(table, choice, rho).at(scale, targetV);
        result.thickness = scale.thickness();
    }
    result.valence = input.valences.mean(result.a);
    return result;
}

#include "app/FourPs.h"

#include "input/AEPoint.h"

void FourPs::calcMap()
{
    PointRows counted = rows();
    for (int i = 0; i < ePoints.size(); ++i)
        counted[static_cast<std::size_t>(i)].use &= ePoints[i]->mapData().valid;
    const PointChoice choice = choosePoints(counted);
    const RunDecision decision = decideMapRun(choice, runInputs());
    if (!decision.method)
        return refuseRun(decision.refusal, choice.count, tr("V Point is not selected"));
}

void FourPs::calcAndWrite()
{
    calcMap();
    write();
}

void FourPs::write() {}

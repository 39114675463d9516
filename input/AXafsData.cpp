#include "input/AXafsData.h"

void AXafsData::fitVictreens()
{
    if (points.empty())
        return;
    const VictreenFit pre = fitVictreenBelow(points, preEdgeEnd);
    const VictreenFit post = fitVictreenAbove(points, postEdgeStart);
    preVicNoC = pre.noC;
    preVic = pre.full;
    postVicNoC = post.noC;
    postVic = post.full;
}

#include "analysis/PointRow.h"

PointChoice choosePoints(const PointRows& rows)
{
    PointChoice choice;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!rows[i].use)
            continue;
        ++choice.count;
        if (rows[i].vPoint)
            choice.vPoint = i;
        else
            choice.normalization.push_back(i);
    }
    return choice;
}

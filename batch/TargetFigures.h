#pragma once

#include "batch/JobData.h"
#include "batch/UnseenErrors.h"

#include <QByteArrayList>
#include <QStringList>

#include <optional>

/// How sure the results of a target are: the columns of results.csv between the results and the
/// refusal.
struct TargetFigures {
    std::optional<TargetUncertainty> point;
    bool hasThickness = false; ///< of the point method's result
    std::optional<LcfUncertainty> fit;
    ReferenceValences valences;
    std::optional<double> noise; ///< of the target's mu-t before the edge
    std::optional<double> gain;
    Closure closure;
    UnseenErrors unseen;
    std::optional<EnergyShift> shift; ///< of the target's energies, where the job aligns them
    QStringList doubts;
};

/// @param data    with the target
/// @param result  null where the method was refused
/// @param fit     null where it was
/// @return nothing but closure and what counting does not see where the job wants no noise
TargetFigures targetFigures(const JobData& data, const TargetResult* result,
                            const LinearCombination* fit);

QByteArrayList figureColumns();
QByteArrayList figureFields(const TargetFigures& figures);

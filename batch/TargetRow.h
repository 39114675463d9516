#pragma once

#include "analysis/LinearCombinationFit.h"
#include "batch/JobChecks.h"
#include "batch/JobData.h"

#include <QByteArrayList>
#include <QStringList>

#include <optional>

/// What the analysis of one target found: a row of results.csv.
struct TargetRow {
    QString target; ///< path against the job's folder
    std::optional<TargetResult> result;
    std::optional<double> edgeJump;    ///< of the target, between the three-term lines
    std::optional<double> edgeJumpNoC; ///< between the two-term lines
    std::optional<LinearCombination> fit;
    std::optional<double> fitValence;
    QString refusal;      ///< the first thing that could not be done, and why
    QStringList warnings; ///< what a physicist would doubt

    /// Nothing was refused, and all that was found are finite numbers.
    bool isGood() const;
};

/// Analyses one target against the references and the blank of a job. A target that cannot be read
/// gives a row with the reason.
/// @param common  of the job without a target; its references and its blank are shared
TargetRow analyseTarget(const Job& job, const JobData& common, const JobFilePath& target);

/// The names of the columns, and the fields of a row.
QByteArrayList targetColumns();
QByteArrayList targetFields(const TargetRow& row);

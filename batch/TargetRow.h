#pragma once

#include "analysis/LinearCombinationFit.h"
#include "batch/JobChecks.h"
#include "batch/JobData.h"
#include "batch/TargetFigures.h"

#include <QByteArrayList>
#include <QStringList>

#include <optional>

/// What the analysis of one target found: a row of results.csv.
struct TargetRow {
    QString target;     ///< its name
    bool isRead = true; ///< there was a spectrum to analyse
    std::optional<TargetResult> result;
    std::optional<double> edgeJump;    ///< of the target, between the three-term lines
    std::optional<double> edgeJumpNoC; ///< between the two-term lines
    std::optional<LinearCombination> fit;
    std::optional<double> fitValence;
    TargetFigures figures;
    QString refusal;      ///< the first thing that could not be done, and why
    QStringList warnings; ///< what a physicist would doubt
    QStringList pictures; ///< files that were written
    QString notWritten;   ///< a picture that could not be

    /// Nothing was refused, and all that was found are finite numbers.
    bool isGood() const;
};

/// Of what a job makes to be read: "en" or "ja".
QString languageName(const Job& job);

/// A row with nothing but a reason.
TargetRow refusedTarget(const QString& name, const QString& reason);

/// Analyses one target against the references and the blank of a job. One that is no spectrum gives
/// a row with the reason. Its graphs are painted if the job wants pictures.
/// @param common  of the job without a target; its references and its blank are shared
TargetRow analyseTarget(const Job& job, const JobData& common, const OpenTarget& target);

/// The names of the columns, and the fields of a row.
QByteArrayList targetColumns();
QByteArrayList targetFields(const TargetRow& row);

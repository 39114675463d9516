#pragma once

#include "analysis/Method.h"
#include "analysis/PointTable.h"

#include <optional>
#include <variant>

/// Valences of the two references.
struct ReferenceValences {
    double ref1 = 2.0;
    double ref2 = 3.0;

    /// Mean valence of a sample from the fraction a of Ref 1.
    double mean(double a) const { return ref1 * a + ref2 * (1.0 - a); }
};

/// What a calculation starts from: the point table and the spectra that it belongs to.
struct AnalysisInput {
    PointRows table;
    SpectrumSet spectra;
    Conditions conditions;
    ReferenceValences valences;
};

/// What a point method finds.
struct TargetResult {
    Method method = Method::ThreePoint;
    double a = 0.0; ///< fraction of Ref 1
    double valence = 0.0;
    double thickness = 0.0; ///< t/ts; not-a-number for three points, which do not give it
    std::optional<ThicknessRatios> ratios; ///< formed by the four-point methods
};

/// The thickness ratios of the references, all seven figures.
ThicknessRatios thicknessRatios(const AnalysisInput& input);

/// Fraction, valence and thickness ratio of the target by the method that the number of rows in use
/// and the conditions choose; or the first reason against it.
std::variant<TargetResult, RunRefusal> targetResult(const AnalysisInput& input);

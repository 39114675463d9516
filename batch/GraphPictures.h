#pragma once

#include "analysis/LcfPoint.h"
#include "analysis/LinearCombinationFit.h"
#include "analysis/Settings.h"
#include "batch/OutputWords.h"
#include "batch/PictureFile.h"
#include "display/SpectrumPreview.h"

#include <QStringList>

/// Whose words of the window a picture of a spectrum has.
constexpr const char* spectrumWords = "AXafsFileSelect";

/// What the preview of a spectrum writes of its edge jumps, in the words of the window.
PreviewCaptions previewCaptions(const OutputWords& words);

/// The graphs of the window as pictures, painted by the window's painters. All need a
/// QGuiApplication (see batch/PictureApplication.h) and may be called from any thread; a folder is
/// made if need be, a picture written beside its place and renamed. An empty graph has no picture.
struct GraphPictureOptions {
    QString folder;                          ///< of the output; the pictures go to "pictures" in it
    QString language = QStringLiteral("en"); ///< or "ja"
};

/// "Ref1", "Ref2" and the blank, once a run: "pictures/Ref 1.png", "pictures/Ref 2.png" and
/// "pictures/Blank sample.png". No folder of a target has a name with a blank.
PictureFiles drawReferenceGraphs(const AnalysisInput& input, const GraphPictureOptions& options);

/// "Target", "Muts" and "M2/M3" of a target: pictures/<picturePath(target)>/Target.png, Muts.png
/// and M2M3.png.
/// @param fit  of the target, for its curve in "Muts"; null where there is none
PictureFiles drawTargetGraphs(const QString& target, const Settings& settings,
                              const AnalysisInput& input, const LinearCombination* fit,
                              const GraphPictureOptions& options);

/// "LCF vs 4PS" of all targets that have both, in the job's order: "pictures/LCF vs 4PS.png".
PictureFiles drawComparisonGraph(const std::vector<LCFvs4PSPoint>& points,
                                 const ReferenceValences& valences,
                                 const GraphPictureOptions& options);

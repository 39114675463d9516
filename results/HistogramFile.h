#pragma once

#include <QString>

class HistogramCounts;

/// What stands in the names of the histogram files beside a result file.
constexpr const char* valenceHistogramTag = "HGAlpha";
constexpr const char* thicknessHistogramTag = "HGThick";

/// Writes lower edge, centre, upper edge and count of each bin, preceded by the values below and
/// followed by those above. An existing file is replaced when the new one is whole.
bool writeHistogram(const HistogramCounts& histogram, const QString& path);

/// Writes the same into histogramFile().
/// @return whether the file is there, could be opened and was written
bool writeHistogramFile(const HistogramCounts& histogram, const QString& resultPath,
                        const QString& tag);

/// A histogram's file in canonical form: for "dir/res.dat" and the tag "HGAlpha" it is
/// "dir/res_HGAlpha.dat". Empty where there is none yet: a histogram is written only where the file
/// exists already. Something else of that name, as a pipe, is not one.
QString histogramFile(const QString& resultPath, const QString& tag);

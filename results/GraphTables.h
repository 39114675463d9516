#pragma once

#include "analysis/LcfPoint.h"
#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "results/GraphTable.h"
#include "results/MutsGraph.h"

#include <QStringList>

class HistogramCounts;

/// What each graph shows, as a table. The titles of columns are those of the axes, behind the name
/// of the curve and that of its file: "Ref 1 | ni2.dat | mut". Numbers are those that are drawn, of
/// the whole curve, whatever part of it is in view.

/// A preview: the spectrum with both lines, the energies that are marked, the edge jumps.
/// @param data  may be null
GraphTable previewTable(const FittedSpectrum* data, const QString& name, const QString& file);

/// Names of the files of a graph of all spectra, parallel to its curves.
struct MutsFiles {
    QStringList selected;
    QStringList displayOnly;
};

/// "Muts": each curve as it is normalized, and the energies that are marked.
GraphTable mutsTable(const MutsContent& content, const MutsFiles& files);

/// "LCF vs 4PS".
/// @param targets  file of each fit's target
GraphTable lcfTable(const std::vector<LCFvs4PSPoint>& points, const QStringList& targets);

/// Either histogram: edges, centre and count of each bin, between the counts of the values below
/// and of those above.
/// @param quantity  title of the axis
GraphTable histogramTable(const HistogramCounts& histogram, const QString& quantity,
                          const QStringList& files);

/// "t/a": position, valence and thickness ratio of each pixel.
GraphTable thicknessTable(const MapResults& map, const ReferenceValences& valences,
                          const QStringList& files);

/// "M2/M3": the energy points, the target and the places of the pure references.
/// @param ref1, ref2  the references' files
GraphTable fourPointTable(const PointRows& rows, double rho, const QString& ref1,
                          const QString& ref2);

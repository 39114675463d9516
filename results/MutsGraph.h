#pragma once

#include "analysis/PointRow.h"
#include "display/GraphFrame.h"

#include <QPoint>
#include <QPointF>

struct FittedSpectrum;
class QPainter;

/// How a spectrum is brought to the scale from 0, below the edge, to 1, above it.
enum class Normalization {
    ByTwoLines, ///< (mu-t - pre) / (post - pre), both Victreen lines at each point's energy
    ByEdgeJump, ///< (mu-t - pre) / edge jump
};

/// What "Muts" shows.
struct MutsContent {
    double edge = 0.0;            ///< eV
    double preEndOffset = 0.0;    ///< end of the pre-edge fit, eV from the edge
    double postStartOffset = 0.0; ///< start of the post-edge fit, eV from the edge
    Normalization normalization = Normalization::ByTwoLines;
    PointRows rows; ///< the energy points
    /// Ref 1, Ref 2, target and blank, in this order; null where there is no spectrum. A blank
    /// without an edge is not drawn.
    std::vector<const FittedSpectrum*> selected;
    std::vector<const FittedSpectrum*> displayOnly;
    int chosen = -1; ///< of displayOnly, drawn wider
    const FittedSpectrum* fit =
        nullptr; ///< curve of the linear combination fit, normalized already

    AxisEnds energies() const { return {edge + preEndOffset, edge + postStartOffset}; }
    bool isEmpty() const;
};

/// The normalized points of a spectrum (eV, no unit) in file order.
std::vector<QPointF> normalizedCurve(const FittedSpectrum& data, Normalization normalization);

/// True for a normalized curve that looks like an edge in the energies shown: within half a jump of
/// 0 well below the edge, between -1 and 3 from there on. A blank mostly has none; divided by the
/// noise of its own jump it lies anywhere.
bool hasEdge(const std::vector<QPointF>& curve, const MutsContent& content);

/// Vertical range of curves between two energies: lowest and highest value there, each widened by a
/// twentieth of their difference. From -0.05 to 1.05 where nothing lies there, and half a unit to
/// either side of a value that is the only one.
AxisEnds curveRange(const std::vector<std::vector<QPointF>>& curves, const AxisEnds& energies);

/// All curves of "Muts", normalized. A curve that is not drawn is empty and keeps the others'
/// places.
struct MutsCurves {
    std::vector<std::vector<QPointF>> selected;    ///< [content.selected.size()]
    std::vector<std::vector<QPointF>> displayOnly; ///< [content.displayOnly.size()]
    std::vector<QPointF> fit;

    explicit MutsCurves(const MutsContent& content);

    /// Those that the vertical range shows: that of what is analysed, which a blank only lies
    /// under.
    std::vector<std::vector<QPointF>> ranged() const;
};

/// "Muts": all spectra, normalized, around the edge, with the energies that the user can drag.
void drawMutsGraph(QPainter& painter, GraphFrame& frame, const MutsContent& content);

#pragma once

#include "display/GraphFrame.h"

struct FittedSpectrum;
class QPainter;

/// Texts of a preview, translated by the owner; without them no jumps are shown.
struct PreviewCaptions {
    QString edgeJumpNoC; ///< with %1 for the jump between the two-term lines
    QString edgeJump;    ///< with %1 for the jump between the three-term lines
};

/// A spectrum: its points joined in file order, the ends of the fit ranges, the
/// edge, both Victreen lines and the edge jumps.
/// @param data  null, or without points, for an empty graph
void drawSpectrumPreview(QPainter& painter, GraphFrame& frame, const FittedSpectrum* data,
                         const PreviewCaptions& captions);

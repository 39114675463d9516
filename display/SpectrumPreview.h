#pragma once

#include <QString>

struct FittedSpectrum;
class DispABase;
class QPainter;

/// Texts of a preview, translated by the owner.
struct PreviewCaptions {
    QString xTitle;
    QString yTitle;
    QString edgeJumpNoC; ///< with %1 for the jump between the two-term lines
    QString edgeJump;    ///< with %1 for the jump between the three-term lines
};

/// Draws a spectrum in a panel: its points joined in file order, the ends of the fit ranges, the
/// edge, both Victreen lines and the edge jumps.
/// @param data  null, or without points, for an empty panel
void drawSpectrumPreview(DispABase* panel, QPainter* painter, const FittedSpectrum* data,
                         const PreviewCaptions& captions);

#pragma once

#include <QObject>
#include <QSize>

/// Where the texts along the axes stand, in whole pixels. Heights are negative where y grows
/// upward.
struct LabelSlot {
    int pitch;  ///< height of a line of text with the gap to the next
    int height; ///< of the text's box in it
    int margin; ///< width of the margin at the side of wx0
};

/// Maps data values to pixels of a canvas and back.
///
/// The window is the whole canvas, the plot area what the margins leave of it, the range the data
/// values at the ends of the plot area. The canvas gives its bottom as wy0 and its top as wy1, so y
/// grows upward and heights in pixels are negative. A range without width makes the conversions
/// infinite or not-a-number; nothing guards against it.
class ChCoord : public QObject
{
    Q_OBJECT

public:
    explicit ChCoord(QObject* parent = nullptr);

    double wx0 = 0.0; ///< window, pixels
    double wx1 = 1.0;
    double wy0 = 0.0;
    double wy1 = 1.0;
    double px0 = 0.0; ///< plot area, pixels
    double px1 = 1.0;
    double py0 = 0.0;
    double py1 = 1.0;
    double rx0 = 0.0; ///< data range
    double rx1 = 1.0;
    double ry0 = 0.0;
    double ry1 = 1.0;
    double windowEdgeRatio = 0.1; ///< part of the window that counts as near its edge
    double plotEdgeRatio = 0.1;   ///< the same of the plot area
    double leftMargin = 0.1;      ///< part of the window left free on the side of wx0
    double rightMargin = 0.05;
    double topMargin = 0.05;
    double bottomMargin = 0.1;
    int labelDivisions = 10; ///< a range label is this part of the plot's height
    int spare = 20;
    double labelHeightRatio = 0.85; ///< height of a label's text in its slot
    int valid = 1;                  ///< 0 where a drawing routine found nothing to draw

    /// The window; the plot area becomes the whole of it.
    void setWindow(double x0, double y0, double x1, double y1);
    void setPlotArea(double x0, double y0, double x1, double y1);
    /// The plot area from the window and the margins, on whole pixels.
    void applyMargins();
    void setRange(double x0, double y0, double x1, double y1);
    void setXRange(double x0, double x1);
    void setYRange(double y0, double y1);

    /// Width and height of the window, whichever way its axes point.
    QSize canvasSize() const;
    LabelSlot labelSlot() const;

    double xToScreen(double x) const { return px0 + (px1 - px0) / (rx1 - rx0) * (x - rx0); }
    double yToScreen(double y) const { return py0 + (py1 - py0) / (ry1 - ry0) * (y - ry0); }
    double dxToScreen(double dx) const { return (px1 - px0) / (rx1 - rx0) * dx; }
    double dyToScreen(double dy) const { return (py1 - py0) / (ry1 - ry0) * dy; }
    double screenToX(double p) const { return rx0 + (rx1 - rx0) / (px1 - px0) * (p - px0); }
    double screenToY(double p) const { return ry0 + (ry1 - ry0) / (py1 - py0) * (p - py0); }
    /// Data distance of a pixel from the start of the range.
    double screenToXOffset(double p) const { return (rx1 - rx0) / (px1 - px0) * (p - px0); }
    double screenToYOffset(double p) const { return (ry1 - ry0) / (py1 - py0) * (p - py0); }
    double screenToDx(double d) const { return (rx1 - rx0) / (px1 - px0) * d; }
    double screenToDy(double d) const { return (ry1 - ry0) / (py1 - py0) * d; }
    /// As screenToX, kept between the two ends of the range.
    double screenToXClamped(double p) const;
    double screenToYClamped(double p) const;

    /// True in the strips along the left and right ends of the plot area and anywhere outside them.
    bool nearPlotXEdge(double p) const;
    /// The same for the top and the bottom.
    bool nearPlotYEdge(double p) const;
    bool nearWindowXEdge(double p) const;
    bool nearWindowYEdge(double p) const;
};

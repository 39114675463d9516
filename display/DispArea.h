#pragma once

#include "display/DrawText.h"
#include "display/GraphFrame.h"
#include "display/MouseC.h"

#include <QFrame>
#include <QStylePainter>

class MarkLines;

/// The canvas on which every graph is painted. It knows coordinates, the mouse and marker lines,
/// and asks its owner to paint at each repaint.
class DispArea : public QFrame
{
    Q_OBJECT

public:
    explicit DispArea(QWidget* parent = nullptr);

    GraphFrame graph;
    MouseC mouse;
    ChCoord& coord = graph.coord;
    bool& rangeSet = graph.rangeSet; ///< a double click forgets the range
    DrawText text;
    MarkLines* markLines = nullptr; ///< not owned

    /// Paints what the canvas shows on another device, one unit of its painter for a pixel.
    void paintOn(QPaintDevice& device);

    /// As drawGraphFrame().
    void drawFrame(QPainter* p, bool clearMargins);

signals:
    void nowPos(double x, double y);   ///< data under the pointer, at every move
    void draw(QStylePainter* painter); ///< at every repaint, the painter begun on the canvas
    void mPressed(MouseC* mouse);
    void mDragging(MouseC* mouse);
    void mReleased(MouseC* mouse);
    void mDClicked(MouseC* mouse);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void pickMarkLine();
    void dragMarkLine();
    void endMarkLineDrag();
};

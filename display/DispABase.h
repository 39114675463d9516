#pragma once

#include "display/DispArea.h"
#include "ui_DispABase.h"

#include <QFrame>
#include <QStylePainter>
#include <memory>

class PopBase;
class QGridLayout;

/// A graph panel: one canvas (DispA) with its titles, the position under the pointer, and a button
/// that pops the canvas out into a window of its own and docks it back.
class DispABase : public QFrame, public Ui_DispABase
{
    Q_OBJECT

public:
    explicit DispABase(QWidget* parent = nullptr);
    ~DispABase() override;

    GraphFrame& graph; ///< what the canvas shows
    std::unique_ptr<PopBase> pop;
    QGridLayout* popLayout; ///< where the canvas sits in the pop-out
    bool docked = true;
    QString& xTitle = graph.xTitle;
    QString& yTitle = graph.yTitle;
    bool& xTitleInGraph = graph.xTitleInGraph; ///< its label stays empty
    bool& yTitleInGraph = graph.yTitleInGraph;

    /// Shows the panel's title and names the canvas, the read-outs and the button after it, for
    /// screen readers.
    void setTitle(const QString& title);

    /// Gives the canvas its data range unless it has one, so that a zoomed or moved view stays
    /// until a double click.
    void setRangeOnce(double x0, double y0, double x1, double y1);
    void setXYTitle(const QString& x, const QString& y);

signals:
    void draw(QStylePainter* painter);
    void mPressed(MouseC* mouse);
    void mDragging(MouseC* mouse);
    void mReleased(MouseC* mouse);
    void mDClicked(MouseC* mouse);

public slots:
    /// Shows a position (data units) in the read-outs.
    void receiveNowPos(double x, double y);
    /// Lets the owner paint, then adds the titles unless there was nothing to draw.
    void receiveDraw(QStylePainter* painter);
    /// Moves the canvas into its own window or back into the panel.
    void popDock();
    /// Paints the titles that belong into the graph.
    void drawXYTitle(QStylePainter* painter);

private:
    /// Makes the form: the canvas in it has the graph.
    GraphFrame& graphOfForm();
};

#pragma once

#include "display/DispABase.h"
#include "ui_Displays.h"

#include <QFrame>
#include <QList>

/// The graph window: nine panels, whose repaints and mouse events go to one receiver together with
/// the panel they come from.
class Displays : public QFrame, public Ui_Displays
{
    Q_OBJECT

public:
    enum DispId {
        DispRef1,
        DispRef2,
        DispTarget,
        DispMuts,
        DispLCFvs4PS,
        DispHistA,
        DispHistT,
        DispTA,
        DispM2M3,
    };
    Q_ENUM(DispId)

    explicit Displays(QWidget* parent = nullptr);

    QList<DispABase*> panels; ///< in the order in which they were added
    QList<DispId> ids;        ///< parallel to panels

    /// Registers a panel, which becomes a child of the window, and connects it. A negative column
    /// or row leaves it out of the grid.
    void addDisp(DispABase* panel, const QString& title, Displays::DispId id, int column, int row,
                 int columnSpan, int rowSpan);

    /// The panel at a place in panels, null outside.
    DispABase* panel(int position) const { return panels.value(position, nullptr); }

signals:
    void draw(Displays::DispId id, DispABase* panel, QStylePainter* painter);
    void mPressed(DispABase* panel, MouseC* mouse);
    void mDragging(DispABase* panel, MouseC* mouse);
    void mReleased(DispABase* panel, MouseC* mouse);

public slots:
    /// Repaints all graphs, those in windows of their own too.
    void update();
    /// Asks for a graph at each place where the panel is registered.
    void receiveDraw(DispABase* from, QStylePainter* painter);

protected:
    /// Opens no larger than the screen.
    void showEvent(QShowEvent* event) override;
};

#include "display/Displays.h"

#include "display/ScreenRoom.h"

namespace
{

constexpr int notPlaced = -1;

/// Height in pixels below which a panel shows hardly more than its title and buttons.
constexpr int rowMinHeight = 120;

} // namespace

Displays::Displays(QWidget* parent) : QFrame(parent)
{
    setupUi(this);
    addDisp(new DispABase(this), tr("Ref1"), DispRef1, 0, 0, 1, 1);
    addDisp(new DispABase(this), tr("Ref2"), DispRef2, 1, 0, 1, 1);
    addDisp(new DispABase(this), tr("Target"), DispTarget, 2, 0, 1, 1);
    addDisp(new DispABase(this), tr("Muts"), DispMuts, 0, 1, 2, 1);
    addDisp(new DispABase(this), tr("LCF vs 4PS"), DispLCFvs4PS, 2, 1, 1, 1);
    addDisp(new DispABase(this), tr("Histgram of a"), DispHistA, 0, 2, 1, 1);
    addDisp(new DispABase(this), tr("Histgram of t"), DispHistT, 1, 2, 1, 1);
    addDisp(new DispABase(this), tr("t/a"), DispTA, 2, 2, 1, 1);
    addDisp(new DispABase(this), tr("M2/M3"), DispM2M3, notPlaced, notPlaced, 1, 1);
    for (int row = 0; row < DispL->rowCount(); ++row)
        DispL->setRowMinimumHeight(row, rowMinHeight);
}

void Displays::addDisp(DispABase* panel, const QString& title, Displays::DispId id, int column,
                       int row, int columnSpan, int rowSpan)
{
    panel->xTitleInGraph = true;
    panel->yTitleInGraph = true;
    panel->setXYTitle(panel->xTitle, panel->yTitle); // the labels beside the read-outs stay empty
    panel->setTitle(title);
    if (column >= 0 && row >= 0)
        DispL->addWidget(panel, row, column, rowSpan, columnSpan);
    else
        panel->hide(); // or it would lie over the grid's corner
    panels.append(panel);
    ids.append(id);
    connect(panel, &DispABase::draw, this,
            [this, panel](QStylePainter* painter) { receiveDraw(panel, painter); });
    connect(panel, &DispABase::mPressed, this,
            [this, panel](MouseC* mouse) { emit mPressed(panel, mouse); });
    connect(panel, &DispABase::mDragging, this,
            [this, panel](MouseC* mouse) { emit mDragging(panel, mouse); });
    connect(panel, &DispABase::mReleased, this,
            [this, panel](MouseC* mouse) { emit mReleased(panel, mouse); });
}

void Displays::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    fitToScreen(*this, *event);
}

void Displays::update()
{
    QFrame::update();
    for (DispABase* panel : qAsConst(panels)) {
        if (!panel->docked)
            panel->DispA->update();
    }
}

void Displays::receiveDraw(DispABase* from, QStylePainter* painter)
{
    for (int i = 0; i < panels.size(); ++i) {
        if (panels[i] == from)
            emit draw(ids[i], from, painter);
    }
}

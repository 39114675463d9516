#include "display/DispArea.h"

#include "display/FramePainter.h"
#include "display/MarkLine.h"
#include "display/MarkLines.h"
#include "display/Navigation.h"
#include "ui_DispArea.h"

#include <QMouseEvent>
#include <QWheelEvent>

namespace
{

constexpr Qt::KeyboardModifiers tested =
    Qt::KeyboardModifiers(Qt::ShiftModifier) | Qt::ControlModifier | Qt::AltModifier;

bool pressedPlain(const MouseC& mouse)
{
    return mouse.pressButton == Qt::LeftButton && !(mouse.pressModifiers & tested);
}

bool pressedToPan(const MouseC& mouse)
{
    return mouse.pressButton == Qt::LeftButton &&
           (mouse.pressModifiers & tested) == Qt::ShiftModifier;
}

// The vertical angle; sideways wheels and Alt turn it into the horizontal one.
int wheelDelta(const QWheelEvent* event)
{
    const QPoint angle = event->angleDelta();
    return angle.y() != 0 ? angle.y() : angle.x();
}

} // namespace

DispArea::DispArea(QWidget* parent) : QFrame(parent)
{
    Ui_DispArea().setupUi(this);
}

void DispArea::paintEvent(QPaintEvent*)
{
    paintOn(*this);
}

void DispArea::paintOn(QPaintDevice& device)
{
    QStylePainter painter(&device, this);
    graph.begin(width(), height());
    emit draw(&painter);
}

void DispArea::mousePressEvent(QMouseEvent* event)
{
    mouse.pressedAt(event);
    if (!pressedPlain(mouse))
        return;
    pickMarkLine();
    emit mPressed(&mouse);
}

void DispArea::mouseMoveEvent(QMouseEvent* event)
{
    mouse.moved(event);
    emit nowPos(coord.screenToX(mouse.x), coord.screenToY(mouse.y));
    if (!mouse.pressed)
        return;
    if (pressedPlain(mouse)) {
        dragMarkLine();
        emit mDragging(&mouse);
    } else if (pressedToPan(mouse)) {
        panBetween(coord, mouse.prevX, mouse.prevY, mouse.x, mouse.y);
        update();
    }
}

void DispArea::mouseReleaseEvent(QMouseEvent* event)
{
    mouse.releasedAt(event);
    if (markLines)
        endMarkLineDrag();
    emit mReleased(&mouse);
}

void DispArea::mouseDoubleClickEvent(QMouseEvent*)
{
    emit mDClicked(&mouse);
    rangeSet = false;
    update();
}

void DispArea::wheelEvent(QWheelEvent* event)
{
    zoomAt(coord, mouse.x, mouse.y, wheelFactor(wheelDelta(event)));
    update();
}

void DispArea::pickMarkLine()
{
    if (!markLines || markLines->lines.isEmpty())
        return;
    std::vector<MarkPosition> marks;
    marks.reserve(static_cast<std::size_t>(markLines->lines.size()));
    for (int i = 0; i < markLines->lines.size(); ++i)
        marks.push_back({markLines->lines[i]->isXLine(), markLines->position(i)});
    const int nearest = pickMark(coord, marks, mouse.pressX, mouse.pressY);
    if (nearest < 0)
        return;
    if (markLines->isMoving)
        emit markLines->newPos();
    markLines->isMoving = true;
    markLines->selected = nearest;
}

void DispArea::dragMarkLine()
{
    if (!markLines || !markLines->isMoving)
        return;
    const int i = markLines->selected;
    if (i < 0 || i >= markLines->lines.size())
        return;
    const bool isXLine = markLines->lines[i]->isXLine();
    markLines->moveTo(i, isXLine ? coord.screenToX(mouse.x) : coord.screenToY(mouse.y));
}

void DispArea::endMarkLineDrag()
{
    dragMarkLine();
    if (markLines->isMoving)
        emit markLines->newPos();
    markLines->isMoving = false;
    markLines->selected = -1;
}

void DispArea::drawFrame(QPainter* p, bool clearMargins)
{
    drawGraphFrame(*p, coord, clearMargins);
}

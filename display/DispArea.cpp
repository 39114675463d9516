#include "display/DispArea.h"

#include "display/MarkLine.h"
#include "display/MarkLines.h"
#include "display/Navigation.h"
#include "display/Pixel.h"
#include "text/NumberText.h"
#include "ui_DispArea.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include <cmath>

namespace
{

const QColor borderGrey(150, 150, 150);
constexpr double labelMaxSize = 12.0;
constexpr int yLabelLength = 5;
constexpr int xLabelLength = 6;

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
    QStylePainter painter(this);
    coord.valid = 1;
    coord.setWindow(0.0, height(), width(), 0.0);
    if (!rangeSet)
        coord.setRange(0.0, 0.0, 1.0, 1.0);
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
    p->setPen(borderGrey);
    if (clearMargins)
        fillMargins(p);
    p->setBrush(Qt::NoBrush);
    p->drawRect(truncToInt(coord.px0), truncToInt(coord.py1),
                truncToInt(std::fabs(coord.px1 - coord.px0)),
                truncToInt(std::fabs(coord.py1 - coord.py0)));
    p->setPen(Qt::black);
    drawRangeLabels(p);
}

// Heights are negative here: the window's bottom is wy0.
void DispArea::fillMargins(QPainter* p) const
{
    const int left = truncToInt(coord.wx0);
    const int bottom = truncToInt(coord.wy0);
    const int width = truncToInt(coord.wx1 - coord.wx0);
    const int height = truncToInt(coord.wy1 - coord.wy0);
    p->fillRect(left, bottom, truncToInt(coord.px0 - coord.wx0), height, Qt::white);
    p->fillRect(left, bottom, width, truncToInt(coord.py0 - coord.wy0), Qt::white);
    p->fillRect(left, truncToInt(coord.py1), width, truncToInt(coord.wy1 - coord.py1), Qt::white);
    p->fillRect(truncToInt(coord.px1), bottom, truncToInt(coord.wx1 - coord.px1), height,
                Qt::white);
}

// Uncut, as all text of a graph: fonts do not scale evenly, and a number without its last digit is
// another number.
void DispArea::drawRangeLabels(QPainter* p)
{
    const int h = truncToInt((coord.py1 - coord.py0) / coord.labelDivisions);
    const int b = truncToInt(h * coord.labelHeightRatio);
    const int m = truncToInt((coord.wx1 - coord.wx0) * coord.leftMargin);
    const int top = truncToInt(coord.py1);
    const int bottom = truncToInt(coord.py0);
    const auto put = [this, p](double value, int length, QRectF box, int side) {
        const QString label = textFromNumber(value).left(length);
        const double middle = box.center().y();
        const double size =
            DrawText::sizeWithin(*p, label, middle - coord.wy1, coord.wy0 - middle, labelMaxSize);
        text.putText(p, box, QFont(), side | Qt::AlignVCenter | Qt::TextDontClip, 1, label, size,
                     false);
    };
    put(coord.ry1, yLabelLength, QRectF(0, top - h, m * 0.95, b), Qt::AlignRight);
    put(coord.ry0, yLabelLength, QRectF(0, bottom, m * 0.95, b), Qt::AlignRight);
    put(coord.rx0, xLabelLength, QRectF(truncToInt(coord.px0), bottom - h, 2 * m, b),
        Qt::AlignLeft);
    put(coord.rx1, xLabelLength, QRectF(truncToInt(coord.px1) - 2 * m, bottom - h, 2 * m, b),
        Qt::AlignRight);
}

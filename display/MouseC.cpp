#include "display/MouseC.h"

#include "display/Pixel.h"

#include <QMouseEvent>

MouseC::MouseC(QObject* parent) : QObject(parent) {}

void MouseC::pressedAt(const QMouseEvent* event)
{
    moveTo(event);
    pressX = x;
    pressY = y;
    pressed = true;
    pressButton = event->button();
    pressModifiers = event->modifiers();
}

void MouseC::moved(const QMouseEvent* event)
{
    moveTo(event);
    moveButton = event->button();
    moveModifiers = event->modifiers();
}

void MouseC::releasedAt(const QMouseEvent* event)
{
    moveTo(event);
    releaseX = x;
    releaseY = y;
    pressed = false;
    releaseButton = event->button();
    releaseModifiers = event->modifiers();
}

Qt::KeyboardModifiers MouseC::doubleClicked(const QMouseEvent* event)
{
    dclickX = roundToInt(event->localPos().x());
    dclickY = roundToInt(event->localPos().y());
    dclickButton = event->button();
    dclickModifiers = event->modifiers();
    return dclickModifiers;
}

void MouseC::moveTo(const QMouseEvent* event)
{
    prevX = x;
    prevY = y;
    x = roundToInt(event->localPos().x());
    y = roundToInt(event->localPos().y());
}

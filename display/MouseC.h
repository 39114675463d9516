#pragma once

#include <QObject>
#include <Qt>

class QMouseEvent;

/// What the mouse last did on a canvas. Positions are pixels of the canvas.
class MouseC : public QObject
{
    Q_OBJECT

public:
    explicit MouseC(QObject* parent = nullptr);

    int prevX = 0; ///< position before the last press, move or release
    int prevY = 0;
    int x = 0;
    int y = 0;
    int pressX = 0;
    int pressY = 0;
    int releaseX = 0;
    int releaseY = 0;
    int dclickX = 0;
    int dclickY = 0;
    bool pressed = false;
    Qt::MouseButton moveButton = Qt::NoButton;
    Qt::MouseButton pressButton = Qt::NoButton;
    Qt::MouseButton releaseButton = Qt::NoButton;
    Qt::MouseButton dclickButton = Qt::NoButton;
    Qt::KeyboardModifiers moveModifiers = Qt::NoModifier;
    Qt::KeyboardModifiers pressModifiers = Qt::NoModifier;
    Qt::KeyboardModifiers releaseModifiers = Qt::NoModifier;
    Qt::KeyboardModifiers dclickModifiers = Qt::NoModifier;

    void pressedAt(const QMouseEvent* event);
    void moved(const QMouseEvent* event);
    void releasedAt(const QMouseEvent* event);
    /// Records position, button and modifiers of a double click and leaves everything else alone.
    /// @return the modifiers
    Qt::KeyboardModifiers doubleClicked(const QMouseEvent* event);

private:
    void moveTo(const QMouseEvent* event);
};

#pragma once

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

/// What a user does with the mouse on a canvas, and what is then to be seen on it.
namespace canvas
{

inline void send(QWidget* target, QEvent::Type type, QPointF pos, Qt::MouseButton button,
                 Qt::MouseButtons held, Qt::KeyboardModifiers modifiers)
{
    // Places on the screen are whole numbers: one that no int holds is moved to a very far one.
    const QPointF near(qBound(-1e6, pos.x(), 1e6), qBound(-1e6, pos.y(), 1e6));
    QMouseEvent event(type, pos, target->mapToGlobal(near.toPoint()), button, held, modifiers);
    QApplication::sendEvent(target, &event);
}

inline void press(QWidget* target, QPointF pos, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    send(target, QEvent::MouseButtonPress, pos, button, button, modifiers);
}

/// A move with the left button held, or without any.
inline void move(QWidget* target, QPointF pos, Qt::MouseButtons held = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    send(target, QEvent::MouseMove, pos, Qt::NoButton, held, modifiers);
}

inline void release(QWidget* target, QPointF pos, Qt::MouseButton button = Qt::LeftButton,
                    Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    send(target, QEvent::MouseButtonRelease, pos, button, Qt::NoButton, modifiers);
}

/// Press, moves through the points, release at the last one.
inline void drag(QWidget* target, const QVector<QPointF>& points,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    press(target, points.first(), Qt::LeftButton, modifiers);
    for (const QPointF& point : points)
        move(target, point, Qt::LeftButton, modifiers);
    release(target, points.last(), Qt::LeftButton, modifiers);
}

/// As the system reports it: press, release, double click, release.
inline void doubleClick(QWidget* target, QPointF pos)
{
    press(target, pos);
    release(target, pos);
    send(target, QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    release(target, pos);
}

/// @param angle  of the wheel, 120 for a notch; y away from the user is positive
inline void wheel(QWidget* target, QPointF pos, QPoint angle)
{
    QWheelEvent event(pos, target->mapToGlobal(pos.toPoint()), QPoint(), angle, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

/// The widget as it is painted now.
inline QImage picture(QWidget* widget)
{
    return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

inline int count(const QImage& image, const QColor& color)
{
    int found = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            found += image.pixel(x, y) == color.rgb();
    return found;
}

/// The columns (or rows) between two others that are all of one color at a row (or column).
inline QVector<int> columnsOf(const QImage& image, const QColor& color, int row, int from, int to)
{
    QVector<int> columns;
    for (int x = from; x <= to; ++x)
        if (image.pixel(x, row) == color.rgb())
            columns.append(x);
    return columns;
}

inline QVector<int> rowsOf(const QImage& image, const QColor& color, int column, int from, int to)
{
    QVector<int> rows;
    for (int y = from; y <= to; ++y)
        if (image.pixel(column, y) == color.rgb())
            rows.append(y);
    return rows;
}

} // namespace canvas

#pragma once

#include "app/Body.h"
#include "tests/model/RandomFiles.h"

#include <QPoint>
#include <QPointer>
#include <QRandomGenerator>
#include <QString>

class FourPs;
class QMimeData;

/// Hits every window of the program with whatever a mouse, a keyboard and a desktop can send,
/// without understanding anything. Only the file dialogs are out of its reach, since it would
/// rename and delete what it finds there; files are given by drop, and by the dialog's signals.
class Monkey
{
public:
    Monkey(quint32 seed, const QString& folder);

    /// One event, or a few that belong together.
    void act();

private:
    int below(int limit) { return m_random.bounded(limit); }
    bool chance(int percent) { return below(100) < percent; }

    QWidget* anyWindow();
    QWidget* anyWidget();
    QPoint anyPoint(const QWidget* widget);
    Qt::MouseButton anyButton();
    Qt::KeyboardModifiers anyModifiers();
    QString anyFile();

    void mouse(QWidget* widget, int type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held,
               Qt::KeyboardModifiers modifiers);
    void click();
    void drag();
    void wheel();
    void key();
    void typeNumber();
    void drop();
    void choose();
    void window();
    void focus();
    void idle();

    QRandomGenerator m_random;
    RandomFiles m_files;
    Body m_body;
};

#pragma once

#include "app/Body.h"
#include "tests/model/RandomFiles.h"
#include "tests/monkey/TwinPanel.h"

#include <QPoint>
#include <QPointer>
#include <QRandomGenerator>
#include <QString>
#include <QTimer>

#include <memory>

class QFileDialog;

/// Hits every window of the program with whatever a mouse, a keyboard and a desktop can send,
/// without understanding anything. In the file dialogs it is more careful: they are opened, get
/// keys, take the names of its own files, and are closed. Results are written into one folder only.
class Monkey
{
public:
    /// @param folder  gets its files; results go into "out" there
    Monkey(quint32 seed, const QString& folder);

    /// One event, or a few that belong together.
    void act();

    /// Closes dialogs and menus, lets go of what is held and brings the windows back.
    void calmDown();

    FourPs& panel() { return *m_body.panel(); }
    const GivenMaps& maps() const { return *m_maps; }
    int dialogsAnswered() const { return m_dialogsAnswered; }

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
    void menu();
    void drag();
    void wheel();
    void key();
    void typeNumber();
    void drop();
    void choose();
    void window();
    void focus();
    void idle();
    void write();
    void dialog();

    QList<QFileDialog*> openDialogs();
    void answer(QFileDialog* dialog);
    void keyTo(QPointer<QWidget> widget, int key, Qt::KeyboardModifiers modifiers);
    void keepInside();
    void leaveLoop();

    QRandomGenerator m_random;
    RandomFiles m_files;
    QString m_out;
    Body m_body;
    std::unique_ptr<GivenMaps> m_maps;
    QTimer m_watch;
    bool m_acting = false;
    int m_dialogsAnswered = 0;
};

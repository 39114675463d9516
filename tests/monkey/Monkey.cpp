#include "tests/monkey/Monkey.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "tests/support/CanvasActions.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWheelEvent>

Monkey::Monkey(quint32 seed, const QString& folder)
    : m_random(seed), m_files(seed, folder), m_out(folder + QStringLiteral("/out"))
{
    m_maps = std::make_unique<GivenMaps>(panel());
    QObject::connect(&m_watch, &QTimer::timeout, &m_body, [this] { leaveLoop(); });
    m_watch.start();
    m_body.show();
    m_body.panel()->displays->show();
    idle();
}

void Monkey::act()
{
    static const struct {
        int weight;
        void (Monkey::*act)();
    } table[] = {{27, &Monkey::click}, {10, &Monkey::drag},  {8, &Monkey::wheel},
                 {3, &Monkey::menu},   {16, &Monkey::key},   {6, &Monkey::typeNumber},
                 {6, &Monkey::drop},   {3, &Monkey::choose}, {4, &Monkey::window},
                 {3, &Monkey::focus},  {3, &Monkey::write},  {3, &Monkey::dialog},
                 {8, &Monkey::idle}};
    keepInside();
    m_acting = true;
    int choice = below(100);
    for (const auto& entry : table) {
        choice -= entry.weight;
        if (choice < 0) {
            (this->*entry.act)();
            break;
        }
    }
    m_acting = false;
}

QWidget* Monkey::anyWindow()
{
    if (QWidget* popup = QApplication::activePopupWidget())
        return popup;
    QWidgetList windows;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && !qobject_cast<QDialog*>(window))
            windows.append(window);
    }
    if (windows.isEmpty()) {
        m_body.show();
        return &m_body;
    }
    return windows.at(below(windows.size()));
}

/// What is at a random place of a window, or any child, seen or not.
QWidget* Monkey::anyWidget()
{
    QWidget* window = anyWindow();
    if (chance(70)) {
        QWidget* child = window->childAt(anyPoint(window));
        return child ? child : window;
    }
    const QWidgetList children = window->findChildren<QWidget*>();
    return children.isEmpty() ? window : children.at(below(children.size()));
}

QPoint Monkey::anyPoint(const QWidget* widget)
{
    const int margin = chance(5) ? 50 : 0;
    return {below(widget->width() + 1 + 2 * margin) - margin,
            below(widget->height() + 1 + 2 * margin) - margin};
}

Qt::MouseButton Monkey::anyButton()
{
    static const Qt::MouseButton buttons[] = {Qt::LeftButton, Qt::LeftButton,  Qt::LeftButton,
                                              Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};
    return buttons[below(6)];
}

Qt::KeyboardModifiers Monkey::anyModifiers()
{
    static const Qt::KeyboardModifiers modifiers[] = {
        Qt::NoModifier,      Qt::NoModifier,
        Qt::NoModifier,      Qt::NoModifier,
        Qt::ShiftModifier,   Qt::AltModifier,
        Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier};
    return modifiers[below(8)];
}

/// A spectrum, 2D data, or a job that was saved.
QString Monkey::anyFile()
{
    const QDir out(m_out);
    const QStringList jobs = out.entryList({QStringLiteral("*.toml")});
    if (!jobs.isEmpty() && chance(10))
        return out.filePath(jobs.at(below(jobs.size())));
    const QStringList& files = chance(50) ? m_files.spectra : m_files.images;
    return files.at(below(files.size()));
}

void Monkey::mouse(QWidget* widget, int type, QPoint at, Qt::MouseButton button,
                   Qt::MouseButtons held, Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(static_cast<QEvent::Type>(type), at, widget->mapToGlobal(at), button, held,
                      modifiers);
    QApplication::sendEvent(widget, &event);
}

void Monkey::click()
{
    QPointer<QWidget> widget = anyWidget();
    const QPoint at = anyPoint(widget);
    const Qt::MouseButton button = anyButton();
    const Qt::KeyboardModifiers modifiers = anyModifiers();
    mouse(widget, chance(15) ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, at, button,
          button, modifiers);
    if (widget && chance(95))
        mouse(widget, QEvent::MouseButtonRelease, at, button, Qt::NoButton, modifiers);
}

/// Asks for the context menu of what is at a place, often of a graph; what is in it is clicked
/// like anything else while it is open. Or does what the keys of the window do.
void Monkey::menu()
{
    if (chance(30)) {
        const QList<QAction*> actions = panel().actions();
        return actions.at(below(actions.size()))->trigger();
    }
    QWidget* widget = anyWidget();
    if (chance(50)) {
        const Displays* displays = panel().displays;
        widget = displays->panel(below(displays->panels.size()))->DispA;
    }
    const QPoint at = anyPoint(widget);
    QContextMenuEvent event(chance(80) ? QContextMenuEvent::Mouse : QContextMenuEvent::Keyboard, at,
                            widget->mapToGlobal(at));
    QApplication::sendEvent(widget, &event);
}

void Monkey::drag()
{
    QPointer<QWidget> widget = anyWidget();
    const Qt::MouseButton button = anyButton();
    const Qt::KeyboardModifiers modifiers = anyModifiers();
    mouse(widget, QEvent::MouseButtonPress, anyPoint(widget), button, button, modifiers);
    for (int i = below(6); widget && i > 0; --i)
        mouse(widget, QEvent::MouseMove, anyPoint(widget), Qt::NoButton, button, anyModifiers());
    if (widget && chance(90))
        mouse(widget, QEvent::MouseButtonRelease, anyPoint(widget), button, Qt::NoButton,
              modifiers);
}

void Monkey::wheel()
{
    QWidget* widget = anyWidget();
    const QPoint at = anyPoint(widget);
    const int turns[] = {120, -120, 240, -1200, 12000, 15, 0};
    const QPoint turn(chance(20) ? turns[below(7)] : 0, turns[below(7)]);
    QWheelEvent event(at, widget->mapToGlobal(at), {}, turn, Qt::NoButton, anyModifiers(),
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

void Monkey::key()
{
    static const int keys[] = {Qt::Key_Tab,   Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Enter,
                               Qt::Key_Space, Qt::Key_Escape,  Qt::Key_Delete, Qt::Key_Backspace,
                               Qt::Key_Left,  Qt::Key_Right,   Qt::Key_Up,     Qt::Key_Down,
                               Qt::Key_Home,  Qt::Key_End,     Qt::Key_PageUp, Qt::Key_PageDown,
                               Qt::Key_F1,    Qt::Key_F10,     Qt::Key_Menu,   Qt::Key_A,
                               Qt::Key_C,     Qt::Key_V,       Qt::Key_X,      Qt::Key_Z,
                               Qt::Key_Plus,  Qt::Key_Minus,   Qt::Key_Period, Qt::Key_E,
                               Qt::Key_0,     Qt::Key_1,       Qt::Key_5,      Qt::Key_9};
    QPointer<QWidget> widget = QApplication::focusWidget();
    if (!widget || chance(10))
        widget = anyWidget();
    const int key = keys[below(static_cast<int>(sizeof keys / sizeof *keys))];
    const Qt::KeyboardModifiers modifiers = anyModifiers();
    if (!qobject_cast<QDialog*>(widget->window()))
        keyTo(widget, key, modifiers);
}

void Monkey::keyTo(QPointer<QWidget> widget, int key, Qt::KeyboardModifiers modifiers)
{
    const QString text = key < 0x80 ? QString(QChar(key)) : QString();
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    if (widget)
        QApplication::sendEvent(widget, &release);
}

void Monkey::typeNumber()
{
    const QList<QLineEdit*> edits = m_body.panel()->findChildren<QLineEdit*>();
    QLineEdit* edit = edits.at(below(edits.size()));
    if (edit->isReadOnly() || edit->parentWidget() == panel().SaveFSelect ||
        qobject_cast<QDialog*>(edit->window()))
        return;
    static const char* const texts[] = {"2",   "3",  "8350", "8390", "-50",   "100",
                                        "1.5", "0",  "nan",  "inf",  "1e308", "",
                                        "x",   "41", "8313", "-1e9"};
    edit->setFocus();
    edit->selectAll();
    edit->insert(QLatin1String(texts[below(16)]));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(edit, &enter);
}

void Monkey::drop()
{
    QWidget* widget = anyWidget();
    while (widget && !widget->acceptDrops())
        widget = widget->parentWidget();
    const QList<AFileSelect*> selectors = m_body.panel()->findChildren<AFileSelect*>();
    if (!widget || chance(70))
        widget = selectors.at(below(selectors.size()));
    QMimeData data;
    QList<QUrl> urls;
    for (int i = chance(90) ? 1 : below(4); i > 0; --i)
        urls.append(chance(95) ? QUrl::fromLocalFile(anyFile())
                               : QUrl(QStringLiteral("https://host/file")));
    data.setUrls(urls);
    const QPoint at = anyPoint(widget);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &enter);
    if (chance(10)) {
        QDragLeaveEvent leave;
        QApplication::sendEvent(widget, &leave);
        return;
    }
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &drop);
}

void Monkey::choose()
{
    FourPs* panel = m_body.panel();
    AFileSelect* const selectors[] = {panel->DispFSelect, panel->mapFileSelect, panel->TargetFile,
                                      panel->ePoints.at(below(8))->MapFile};
    QStringList paths;
    for (int i = 1 + below(4); i > 0; --i)
        paths.append(anyFile());
    QFileDialog* dialog = selectors[below(4)]->dialog();
    emit dialog->currentChanged(paths.first());
    emit dialog->filesSelected(paths);
    if (paths.size() == 1)
        emit dialog->fileSelected(paths.first());
}

void Monkey::window()
{
    QWidget* window = anyWindow();
    switch (below(5)) {
    case 0:
        window->resize(below(1500), below(1000));
        break;
    case 1:
        window->close();
        break;
    case 2:
        m_body.panel()->displays->show();
        break;
    case 3:
        m_body.show();
        break;
    default:
        m_body.isMinimized() ? m_body.showNormal() : m_body.showMinimized();
    }
}

void Monkey::focus()
{
    QWidget* widget = anyWidget();
    QApplication::setActiveWindow(widget->window());
    widget->setFocus();
}

void Monkey::idle()
{
    m_acting = false;
    QApplication::processEvents();
}

/// Types a result file's path, and often presses "Write".
void Monkey::write()
{
    QLineEdit* field = panel().SaveFSelect->FileName;
    field->setFocus();
    field->selectAll();
    field->insert(m_files.targets.at(below(m_files.targets.size())));
    keyTo(field, Qt::Key_Return, Qt::NoModifier);
    if (chance(70))
        panel().WriteB->click();
}

QList<QFileDialog*> Monkey::openDialogs()
{
    QList<QFileDialog*> dialogs;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<QFileDialog*>(window);
        if (dialog && dialog->isVisible())
            dialogs.append(dialog);
    }
    return dialogs;
}

/// Opens a dialog by "Sel.", or does something to one that is open.
void Monkey::dialog()
{
    const QList<QFileDialog*> dialogs = openDialogs();
    if (dialogs.isEmpty() || chance(20)) {
        const QList<AFileSelect*> selectors = panel().findChildren<AFileSelect*>();
        selectors.at(below(selectors.size()))->SelectB->click();
        return;
    }
    QFileDialog* dialog = dialogs.at(below(dialogs.size()));
    dialog->setOption(QFileDialog::ReadOnly); // nothing is renamed or deleted
    static const int keys[] = {Qt::Key_Tab,      Qt::Key_Backtab, Qt::Key_Left, Qt::Key_Right,
                               Qt::Key_Up,       Qt::Key_Down,    Qt::Key_Home, Qt::Key_End,
                               Qt::Key_PageDown, Qt::Key_A,       Qt::Key_5,    Qt::Key_Escape};
    const int choice = below(10);
    if (choice < 4)
        answer(dialog);
    else if (choice == 4)
        dialog->close();
    else if (QWidget* inside = dialog->focusWidget())
        keyTo(inside, keys[below(12)], Qt::NoModifier);
}

/// Types a name and ends with the Enter key. Of a file that does not exist the dialog says so in a
/// box that waits.
void Monkey::answer(QFileDialog* dialog)
{
    auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const bool save = dialog->acceptMode() == QFileDialog::AcceptSave;
    name->setFocus();
    name->selectAll();
    name->insert(save ? m_files.targets.at(below(m_files.targets.size())) : anyFile());
    keyTo(name, Qt::Key_Return, Qt::NoModifier);
    ++m_dialogsAnswered;
}

/// Before anything is pressed: results are written nowhere else.
void Monkey::keepInside()
{
    QLineEdit* field = panel().SaveFSelect->FileName;
    const QString path = QDir::cleanPath(QDir(m_out).absoluteFilePath(field->text()));
    if (!field->text().isEmpty() && !path.startsWith(m_out + QLatin1Char('/')))
        field->setText(m_files.targets.first());
}

/// Gives up whatever waits for an answer in the middle of an event: a box, a menu, a drag.
void Monkey::leaveLoop()
{
    QWidget* waiting = QApplication::activeModalWidget();
    if (!waiting && m_acting)
        waiting = QApplication::activePopupWidget() ? QApplication::activePopupWidget() : &m_body;
    if (waiting)
        keyTo(waiting, Qt::Key_Escape, Qt::NoModifier);
}

void Monkey::calmDown()
{
    keepInside();
    for (QFileDialog* dialog : openDialogs())
        dialog->reject();
    while (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    for (const DispABase* graph : qAsConst(panel().displays->panels))
        canvas::release(graph->DispA, QPointF(1, 1)); // of whatever is held
    m_body.showNormal();
    panel().displays->showNormal();
    idle();
    m_watch.stop();
}

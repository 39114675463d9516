#pragma once

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <functional>

/// What a user does to the panel, through the real widgets.
namespace user
{

/// What is done in one row of a table of tests.
using Act = std::function<void(FourPs&)>;

/// Drops data on the middle of a widget as the desktop would: entering first.
/// @return whether the widget let them in
inline bool dropData(QWidget* target, const QMimeData& data)
{
    const QPoint middle = target->rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    return true;
}

inline void dropUrls(QWidget* target, const QList<QUrl>& urls)
{
    QMimeData data;
    data.setUrls(urls);
    dropData(target, data);
}

inline void drop(QWidget* target, const QString& path)
{
    dropUrls(target, {QUrl::fromLocalFile(path)});
}

/// Replaces a field's text and leaves the field with the Enter key.
inline void type(QLineEdit* field, const QString& text)
{
    field->setFocus();
    field->selectAll();
    if (text.isEmpty())
        QTest::keyClick(field, Qt::Key_Delete);
    else
        QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

/// Clicks where the button reacts: on its indicator, at the left.
inline void click(QAbstractButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier,
                      QPoint(8, button->rect().center().y()));
}

/// Lines of the message pane, oldest first.
inline QStringList messages(const FourPs& panel)
{
    return panel.Message->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// Lines that were added since the pane had `count` lines.
inline QStringList messagesSince(const FourPs& panel, int count)
{
    return messages(panel).mid(count);
}

} // namespace user

Q_DECLARE_METATYPE(user::Act)

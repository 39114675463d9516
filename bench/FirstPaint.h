#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

/// Ends the event loop once a window has been painted for the first time.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget* window) : m_window(window) { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_window && event->type() == QEvent::Paint)
            QTimer::singleShot(0, qApp, &QApplication::quit);
        return false;
    }

private:
    QWidget* m_window;
};

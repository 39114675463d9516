#pragma once

#include <QElapsedTimer>
#include <QString>

class QLabel;
class QProgressBar;
class QStatusBar;

/// Tells in a status bar what a long operation does and how far it is. Nothing shows of a short
/// one; only the status bar is repainted, and no other event is let in.
class BusyBar
{
public:
    /// @param patience  milliseconds that pass before anything shows
    explicit BusyBar(QStatusBar* bar, int patience = 500);
    BusyBar(const BusyBar&) = delete;
    BusyBar& operator=(const BusyBar&) = delete;

    /// Call with part 0 when an operation begins, with what is done of it while it runs, and with 1
    /// at its end.
    void show(const QString& text, double part);

private:
    void repaint();

    QStatusBar* m_bar;
    QLabel* m_label;          ///< owned by the status bar
    QProgressBar* m_progress; ///< owned by the status bar
    int m_patience;           ///< ms
    QElapsedTimer m_begun;
    QElapsedTimer m_painted;
};

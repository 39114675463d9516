#pragma once

#include <QElapsedTimer>
#include <QString>

/// How far a run is, on the standard error: on a terminal one line that is painted over, otherwise
/// a line at most every five seconds.
class ProgressLine
{
public:
    /// @param total  things to do
    /// @param quiet  nothing is shown
    ProgressLine(std::size_t total, bool quiet);
    ~ProgressLine(); ///< leaves the terminal a line of its own

    void show(std::size_t done);
    /// Before another line is said.
    void clear();

    /// "[#####     ] 50 of 100, 25/s, 2 s left"
    /// @param seconds  since the beginning
    static QString text(std::size_t done, std::size_t total, double seconds);

private:
    std::size_t m_total;
    bool m_quiet;
    bool m_terminal;
    bool m_painted = false;
    QElapsedTimer m_begun;
    qint64 m_shown = 0; ///< ms since the beginning
};

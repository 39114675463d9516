#include "batch/ProgressLine.h"

#include "batch/Console.h"

#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace
{

constexpr int barWidth = 20;
constexpr qint64 betweenPaintsMs = 100;
constexpr qint64 betweenLinesMs = 5000;

} // namespace

ProgressLine::ProgressLine(std::size_t total, bool quiet)
    : m_total(total), m_quiet(quiet), m_terminal(isatty(STDERR_FILENO) == 1)
{
    m_begun.start();
}

ProgressLine::~ProgressLine()
{
    clear();
}

QString ProgressLine::text(std::size_t done, std::size_t total, double seconds)
{
    const double part = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
    const int filled = static_cast<int>(part * barWidth);
    const double rate = seconds > 0.0 ? static_cast<double>(done) / seconds : 0.0;
    QString line =
        QStringLiteral("[%1%2] %3 of %4")
            .arg(QString(filled, QLatin1Char('#')), QString(barWidth - filled, QLatin1Char(' ')))
            .arg(done)
            .arg(total);
    if (rate > 0.0)
        line += QStringLiteral(", %1/s, %2 s left")
                    .arg(rate, 0, 'g', 3)
                    .arg(std::ceil(static_cast<double>(total - done) / rate), 0, 'f', 0);
    return line;
}

void ProgressLine::show(std::size_t done)
{
    const qint64 now = m_begun.elapsed();
    if (m_quiet || now - m_shown < (m_terminal ? betweenPaintsMs : betweenLinesMs))
        return;
    m_shown = now;
    const QString line = text(done, m_total, static_cast<double>(now) / 1000.0);
    if (!m_terminal)
        return console::say(line);
    std::fprintf(stderr, "\r%s\x1b[K", line.toUtf8().constData());
    m_painted = true;
}

void ProgressLine::clear()
{
    if (m_painted)
        std::fputs("\r\x1b[K", stderr);
    m_painted = false;
}

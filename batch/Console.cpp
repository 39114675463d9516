#include "batch/Console.h"

#include <cstdio>

void console::say(const QString& text)
{
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

int console::complain(const QString& text, ExitStatus status)
{
    say(text);
    return static_cast<int>(status);
}

void console::warn(const QString& path, const std::vector<JobError>& doubts)
{
    for (const JobError& doubt : doubts)
        say(warningText(path, doubt));
}

bool console::print(const QByteArray& text)
{
    const auto size = static_cast<std::size_t>(text.size());
    return std::fwrite(text.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

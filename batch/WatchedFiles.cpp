#include "batch/WatchedFiles.h"

#include <algorithm>
#include <ctime>
#include <sys/stat.h>

namespace
{

constexpr std::int64_t second = 1000000000; ///< ns

/// File systems keep times of whole seconds at worst, and two of FAT.
constexpr std::int64_t coarsestClock = 2 * second;

std::int64_t nanoseconds(const timespec& time)
{
    return time.tv_sec * second + time.tv_nsec;
}

} // namespace

bool WatchedFiles::read(const QByteArray& path, State& state)
{
    struct stat file = {};
    if (stat(path.constData(), &file) != 0)
        return false;
    state = {file.st_dev, file.st_ino, file.st_size, nanoseconds(file.st_mtim),
             nanoseconds(file.st_ctim)};
    return true;
}

bool WatchedFiles::look(const QByteArray& path, Time now)
{
    State state;
    if (!read(path, state))
        return false;
    const auto known = m_files.find(path);
    if (known == m_files.end())
        m_files.emplace(path, File{state, now, true});
    else if (known->second.state != state)
        known->second = {state, now, true};
    return true;
}

void WatchedFiles::takeAsDone(const QByteArray& path, Time now)
{
    if (!look(path, now))
        return;
    timespec clock = {};
    clock_gettime(CLOCK_REALTIME, &clock);
    File& file = m_files.at(path);
    const std::int64_t last = std::max(std::get<3>(file.state), std::get<4>(file.state));
    file.pending = last > nanoseconds(clock) - coarsestClock;
}

bool WatchedFiles::isPending(const QByteArray& path) const
{
    const auto known = m_files.find(path);
    return known != m_files.end() && known->second.pending;
}

bool WatchedFiles::isDue(const QByteArray& path, Time now) const
{
    return isPending(path) && now - m_files.at(path).since >= quiet;
}

void WatchedFiles::setDone(const QByteArray& path)
{
    const auto known = m_files.find(path);
    if (known != m_files.end())
        known->second.pending = false;
}

bool WatchedFiles::anyPending() const
{
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const auto& file) { return file.second.pending; });
}

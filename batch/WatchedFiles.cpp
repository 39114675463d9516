#include "batch/WatchedFiles.h"

#include <algorithm>
#include <ctime>

namespace
{

constexpr std::int64_t second = 1000000000; ///< ns

/// File systems keep times of whole seconds at worst, and two of FAT.
constexpr std::int64_t coarsestClock = 2 * second;

} // namespace

bool WatchedFiles::look(const QByteArray& path, Time now)
{
    const std::optional<FileState> state = fileState(path);
    if (!state)
        return false;
    const auto known = m_files.find(path);
    if (known == m_files.end())
        m_files.emplace(path, File{*state, now, true});
    else if (known->second.state != *state)
        known->second = {*state, now, true};
    return true;
}

void WatchedFiles::takeAsDone(const QByteArray& path, Time now)
{
    if (!look(path, now))
        return;
    timespec clock = {};
    clock_gettime(CLOCK_REALTIME, &clock);
    File& file = m_files.at(path);
    file.pending = lastChange(file.state) > clock.tv_sec * second + clock.tv_nsec - coarsestClock;
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

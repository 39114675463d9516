#include "system/FolderWatch.h"

#include "system/Signals.h"

#include <array>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace
{

constexpr std::uint32_t changes = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO |
                                  IN_MOVED_FROM | IN_DELETE | IN_ATTRIB | IN_DELETE_SELF |
                                  IN_MOVE_SELF;

} // namespace

FolderWatch::FolderWatch(bool notices)
    : m_descriptor(notices ? inotify_init1(IN_CLOEXEC | IN_NONBLOCK) : -1)
{
}

FolderWatch::~FolderWatch()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

void FolderWatch::setFolders(const QByteArrayList& folders)
{
    if (m_descriptor < 0)
        return;
    std::map<QByteArray, int> now;
    for (const QByteArray& folder : folders)
        now[folder] = inotify_add_watch(m_descriptor, folder.constData(), changes | IN_ONLYDIR);
    for (const auto& [folder, watch] : m_folders)
        if (now.count(folder) == 0)
            inotify_rm_watch(m_descriptor, watch);
    m_folders = std::move(now);
}

bool FolderWatch::wait(int milliseconds)
{
    std::array<pollfd, 2> sources{pollfd{stopDescriptor(), POLLIN, 0},
                                  pollfd{m_descriptor, POLLIN, 0}}; // -1 is passed over
    poll(sources.data(), sources.size(), milliseconds);
    bool changed = false;
    std::array<char, 16384> events{};
    while (m_descriptor >= 0 && read(m_descriptor, events.data(), events.size()) > 0)
        changed = true;
    return changed;
}

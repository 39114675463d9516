#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <map>

/// Waits until something in some folders may have changed. The system tells of what this machine
/// does; of a network file system it does not tell what others do, so that whoever waits looks
/// again from time to time.
class FolderWatch
{
public:
    /// @param notices  false: the system is not asked, and only time passes
    explicit FolderWatch(bool notices = true);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// From now on these folders, and no others.
    void setFolders(const QByteArrayList& folders);

    /// Waits for a change, for a stop signal (system/Signals.h), or for so many milliseconds.
    /// @return whether there was a change
    bool wait(int milliseconds);

private:
    int m_descriptor = -1; ///< -1 where the system does not tell
    std::map<QByteArray, int> m_folders;
};

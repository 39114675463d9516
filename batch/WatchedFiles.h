#pragma once

#include "system/FileState.h"

#include <QByteArray>

#include <chrono>
#include <map>

/// Files that are looked at again and again, to learn which have changed and have stopped growing.
/// The times come from whoever asks.
class WatchedFiles
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// A file that has not changed for so long is whole.
    static constexpr std::chrono::milliseconds quiet{300};

    /// Looks at a file. One that is not known, or is not as it was, is pending from then on.
    /// @return whether it is there
    bool look(const QByteArray& path, Time now);
    /// Takes a file as analysed in its present state. One that was written to in the last seconds
    /// stays pending, since the clock of the file system may not tell the next change from that.
    void takeAsDone(const QByteArray& path, Time now);

    bool isKnown(const QByteArray& path) const { return m_files.count(path) > 0; }
    bool isPending(const QByteArray& path) const;
    /// Pending, and quiet for long enough.
    bool isDue(const QByteArray& path, Time now) const;
    /// It has been analysed as it is.
    void setDone(const QByteArray& path);
    void forget(const QByteArray& path) { m_files.erase(path); }
    /// Whether one is pending, be it due or not.
    bool anyPending() const;

private:
    struct File {
        FileState state;
        Time since;
        bool pending = true;
    };

    std::map<QByteArray, File> m_files;
};

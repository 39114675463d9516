#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

/// The right to do something alone, which one process has at a time: a lock of the system on a
/// file, gone with its process however that ends. It also holds between the machines of a network
/// file system that knows locks (NFS 4, and NFS 3 with its lock service).
class FileLock
{
public:
    /// Never waits. The file is made if need be, tells who has the lock, and stays.
    /// @param held  where nothing comes back, whether another process has it
    /// @param why   who that is ("process 123 on node7"), or why the file cannot be made
    static std::unique_ptr<FileLock> take(const QString& path, bool& held, QString& why);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    explicit FileLock(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
};

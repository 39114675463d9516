#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Files that nobody should give to a program.
namespace hostile
{

/// Paths that cannot be read as a file: folder, pipe nobody writes, devices without end, socket,
/// broken and circular links, a file without permission, none at all. They are made in a folder.
QStringList unreadable(const QString& folder);

/// Writes a file byte by byte as named; ends the test program where that fails.
QString write(const QString& path, const QByteArray& content);

/// One line of so many bytes, made of a block again and again, behind some first lines.
QString writeLong(const QString& path, const QByteArray& head, const QByteArray& block,
                  qint64 size);

/// Gives up the privileges of the superuser, for whom no file is without permission, while it
/// lives.
class PlainUser
{
public:
    PlainUser();
    ~PlainUser();
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    bool m_changed = false;
};

/// Watches how far the memory of the process grows above what it had at the start.
class MemoryWatch
{
public:
    MemoryWatch();
    /// Bytes; 0 where the system does not tell.
    qint64 growth() const;

private:
    static qint64 peak();
    qint64 m_start;
};

/// Greater than 1 in a full run (DROVIK_HOSTILE_FULL is set): how much larger the large files are.
int scale();

/// True where the sanitizers keep freed memory, so that its amount tells nothing.
constexpr bool memoryIsPadded()
{
#ifdef __SANITIZE_ADDRESS__
    return true;
#else
    return false;
#endif
}

/// Two seconds for any file, with room for what the sanitizers cost.
constexpr qint64 patienceMs()
{
    return memoryIsPadded() ? 40000 : 2000;
}

} // namespace hostile

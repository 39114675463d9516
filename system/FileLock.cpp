#include "system/FileLock.h"

#include "system/FileMode.h"

#include <QFile>
#include <QSysInfo>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace
{

QString holder(int descriptor)
{
    constexpr std::size_t longest = 200;
    std::array<char, longest> text{};
    const ssize_t size = pread(descriptor, text.data(), text.size(), 0);
    const QString name =
        QString::fromUtf8(text.data(), size > 0 ? static_cast<int>(size) : 0).simplified();
    return name.isEmpty() ? QStringLiteral("another process") : name;
}

/// For whoever is refused; nothing depends on it.
void tellHolder(int descriptor)
{
    const QByteArray text = "process " + QByteArray::number(getpid()) + " on " +
                            QSysInfo::machineHostName().toUtf8() + '\n';
    if (ftruncate(descriptor, 0) == 0)
        (void)!pwrite(descriptor, text.constData(), static_cast<std::size_t>(text.size()), 0);
}

} // namespace

std::unique_ptr<FileLock> FileLock::take(const QString& path, bool& held, QString& why)
{
    const int descriptor =
        open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, readAndWriteForAll);
    held = false;
    if (descriptor < 0) {
        why = qt_error_string(errno);
        return nullptr;
    }
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    // Of the open file, not of the process: closing another descriptor of it gives nothing up.
    if (fcntl(descriptor, F_OFD_SETLK, &lock) != 0) {
        const int error = errno;
        held = error == EAGAIN || error == EACCES;
        why = held ? holder(descriptor) : qt_error_string(error);
        close(descriptor);
        return nullptr;
    }
    tellHolder(descriptor);
    return std::unique_ptr<FileLock>(new FileLock(descriptor));
}

FileLock::~FileLock()
{
    close(m_descriptor);
}

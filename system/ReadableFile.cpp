#include "system/ReadableFile.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

QString whyNot(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("there is no such file");
    case EACCES:
    case EPERM:
        return QStringLiteral("there is no permission to read it");
    case ELOOP:
        return QStringLiteral("its links lead in a circle");
    case ENAMETOOLONG:
        return QStringLiteral("its name is too long");
    default:
        return qt_error_string(error);
    }
}

/// Empty for a regular file.
QString whyNone(mode_t mode)
{
    if (S_ISREG(mode))
        return {};
    return S_ISDIR(mode) ? QStringLiteral("it is a folder")
                         : QStringLiteral("it is no regular file");
}

} // namespace

QString openReadable(const QString& path, QFile& file)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (stat(name.constData(), &status) != 0)
        return whyNot(errno);
    if (const QString reason = whyNone(status.st_mode); !reason.isEmpty())
        return reason;
    const int descriptor = open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return whyNot(errno);
    // Another may have taken the name since.
    QString reason = fstat(descriptor, &status) == 0 ? whyNone(status.st_mode) : whyNot(errno);
    if (reason.isEmpty() &&
        !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        reason = file.errorString();
    if (!reason.isEmpty())
        close(descriptor);
    return reason;
}

QString whyUnreadable(const QString& path)
{
    QFile file;
    return openReadable(path, file);
}

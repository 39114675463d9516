#include "system/InputFile.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Error number of what is to be a regular file; 0 for one.
/// @param result  of stat or fstat
int errorOf(int result, const struct stat& status)
{
    if (result != 0)
        return errno;
    if (S_ISREG(status.st_mode))
        return 0;
    return S_ISDIR(status.st_mode) ? EISDIR : ENODEV;
}

/// Opens a regular file; a negative error number for anything else.
int openRegular(const char* path, std::int64_t& size)
{
    // Opening a device may do something to it, so it is not even tried. What takes the file's name
    // between the two calls is opened without waiting for anybody, and found out by the third.
    struct stat status = {};
    if (const int error = errorOf(stat(path, &status), status); error != 0)
        return -error;
    const int descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return -errno;
    if (const int error = errorOf(fstat(descriptor, &status), status); error != 0) {
        close(descriptor);
        return -error;
    }
    size = status.st_size;
    return descriptor;
}

} // namespace

std::unique_ptr<InputFile> InputFile::open(const QString& path, int* error)
{
    std::int64_t size = 0;
    const int descriptor = openRegular(QFile::encodeName(path).constData(), size);
    if (descriptor >= 0)
        return std::unique_ptr<InputFile>(new InputFile(descriptor, size));
    if (error != nullptr)
        *error = -descriptor;
    return nullptr;
}

InputFile::~InputFile()
{
    close(m_descriptor);
}

bool InputFile::read(char* to, std::size_t count, std::int64_t offset) const
{
    while (count > 0) {
        const ssize_t n = pread(m_descriptor, to, count, offset);
        if (n < 0 && errno == EINTR)
            continue;
        if (n == 0)
            errno = EIO;
        if (n <= 0)
            return false;
        to += n;
        offset += n;
        count -= static_cast<std::size_t>(n);
    }
    return true;
}

QString whyNotOpened(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("there is no such file");
    case EISDIR:
        return QStringLiteral("it is a folder");
    case ENODEV:
        return QStringLiteral("it is no regular file");
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

#include "system/InputFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool isRegular(const struct stat& status)
{
    return S_ISREG(status.st_mode);
}

} // namespace

std::unique_ptr<InputFile> InputFile::open(const char* path)
{
    // Opening a device may do something to it, so it is not even tried. What takes the file's name
    // between the two calls is opened without waiting for anybody, and found out by the third.
    struct stat status = {};
    if (stat(path, &status) != 0 || !isRegular(status))
        return nullptr;
    const int descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    if (fstat(descriptor, &status) != 0 || !isRegular(status)) {
        close(descriptor);
        return nullptr;
    }
    return std::unique_ptr<InputFile>(new InputFile(descriptor, status.st_size));
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
        if (n <= 0)
            return false;
        to += n;
        offset += n;
        count -= static_cast<std::size_t>(n);
    }
    return true;
}

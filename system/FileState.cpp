#include "system/FileState.h"

#include <algorithm>
#include <ctime>
#include <sys/stat.h>

namespace
{

std::int64_t nanosecondsOf(const timespec& time)
{
    constexpr std::int64_t second = 1000000000;
    return time.tv_sec * second + time.tv_nsec;
}

} // namespace

std::optional<FileState> fileState(const QByteArray& path)
{
    struct stat file = {};
    if (stat(path.constData(), &file) != 0)
        return std::nullopt;
    return FileState{file.st_dev, file.st_ino, file.st_size, nanosecondsOf(file.st_mtim),
                     nanosecondsOf(file.st_ctim)};
}

std::int64_t lastChange(const FileState& state)
{
    return std::max(std::get<3>(state), std::get<4>(state));
}

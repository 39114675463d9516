#include "analysis/AvailableMemory.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

/// The number of a file that holds one number; nothing for a missing file or the word "max".
std::optional<std::size_t> numberIn(const char* path)
{
    std::ifstream file(path);
    std::size_t value = 0;
    if (file >> value)
        return value;
    return std::nullopt;
}

std::optional<std::size_t> systemMemory()
{
    std::ifstream file("/proc/meminfo");
    std::string key;
    std::size_t kilobytes = 0;
    while (file >> key >> kilobytes) {
        if (key == "MemAvailable:")
            return kilobytes * 1024;
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return std::nullopt;
    return static_cast<std::size_t>(pages) * static_cast<std::size_t>(pageSize);
}

std::optional<std::size_t> groupMemory()
{
    const auto limit = numberIn("/sys/fs/cgroup/memory.max");
    const auto used = numberIn("/sys/fs/cgroup/memory.current");
    if (!limit || !used)
        return std::nullopt;
    return *limit > *used ? *limit - *used : 0;
}

/// What a limit of the address space (ulimit -v) leaves.
std::optional<std::size_t> addressSpace()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return std::nullopt;
    const auto pages = numberIn("/proc/self/statm");
    const std::size_t used = pages ? *pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) : 0;
    return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

} // namespace

std::size_t availableMemory()
{
    std::size_t available = std::numeric_limits<std::size_t>::max();
    for (const auto& bound : {systemMemory(), groupMemory(), addressSpace()})
        if (bound)
            available = std::min(available, *bound);
    return available;
}

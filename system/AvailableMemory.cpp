#include "system/AvailableMemory.h"

#include "system/GroupMemory.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

std::optional<std::size_t> systemMemory(const std::string& root)
{
    std::ifstream file(root + "/proc/meminfo");
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

/// What a limit of the address space (ulimit -v) leaves.
std::optional<std::size_t> addressSpace(const std::string& root)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return std::nullopt;
    std::ifstream file(root + "/proc/self/statm");
    std::size_t pages = 0;
    file >> pages; // stays 0 where it cannot be read
    const std::size_t used = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

} // namespace

std::size_t availableMemory(const std::string& root)
{
    std::size_t available = std::numeric_limits<std::size_t>::max();
    for (const auto& bound : {systemMemory(root), groupMemory(root), addressSpace(root)})
        if (bound)
            available = std::min(available, *bound);
    return available;
}

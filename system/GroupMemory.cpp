#include "system/GroupMemory.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace
{

using Bytes = std::optional<std::size_t>;

/// Where a version of control groups keeps the memory of a group.
struct Version {
    const char* mount;
    const char* limit;
    const char* brake; ///< limit from which on the group is slowed down
    const char* used;
    const char* droppable; ///< entry of memory.stat: file pages that are out of use, children's too
};

constexpr Version version1{"/sys/fs/cgroup/memory", "memory.limit_in_bytes",
                           "memory.limit_in_bytes", // has no brake
                           "memory.usage_in_bytes", "total_inactive_file"};
constexpr Version version2{"/sys/fs/cgroup", "memory.max", "memory.high", "memory.current",
                           "inactive_file"};

Bytes least(const Bytes& a, const Bytes& b)
{
    return a && b ? std::min(*a, *b) : a ? a : b;
}

/// The number of a file that holds one number; nothing for a missing file or the word "max".
Bytes numberIn(const std::string& path)
{
    std::ifstream file(path);
    std::size_t value = 0;
    if (file >> value)
        return value;
    return std::nullopt;
}

/// The number behind a word in a file of such pairs; 0 where there is none.
std::size_t entryIn(const std::string& path, const std::string& word)
{
    std::ifstream file(path);
    std::string key;
    std::size_t value = 0;
    while (file >> key >> value)
        if (key == word)
            return value;
    return 0;
}

Bytes leftIn(const std::string& folder, const Version& version)
{
    const Bytes limit =
        least(numberIn(folder + '/' + version.limit), numberIn(folder + '/' + version.brake));
    const Bytes used = numberIn(folder + '/' + version.used);
    if (!limit || !used)
        return std::nullopt;
    const std::size_t droppable = entryIn(folder + "/memory.stat", version.droppable);
    const std::size_t kept = *used - std::min(*used, droppable);
    return *limit - std::min(*limit, kept);
}

/// A group and all around it. In a container the path may be that of another view of the groups:
/// what of it is not there is passed over, and a path that leads out of the mount is none.
Bytes leftOnTheWay(const std::string& root, std::string path, const Version& version)
{
    const std::string mount = root + version.mount;
    if ((path + '/').find("/../") != std::string::npos)
        path.clear();
    Bytes left;
    for (;;) {
        left = least(left, leftIn(mount + path, version));
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos)
            return left;
        path.erase(slash);
    }
}

/// The version whose memory a line "number:controllers:path" is about.
const Version* versionOf(const std::string& number, const std::string& controllers)
{
    if (number == "0" && controllers.empty())
        return &version2;
    return (',' + controllers + ',').find(",memory,") != std::string::npos ? &version1 : nullptr;
}

} // namespace

std::optional<std::size_t> groupMemory(const std::string& root)
{
    std::ifstream file(root + "/proc/self/cgroup");
    std::string line;
    Bytes left;
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string number;
        std::string controllers;
        std::string path;
        std::getline(fields, number, ':');
        std::getline(fields, controllers, ':');
        std::getline(fields, path); // may hold colons
        if (const Version* version = versionOf(number, controllers))
            left = least(left, leftOnTheWay(root, path, *version));
    }
    return left;
}

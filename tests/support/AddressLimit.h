#pragma once

#include <QtGlobal>

#include <cstddef>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

/// Gives the process a limit of its address space while it lives.
class AddressLimit
{
public:
    /// @param bytes  of the whole address space
    explicit AddressLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_AS, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        if (setrlimit(RLIMIT_AS, &limit) != 0)
            qFatal("the limit is refused");
    }
    ~AddressLimit() { setrlimit(RLIMIT_AS, &m_before); }
    AddressLimit(const AddressLimit&) = delete;
    AddressLimit& operator=(const AddressLimit&) = delete;

    /// A limit that leaves so many bytes beside what is in use.
    static rlim_t beside(std::size_t bytes)
    {
        std::ifstream file("/proc/self/statm");
        std::size_t pages = 0;
        file >> pages;
        return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + bytes;
    }

private:
    rlimit m_before{};
};

#pragma once

#include "formats/StackFault.h"

#include <cstddef>
#include <sys/mman.h>
#include <sys/stat.h>

/// The memory of pixels that was handed over with a request.
class SharedPixels
{
public:
    /// Throws StackFault where it is not as large as what is to be put there.
    SharedPixels(int descriptor, std::size_t bytes) : m_bytes(bytes)
    {
        struct stat status {
        };
        if (fstat(descriptor, &status) != 0 || static_cast<std::size_t>(status.st_size) != bytes)
            throw StackFault("is not as large as it was");
        m_memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (m_memory == MAP_FAILED)
            throw StackFault("does not fit in memory");
    }
    ~SharedPixels() { munmap(m_memory, m_bytes); }
    SharedPixels(const SharedPixels&) = delete;
    SharedPixels& operator=(const SharedPixels&) = delete;

    std::size_t size() const { return m_bytes; }
    char* data() { return static_cast<char*>(m_memory); }
    /// Numbers in double precision, at a place of theirs.
    static double* doublesAt(void* place) { return static_cast<double*>(place); }

private:
    std::size_t m_bytes;
    void* m_memory = nullptr;
};

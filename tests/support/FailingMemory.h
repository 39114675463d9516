#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

/// Memory for the whole of a test program that can be refused, and that is counted. To be included
/// in one source file of a program.
namespace memory
{

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

inline std::atomic<std::size_t> requestsLeft{never}; ///< after so many each one is refused
inline std::atomic<std::size_t> bytesAsked{0};       ///< since it was set to 0, freed ones too

/// Refuses all requests after the next `requests` ones while it lives.
class RefusedAfter
{
public:
    explicit RefusedAfter(std::size_t requests) { requestsLeft = requests; }
    ~RefusedAfter() { requestsLeft = never; }
    RefusedAfter(const RefusedAfter&) = delete;
    RefusedAfter& operator=(const RefusedAfter&) = delete;
};

inline void* take(std::size_t bytes)
{
    bytesAsked += bytes;
    if (requestsLeft != never && requestsLeft-- == 0) {
        ++requestsLeft; // stays at none
        throw std::bad_alloc();
    }
    void* result = std::malloc(bytes == 0 ? 1 : bytes);
    if (result == nullptr)
        throw std::bad_alloc();
    return result;
}

} // namespace memory

void* operator new(std::size_t bytes)
{
    return memory::take(bytes);
}
void* operator new[](std::size_t bytes)
{
    return memory::take(bytes);
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete[](void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept
{
    std::free(p);
}

#include "system/PixelArray.h"

#include <sys/mman.h>

namespace
{

/// From this size on large pages pay.
constexpr std::size_t largeBytes = std::size_t{4} << 20;

} // namespace

void* allocatePixels(std::size_t bytes) noexcept
{
    if (bytes == 0)
        return nullptr;
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
#ifdef MADV_HUGEPAGE
    if (bytes >= largeBytes)
        madvise(memory, bytes, MADV_HUGEPAGE); // a wish; refusal costs only speed
#endif
    return memory;
}

void releasePixels(void* memory, std::size_t bytes) noexcept
{
    if (memory != nullptr)
        munmap(memory, bytes);
}

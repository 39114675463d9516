#include "system/PixelArray.h"

#include <cstdlib>
#include <sys/mman.h>

namespace
{

/// Below this size memory comes from the heap: giving a mapping back interrupts all processors,
/// which takes longer than reading a small spectrum.
constexpr std::size_t smallBytes = std::size_t{1} << 17;

/// From this size on large pages pay.
constexpr std::size_t largeBytes = std::size_t{4} << 20;

} // namespace

void* allocatePixels(std::size_t bytes) noexcept
{
    if (bytes == 0)
        return nullptr;
    if (bytes < smallBytes)
        return std::malloc(bytes);
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
    if (memory == nullptr)
        return;
    if (bytes < smallBytes)
        std::free(memory);
    else
        munmap(memory, bytes);
}

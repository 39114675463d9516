#include "tests/fuzz/FuzzText.h"
#include "tests/fuzz/ReaderChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Two files of three are cut into pieces that end anywhere in a line.
    const std::size_t chunkBytes = size % 3 == 0 ? 0 : 1 + size % 64;
    fuzz::require(check::mapDifference(fuzz::text(data, size), chunkBytes));
    return 0;
}

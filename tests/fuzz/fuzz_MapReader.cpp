#include "tests/fuzz/FuzzText.h"
#include "tests/fuzz/ReaderChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Two files of three are cut into pieces that end anywhere in a line. The third kind has the
    // usual pieces, though smaller ones: the sanitizer maps a megabyte anew for each file.
    constexpr std::size_t longPieces = 30000;
    const std::size_t chunkBytes = size % 3 == 0 ? longPieces : 1 + size % 64;
    fuzz::require(check::mapDifference(fuzz::text(data, size), chunkBytes));
    return 0;
}

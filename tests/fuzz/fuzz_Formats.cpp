#include "tests/fuzz/FuzzText.h"
#include "tests/fuzz/ReaderChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::require(check::formatDifference(fuzz::bytes(data, size)));
    return 0;
}

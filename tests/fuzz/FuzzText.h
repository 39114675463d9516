#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What the fuzz targets share.
namespace fuzz
{

/// A difference ends the run; the fuzzer keeps the input.
inline void require(const char* difference)
{
    if (!difference)
        return;
    std::fprintf(stderr, "the program and the literal reading differ: %s\n", difference);
    std::abort();
}

inline QByteArray bytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), static_cast<int>(size)};
}

/// A text file. One in some hundred is made longer than two of the pieces in which files are read;
/// its checksum decides which, so that no kind of input is always long, and slow.
inline QByteArray text(const std::uint8_t* data, std::size_t size)
{
    const QByteArray once = bytes(data, size);
    constexpr int severalPieces = 40000;
    constexpr int seldom = 499;
    const bool makeLong =
        size > 0 && qChecksum(once.constData(), static_cast<uint>(size)) % seldom == 0;
    return makeLong ? once.repeated(severalPieces / once.size() + 1) : once;
}

} // namespace fuzz

/// The toolkit's libraries keep no frame pointers; deep call stacks of its allocations are noise
/// that slows the runs down to a crawl.
extern "C" __attribute__((used)) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "malloc_context_size=2:quarantine_size_mb=16";
}

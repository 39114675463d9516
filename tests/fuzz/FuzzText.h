#pragma once

#include <QByteArray>
#include <QTextCodec>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What the fuzz targets of the text readers share.
namespace fuzz
{

/// Ends the run with the reason; the input is kept by the fuzzer.
[[noreturn]] inline void fail(const char* reason)
{
    std::fprintf(stderr, "%s\n", reason);
    std::abort();
}

inline void require(bool condition, const char* reason)
{
    if (!condition)
        fail(reason);
}

/// Equal to the last bit; any not-a-number equals any other.
inline bool same(double a, double b)
{
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

/// The file's text. Its size decides the encoding of the locale that it is read in, and a few sizes
/// make it longer than the pieces that files are read in.
inline QByteArray text(const std::uint8_t* data, std::size_t size)
{
    static const char* const codecs[] = {"ISO-8859-1", "Shift_JIS", "EUC-JP", "UTF-8",
                                         "UTF-8",      "UTF-8",     "UTF-8",  "UTF-8"};
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(codecs[size % 8]));
    const QByteArray once(reinterpret_cast<const char*>(data), static_cast<int>(size));
    constexpr int severalPieces = 70000;
    return size % 256 == 77 ? once.repeated(severalPieces / once.size() + 1) : once;
}

} // namespace fuzz

#pragma once

#include <cstddef>
#include <string_view>

/// The blanks of ASCII.
constexpr bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether three bytes of UTF-8 are a blank.
/// @param code  the second and the third byte
constexpr bool isWideBlank(int first, int code)
{
    if (first == 0xE1)
        return code == 0x9A80;
    if (first == 0xE2)
        return (code >= 0x8080 && code <= 0x808A) || code == 0x80A8 || code == 0x80A9 ||
               code == 0x80AF || code == 0x819F;
    return first == 0xE3 && code == 0x8080;
}

/// Bytes of the blank of UTF-8 that begins at a byte beyond ASCII, 0 where none does: those
/// characters that QChar::isSpace() knows. A blank is found whatever stands before it, since no
/// character of UTF-8 holds the beginning of another.
/// @param p  before end
inline int wideBlank(const char* p, const char* end)
{
    const auto at = [&](int i) { return i < end - p ? static_cast<unsigned char>(p[i]) : 0; };
    if (at(0) == 0xC2)
        return at(1) == 0x85 || at(1) == 0xA0 ? 2 : 0;
    return isWideBlank(at(0), at(1) << 8 | at(2)) ? 3 : 0;
}

/// The tokens of a line in UTF-8: what simplifying it and splitting it at its blanks would give.
class LineTokens
{
public:
    /// @param line  without carriage returns
    explicit LineTokens(std::string_view line) : m_p(line.data()), m_end(m_p + line.size()) {}

    /// The next token; empty behind the last one.
    std::string_view next()
    {
        while (const int blank = blankAt(m_p))
            m_p += blank;
        const char* const first = m_p;
        while (m_p != m_end && blankAt(m_p) == 0)
            ++m_p;
        return {first, static_cast<std::size_t>(m_p - first)};
    }

private:
    int blankAt(const char* p) const
    {
        if (p == m_end)
            return 0;
        const bool ascii = static_cast<unsigned char>(*p) < 0x80;
        return ascii ? static_cast<int>(isBlank(*p)) : wideBlank(p, m_end);
    }

    const char* m_p;
    const char* m_end;
};

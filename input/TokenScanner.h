#pragma once

#include "input/LongToken.h"

#include <string>
#include <string_view>

/// The blanks of ASCII, those that QString::simplified() removes.
constexpr bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Splits text that arrives in pieces into tokens and lines, as simplifying each line and splitting
/// it at its blanks would.
///
/// The sink gets token(std::string_view) for each token and endLine() after the last one of a line.
/// A token's text is valid during the call only. Of a token that is too long to be kept comes a
/// short one instead that stands for the same number, or is none as well.
template <typename Sink>
class TokenScanner
{
public:
    explicit TokenScanner(Sink& sink) : m_sink(sink) {}

    void feed(std::string_view piece)
    {
        const char* next = piece.data();
        const char* const end = next + piece.size();
        if (!m_token.empty())
            next = feedToken(next, end);
        while (next != end) {
            if (isBlank(*next)) {
                if (*next++ == '\n')
                    m_sink.endLine();
                continue;
            }
            const char* const last = endOfToken(next, end);
            if (last == end)
                m_token.append(next, end);
            else
                m_sink.token(view(next, last));
            next = last;
        }
    }

    /// At the end of the text: closes its last token and line.
    void finish()
    {
        closeToken();
        m_sink.endLine();
    }

private:
    static std::string_view view(const char* first, const char* last)
    {
        return {first, static_cast<std::size_t>(last - first)};
    }

    static const char* endOfToken(const char* next, const char* end)
    {
        while (next != end && !isBlank(*next))
            ++next;
        return next;
    }

    const char* feedToken(const char* next, const char* end)
    {
        const char* const last = endOfToken(next, end);
        m_token.append(next, last);
        if (last != end)
            closeToken();
        return last;
    }

    void closeToken()
    {
        if (m_token.empty())
            return;
        m_sink.token(m_token.text());
        m_token.clear();
    }

    Sink& m_sink;
    LongToken m_token; ///< begun in an earlier piece
};

#include "jobs/Nesting.h"

#include <algorithm>

namespace
{

constexpr int deepest = 16;

class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    int lineOfDeepNesting()
    {
        while (m_at < m_text.size()) {
            step(m_text[m_at]);
            if (m_brackets > deepest || m_dots >= deepest)
                return m_line;
        }
        return 0;
    }

private:
    void step(char c)
    {
        if (c == '"' || c == '\'')
            return skipString(c);
        if (c == '#')
            return skipTo(m_text.find('\n', m_at));
        ++m_at;
        if (c == '[' || c == '{')
            ++m_brackets;
        else if (c == ']' || c == '}')
            m_brackets = std::max(0, m_brackets - 1);
        if (c == '\n')
            ++m_line;
        if (c == '.')
            ++m_dots;
        else if (std::string_view("\n=,[]{}").find(c) != std::string_view::npos)
            m_dots = 0; // another key, or a value
    }

    void skipTo(std::size_t place)
    {
        const std::size_t end = std::min(place, m_text.size());
        m_line +=
            static_cast<int>(std::count(m_text.begin() + static_cast<std::ptrdiff_t>(m_at),
                                        m_text.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
        m_at = end;
    }

    /// Over a string of one line or, between three quotation marks each, of several.
    void skipString(char quote)
    {
        std::size_t marks = m_text.find_first_not_of(quote, m_at);
        marks = std::min(marks, m_text.size()) - m_at;
        if (marks == 2)
            return skipTo(m_at + 2);
        const std::size_t ending = marks < 3 ? 1 : 3;
        std::size_t at = m_at + ending;
        for (std::size_t found = 0; at < m_text.size() && found < ending; ++at) {
            const char c = m_text[at];
            found = c == quote ? found + 1 : 0;
            if (c == '\\' && quote == '"')
                ++at; // what follows is no end
            else if (c == '\n' && ending == 1)
                return skipTo(at); // no string may go on
        }
        if (ending == 3) // up to two more marks belong to the string
            at = std::min(m_text.find_first_not_of(quote, at), at + 2);
        skipTo(at);
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    int m_line = 1;
    int m_brackets = 0;
    int m_dots = 0; ///< of the key, or of the number
};

} // namespace

int lineOfDeepNesting(std::string_view text)
{
    return Scanner(text).lineOfDeepNesting();
}

#include "input/LongToken.h"

#include <algorithm>
#include <cstddef>

namespace
{

/// No two doubles, nor a double and the middle between two, agree in more significant digits than
/// this; what follows matters only by being zero or not.
constexpr std::ptrdiff_t decisiveDigits = 800;

/// Far beyond the exponent of any double, for every mantissa read as 0.ddd.
constexpr std::int64_t largestExponent = 100000;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isNotZero(char c)
{
    return c != '0';
}

} // namespace

void LongToken::append(const char* first, const char* last)
{
    if (m_long) {
        read(first, last);
        return;
    }
    m_text.append(first, last);
    m_long = m_text.size() > longestKept;
    if (m_long)
        read(m_text.data(), m_text.data() + m_text.size());
}

std::string_view LongToken::text()
{
    if (m_long)
        m_text = shortNumber();
    return m_text;
}

void LongToken::clear()
{
    *this = LongToken();
}

void LongToken::read(const char* first, const char* last)
{
    while (first != last && m_state != State::Bad) {
        if (m_state >= State::Exponent)
            readExponent(*first++);
        else if (isDigit(*first))
            first = readDigits(first, last);
        else
            readMantissa(*first++);
    }
}

const char* LongToken::readDigits(const char* first, const char* last)
{
    const bool integer = m_state < State::Point;
    m_state = integer ? State::Integer : State::Fraction;
    m_hasDigit = true;
    const char* const end = std::find_if_not(first, last, isDigit);
    if (m_digits.empty()) {
        const char* const zeros = first;
        first = std::find_if(first, end, isNotZero);
        m_point -= integer ? 0 : first - zeros;
    }
    m_point += integer ? end - first : 0;
    const char* const kept =
        first +
        std::min(end - first, decisiveDigits - static_cast<std::ptrdiff_t>(m_digits.size()));
    m_digits.append(first, kept);
    m_sticky = m_sticky || std::any_of(kept, end, isNotZero);
    return end;
}

void LongToken::readMantissa(char c)
{
    if ((c == '+' || c == '-') && m_state == State::Start) {
        m_negative = c == '-';
        m_state = State::Sign;
    } else if (c == '.' && m_state < State::Point) {
        m_state = State::Point;
    } else if ((c == 'e' || c == 'E') && m_hasDigit) {
        m_state = State::Exponent;
    } else {
        m_state = State::Bad;
    }
}

void LongToken::readExponent(char c)
{
    if (isDigit(c)) {
        m_state = State::Digits;
        m_exponent = std::min(m_exponent * 10 + (c - '0'), std::int64_t{1} << 40);
    } else if ((c == '+' || c == '-') && m_state == State::Exponent) {
        m_negativeExponent = c == '-';
        m_state = State::ExponentSign;
    } else {
        m_state = State::Bad;
    }
}

bool LongToken::isNumber() const
{
    const bool mantissaEnds =
        m_state == State::Integer || m_state == State::Point || m_state == State::Fraction;
    return m_state == State::Digits || (mantissaEnds && m_hasDigit);
}

std::string LongToken::shortNumber() const
{
    if (!isNumber())
        return "?";
    std::string number = m_negative ? "-0" : "0";
    if (m_digits.empty())
        return number;
    const std::int64_t exponent = m_point + (m_negativeExponent ? -m_exponent : m_exponent);
    number += '.';
    number += m_digits;
    if (m_sticky)
        number += '1';
    number += 'e';
    number += std::to_string(std::clamp(exponent, -largestExponent, largestExponent));
    return number;
}

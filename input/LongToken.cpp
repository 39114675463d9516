#include "input/LongToken.h"

#include <algorithm>

namespace
{

/// No two doubles, nor a double and the middle between two, agree in more significant digits than
/// this; what follows matters only by being zero or not.
constexpr std::size_t decisiveDigits = 800;

/// Far beyond the exponent of any double, for every mantissa read as 0.ddd.
constexpr std::int64_t largestExponent = 100000;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

void LongToken::append(const char* first, const char* last)
{
    if (!m_long) {
        m_text.append(first, last);
        if (m_text.size() <= longestKept)
            return;
        m_long = true;
        for (const char c : m_text)
            read(c);
        return;
    }
    for (; first != last && m_state != State::Bad; ++first)
        read(*first);
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

void LongToken::read(char c)
{
    switch (m_state) {
    case State::Start:
        if (c == '+' || c == '-') {
            m_negative = c == '-';
            m_state = State::Sign;
            return;
        }
        [[fallthrough]];
    case State::Sign:
    case State::Integer:
    case State::Point:
    case State::Fraction:
        readMantissa(c);
        return;
    case State::Exponent:
    case State::ExponentSign:
    case State::Digits:
        readExponent(c);
        return;
    case State::Bad:
        return;
    }
}

void LongToken::readMantissa(char c)
{
    const bool pointSeen = m_state == State::Point || m_state == State::Fraction;
    if (isDigit(c)) {
        m_state = pointSeen ? State::Fraction : State::Integer;
        readDigit(c);
    } else if (c == '.' && !pointSeen) {
        m_state = State::Point;
    } else if ((c == 'e' || c == 'E') && m_hasDigit) {
        m_state = State::Exponent;
    } else {
        m_state = State::Bad;
    }
}

void LongToken::readDigit(char c)
{
    m_hasDigit = true;
    const bool significant = c != '0' || !m_digits.empty();
    if (m_state == State::Integer && significant)
        ++m_point;
    else if (m_state == State::Fraction && !significant)
        --m_point;
    if (!significant)
        return;
    if (m_digits.size() < decisiveDigits)
        m_digits += c;
    else if (c != '0')
        m_sticky = true;
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

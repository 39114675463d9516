#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// A token that grows piece by piece and may have any length in little memory.
///
/// Up to longestKept bytes the text is kept as it is. Of a longer one only what decides its value
/// is kept: the leading significant digits, whether anything but zeros follows, and the exponent.
class LongToken
{
public:
    static constexpr std::size_t longestKept = 65536;

    bool empty() const { return m_text.empty(); }
    void append(const char* first, const char* last);
    /// The token, or for one longer than longestKept a short text that converts to the same number.
    std::string_view text();
    void clear();

private:
    /// What was read last; the parts of a number in their order.
    enum class State { Start, Sign, Integer, Point, Fraction, Exponent, ExponentSign, Digits, Bad };

    void read(const char* first, const char* last);
    const char* readDigits(const char* first, const char* last);
    void readMantissa(char c);
    void readExponent(char c);
    bool isNumber() const;
    std::string shortNumber() const;

    std::string m_text;
    bool m_long = false;
    State m_state = State::Start;
    bool m_negative = false;
    bool m_sticky = false;    ///< a digit other than zero was left out
    bool m_hasDigit = false;  ///< in the mantissa
    std::string m_digits;     ///< leading significant digits, read as 0.ddd
    std::int64_t m_point = 0; ///< places between the first significant digit and the point
    bool m_negativeExponent = false;
    std::int64_t m_exponent = 0;
};

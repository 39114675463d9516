#include "input/MapLines.h"

#include "input/NumberText.h"

#include <QTextCodec>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{

constexpr int tokensNeeded = 8;

/// Bytes of the shortest record, "1 1 1" and a line feed.
constexpr std::size_t shortestRecord = 6;

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> exactPower = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                               1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                               1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Integers up to here are exact doubles.
constexpr std::uint64_t exactIntegers = std::uint64_t{1} << 53;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// The line feed of the line that p stands in; there is one.
const char* lineEnd(const char* p, const char* last)
{
    return static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(last - p)));
}

/// Reads the tokens of ordinary records: numbers of ASCII between blanks and tabulators. What it
/// does not know it leaves alone.
class RecordReader
{
public:
    explicit RecordReader(const char* p) : m_p(p) {}

    const char* position() const { return m_p; }

    void skipBlanks()
    {
        while (isBlank(*m_p))
            ++m_p;
    }

    /// Reads a number that a blank or the line's end follows.
    bool number(double& value)
    {
        const char* const first = m_p;
        const bool negative = *m_p == '-';
        m_p += negative;
        const char* const digits = m_p;
        std::uint64_t mantissa = 0;
        readDigits(mantissa);
        auto count = m_p - digits;
        if (count == 0)
            return false;
        std::size_t places = 0;
        if (*m_p == '.') {
            const char* const fraction = ++m_p;
            readDigits(mantissa);
            places = static_cast<std::size_t>(m_p - fraction);
            count += m_p - fraction;
        }
        constexpr int digitsOf64Bits = 19;
        if (!endsToken() || count > digitsOf64Bits || mantissa > exactIntegers)
            return anyNumber(first, value);
        // Two exact numbers give a correctly rounded quotient.
        value = static_cast<double>(mantissa) / exactPower[places];
        if (negative)
            value = -value;
        return true;
    }

    /// At the end of the line, a carriage return before it included.
    bool atLineEnd() const { return *m_p == '\n' || (*m_p == '\r' && m_p[1] == '\n'); }

private:
    bool endsToken() const { return isBlank(*m_p) || atLineEnd(); }

    void readDigits(std::uint64_t& mantissa)
    {
        for (; isDigit(*m_p); ++m_p)
            mantissa = mantissa * 10 + static_cast<std::uint64_t>(*m_p - '0');
    }

    bool anyNumber(const char* first, double& value)
    {
        // Printable ASCII only: everything else may be a blank, or no character of its own.
        while (*m_p > ' ' && *m_p < '\x7f')
            ++m_p;
        if (!endsToken())
            return false;
        value = numberFromToken(first, m_p);
        return true;
    }

    const char* m_p;
};

/// Reads one line as an ordinary record.
/// @param p  start of the line; its end afterwards, or unchanged where the line is something else
bool readRecord(const char*& p, const char* last, MapPosition& position, double& mut)
{
    RecordReader line(p);
    std::array<double, 4> numbers{0.0, 0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        line.skipBlanks();
        if (i == 3 && line.atLineEnd())
            break;
        if (!line.number(numbers[i]))
            return false;
    }
    const char* const end =
        *line.position() == '\n' ? line.position() : lineEnd(line.position(), last);
    position = {numbers[0], numbers[1]};
    mut = pixelMut(numbers[2], numbers[3]);
    p = end;
    return true;
}

/// Text of a line as the toolkit's text stream reads it. False where the bytes are not valid.
bool decodeLine(const char* first, const char* last, MapEncoding encoding, QString& text)
{
    const auto size = static_cast<int>(last - first);
    if (encoding != MapEncoding::Utf8) {
        text = QString::fromLatin1(first, size);
    } else {
        // Only the start of a file may hold a byte order mark; here it is a character.
        QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
        constexpr int utf8 = 106;
        text = QTextCodec::codecForMib(utf8)->toUnicode(first, size, &state);
        if (state.invalidChars > 0 || state.remainingChars > 0)
            return false;
    }
    text.remove(QLatin1Char('\r'));
    return true;
}

/// ASCII without the characters that switch an encoding with several sets from one to another.
bool isPlainAscii(const char* first, const char* last)
{
    constexpr char shiftOut = 0x0e;
    constexpr char shiftIn = 0x0f;
    constexpr char escape = 0x1b;
    unsigned unknown = 0;
    for (; first != last; ++first)
        unknown |= static_cast<unsigned>(*first < 0) | static_cast<unsigned>(*first == shiftOut) |
                   static_cast<unsigned>(*first == shiftIn) |
                   static_cast<unsigned>(*first == escape);
    return unknown == 0;
}

} // namespace

double pixelMut(double transmitted, double incident)
{
    if (incident == 0.0)
        return transmitted;
    if (transmitted == 0.0)
        return 1.0;
    return std::log(incident / transmitted);
}

QStringList leadingTokens(const QString& line)
{
    QStringList tokens;
    const QChar* p = line.constBegin();
    const QChar* const end = line.constEnd();
    const auto isSpace = [](QChar c) { return c.isSpace(); };
    while (tokens.size() < tokensNeeded) {
        const QChar* const first = std::find_if_not(p, end, isSpace);
        if (first == end)
            break;
        p = std::find_if(first, end, isSpace);
        tokens.append(QString(first, static_cast<int>(p - first)));
    }
    return tokens;
}

bool readMapLine(const QString& line, MapChunk& chunk)
{
    const QStringList tokens = leadingTokens(line);
    if (!tokens.isEmpty() && tokens[0].startsWith(QLatin1Char('#'))) {
        chunk.header.push_back(line);
        return true;
    }
    if (tokens.size() < 3)
        return true;
    const double incident = tokens.size() > 3 ? numberFromText(tokens[3]) : 1.0;
    const double mut = pixelMut(numberFromText(tokens[2]), incident);
    const MapPosition position{numberFromText(tokens[0]), numberFromText(tokens[1])};
    return chunk.mut.append(&mut, 1) && chunk.positions.append(&position, 1);
}

MapLinesResult readMapLines(const char* first, const char* last, MapEncoding encoding,
                            MapChunk& chunk)
{
    if (encoding == MapEncoding::Other ||
        (encoding == MapEncoding::Ascii && !isPlainAscii(first, last)))
        return MapLinesResult::NeedsToolkit;
    const std::size_t atMost =
        chunk.mut.size() + static_cast<std::size_t>(last - first) / shortestRecord + 1;
    if (!chunk.mut.reserve(atMost) || !chunk.positions.reserve(atMost))
        return MapLinesResult::NoMemory;
    std::size_t count = chunk.mut.size();
    QString text;
    for (const char* p = first; p != last; ++p) {
        if (*p == '\n')
            continue;
        if (readRecord(p, last, chunk.positions[count], chunk.mut[count])) {
            ++count;
            continue;
        }
        const char* const end = lineEnd(p, last);
        if (!decodeLine(p, end, encoding, text))
            return MapLinesResult::NeedsToolkit;
        chunk.mut.resize(count);
        chunk.positions.resize(count);
        if (!readMapLine(text, chunk))
            return MapLinesResult::NoMemory;
        count = chunk.mut.size();
        p = end;
    }
    chunk.mut.resize(count);
    chunk.positions.resize(count);
    return MapLinesResult::Read;
}

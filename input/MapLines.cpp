#include "input/MapLines.h"

#include "analysis/Constants.h"
#include "text/LineTokens.h"
#include "text/NumberText.h"
#include "text/PowersOfTen.h"
#include "text/TextBytes.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

namespace
{

/// Bytes of the shortest record, "1 1 1" and a line feed.
constexpr std::size_t shortestRecord = 6;

/// Integers up to here are exact doubles.
constexpr std::uint64_t exactIntegers = std::uint64_t{1} << 53;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isUsualBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// The line feed of the line that p stands in; there is one.
const char* lineEnd(const char* p, const char* last)
{
    return static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(last - p)));
}

/// Reads the tokens of ordinary records: numbers of ASCII between blanks and tabulators. What it
/// does not know it leaves alone. 1.3 to 1.7 times as fast as fast_float, twice as std::from_chars
/// (bench_Libraries --benchmark_filter=readNumbers).
class RecordReader
{
public:
    explicit RecordReader(const char* p) : m_p(p) {}

    const char* position() const { return m_p; }

    void skipBlanks()
    {
        while (isUsualBlank(*m_p))
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
        value = static_cast<double>(mantissa) / exactPowersOfTen[places];
        if (negative)
            value = -value;
        return true;
    }

    /// At the end of the line, a carriage return before it included.
    bool atLineEnd() const { return *m_p == '\n' || (*m_p == '\r' && m_p[1] == '\n'); }

private:
    bool endsToken() const { return isUsualBlank(*m_p) || atLineEnd(); }

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
        value = numberFromToken({first, static_cast<std::size_t>(m_p - first)});
        return true;
    }

    const char* m_p;
};

/// What a record says of a pixel.
struct Intensities {
    double transmitted = 0.0;
    double incident = 1.0;
    bool both = false;
};

/// Reads one line as an ordinary record.
/// @param p  start of the line; its end afterwards, or unchanged where the line is something else
bool readRecord(const char*& p, const char* last, MapPosition& position, Intensities& seen)
{
    RecordReader line(p);
    std::array<double, 4> numbers{0.0, 0.0, 0.0, 1.0};
    seen.both = true;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        line.skipBlanks();
        if (i == 3 && line.atLineEnd()) {
            seen.both = false;
            break;
        }
        if (!line.number(numbers[i]))
            return false;
    }
    const char* const end =
        *line.position() == '\n' ? line.position() : lineEnd(line.position(), last);
    position = {numbers[0], numbers[1]};
    seen.transmitted = numbers[2];
    seen.incident = numbers[3];
    p = end;
    return true;
}

/// Not-a-number where there are not two of them, or they are no counts.
float varianceOf(const Intensities& seen, MapChunk& chunk)
{
    chunk.hasReadings = chunk.hasReadings || seen.both;
    return static_cast<float>(
        seen.both ? countingVariance({seen.incident, seen.transmitted}, *chunk.gains) : notANumber);
}

/// Sorts any line into the chunk. False where the memory is refused.
bool readAnyLine(std::string_view line, MapChunk& chunk)
{
    const MapTokens tokens = mapTokens(line);
    if (!tokens[0].empty() && tokens[0].front() == '#') {
        chunk.header.emplace_back(line.data(), static_cast<int>(line.size()));
        return true;
    }
    if (tokens[2].empty())
        return true;
    const bool both = !tokens[3].empty();
    const Intensities seen{numberFromToken(tokens[2]), both ? numberFromToken(tokens[3]) : 1.0,
                           both};
    const double mut = pixelMut(seen.transmitted, seen.incident);
    const MapPosition position{numberFromToken(tokens[0]), numberFromToken(tokens[1])};
    if (!chunk.mut.append(&mut, 1) || !chunk.positions.append(&position, 1))
        return false;
    const float variance = chunk.gains ? varianceOf(seen, chunk) : 0.0F;
    return !chunk.gains || chunk.variance.append(&variance, 1);
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

MapTokens mapTokens(std::string_view line)
{
    MapTokens result;
    LineTokens tokens(line);
    for (std::string_view& token : result)
        token = tokens.next();
    return result;
}

bool readMapLines(const char* first, const char* last, MapChunk& chunk)
{
    const std::size_t atMost =
        chunk.mut.size() + static_cast<std::size_t>(last - first) / shortestRecord + 1;
    if (!chunk.mut.reserve(atMost) || !chunk.positions.reserve(atMost) ||
        (chunk.gains && !chunk.variance.reserve(atMost)))
        return false;
    std::size_t count = chunk.mut.size();
    const auto end = [&chunk, &count] {
        chunk.mut.resize(count);
        chunk.positions.resize(count);
        chunk.variance.resize(chunk.gains ? count : 0);
    };
    Intensities seen;
    std::string scratch;
    for (const char* p = first; p != last; ++p) {
        if (*p == '\n')
            continue;
        if (readRecord(p, last, chunk.positions[count], seen)) {
            chunk.mut[count] = pixelMut(seen.transmitted, seen.incident);
            if (chunk.gains)
                chunk.variance[count] = varianceOf(seen, chunk);
            ++count;
            continue;
        }
        const char* const stop = lineEnd(p, last);
        const std::string_view line(p, static_cast<std::size_t>(stop - p));
        end();
        if (!readAnyLine(withoutReturns(line, scratch), chunk))
            return false;
        count = chunk.mut.size();
        p = stop;
    }
    end();
    return true;
}

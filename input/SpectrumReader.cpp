#include "input/SpectrumReader.h"

#include "analysis/BraggLaw.h"
#include "system/AvailableMemory.h"
#include "system/InputFile.h"
#include "text/LineReader.h"
#include "text/LineTokens.h"
#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

namespace
{

/// A line of so many tokens after the start is a row of data; what follows them is not needed.
constexpr std::size_t rowTokens = 5;

/// The file is read in pieces of this size.
constexpr std::size_t pieceBytes = std::size_t{1} << 16;

/// A file up to this size is read without asking how much memory there is.
constexpr std::int64_t smallFile = std::int64_t{1} << 24;

/// ln(I0 / I); 0 where an intensity makes no sense.
double absorption(double incident, double transmitted)
{
    if (transmitted == 0.0)
        return 0.0;
    const double ratio = incident / transmitted;
    return ratio > 0.0 ? std::log(ratio) : 0.0;
}

} // namespace

bool SpectrumReader::readLines(const char* first, const char* last)
{
    while (first != last) {
        const void* const feed = std::memchr(first, '\n', static_cast<std::size_t>(last - first));
        const char* const end = static_cast<const char*>(feed);
        const std::string_view line(first, static_cast<std::size_t>(end - first));
        if (!readLine(withoutReturns(line, m_scratch)))
            return false;
        first = end + 1;
    }
    return true;
}

bool SpectrumReader::readLine(std::string_view line)
{
    if (!m_started) {
        readHeaderLine(line);
        return true;
    }
    std::array<std::string_view, rowTokens> row;
    LineTokens tokens(line);
    for (std::string_view& token : row)
        token = tokens.next();
    if (row.back().empty()) {
        readHeaderLine(line);
        return true;
    }
    if (!hasRoom())
        return false;
    const double angle = numberFromToken(row[1]);
    const Readings readings{numberFromToken(row[3]), numberFromToken(row[4])};
    m_points.push_back({angle, photonEnergy(angle, m_spacing),
                        absorption(readings.incident, readings.transmitted)});
    if (m_readings != nullptr)
        m_readings->push_back(readings);
    return true;
}

void SpectrumReader::readHeaderLine(std::string_view line)
{
    LineTokens tokens(line);
    bool spacingFound = false;
    for (std::string_view token = tokens.next(); !token.empty();) {
        const std::string_view following = tokens.next();
        m_started = m_started || token == "Offset";
        if (token == "D=" && !spacingFound && !following.empty()) {
            m_spacing = numberFromToken(following);
            spacingFound = true;
        }
        token = following;
    }
}

/// For another point. A list that is full moves to one of twice its size, and both are there then.
bool SpectrumReader::hasRoom() const
{
    constexpr std::size_t all = sizeof(SpectrumPoint) + sizeof(Readings);
    const std::size_t bytes = m_readings != nullptr ? all : sizeof(SpectrumPoint);
    return m_points.size() < m_points.capacity() || 3 * m_points.capacity() * bytes <= m_memory;
}

namespace
{

/// All lines of a text.
ReadOutcome readAll(const TextBytes& text, SpectrumReader& reader)
{
    LineReader lines(text.bytes(), pieceBytes);
    LineRange all;
    all.begin = text.start();
    lines.start(all);
    const char* first = nullptr;
    const char* last = nullptr;
    for (;;) {
        switch (lines.next(first, last)) {
        case LinesResult::Lines:
            if (!reader.readLines(first, last))
                return ReadOutcome::TooLarge;
            break;
        case LinesResult::End:
            return ReadOutcome::Read;
        case LinesResult::TooLarge:
            return ReadOutcome::TooLarge;
        case LinesResult::Unreadable:
            return ReadOutcome::Unreadable;
        }
    }
}

} // namespace

ReadOutcome readSpectrum(const ByteSource& file, SpectrumPoints& points, std::size_t memory,
                         std::vector<Readings>* readings)
{
    if (memory == 0)
        memory =
            file.size() > smallFile ? availableMemory() : std::numeric_limits<std::size_t>::max();
    if (file.size() > largestSpectrum || static_cast<std::size_t>(file.size()) > memory)
        return ReadOutcome::TooLarge;
    const TextBytes text(file, memory);
    if (text.outcome() != ReadOutcome::Read)
        return text.outcome();
    std::vector<Readings> found;
    SpectrumReader reader(memory, readings != nullptr ? &found : nullptr);
    const ReadOutcome outcome = readAll(text, reader);
    if (outcome != ReadOutcome::Read)
        return outcome;
    points = reader.takePoints();
    if (readings != nullptr)
        *readings = points.empty() ? std::vector<Readings>() : std::move(found);
    return ReadOutcome::Read;
}

ReadOutcome readSpectrum(const QString& path, SpectrumPoints& points)
{
    const std::unique_ptr<InputFile> file = InputFile::open(path);
    if (!file)
        return ReadOutcome::CannotOpen;
    try {
        return readSpectrum(*file, points);
    } catch (const std::bad_alloc&) {
        return ReadOutcome::TooLarge;
    }
}

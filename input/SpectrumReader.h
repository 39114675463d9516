#pragma once

#include "analysis/Constants.h"
#include "analysis/Spectrum.h"
#include "analysis/SpectrumNoise.h"
#include "system/ReadOutcome.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class ByteSource;

/// A beamline's spectrum file, line by line: a header, a line with the token "Offset", then a row
/// for each step of the monochromator with the Bragg angle (token 1, degrees) and the incident and
/// transmitted intensities (tokens 3 and 4). The token after "D=" is the lattice spacing.
class SpectrumReader
{
public:
    /// @param memory    bytes that the points may take while they are read
    /// @param readings  get the two intensities of each point; null where nobody asks
    explicit SpectrumReader(std::size_t memory, std::vector<Readings>* readings = nullptr)
        : m_memory(memory), m_readings(readings)
    {
    }

    /// Reads whole lines, each with its line feed.
    /// @return false where the points do not fit in memory
    bool readLines(const char* first, const char* last);

    /// Hands over the points read so far, in the file's order; none without a start marker.
    SpectrumPoints takePoints() { return std::move(m_points); }

private:
    bool readLine(std::string_view line);
    void readHeaderLine(std::string_view line);
    bool hasRoom() const;

    std::size_t m_memory;
    std::vector<Readings>* m_readings;
    bool m_started = false;
    double m_spacing = silicon111Spacing; ///< of the crystal's lattice planes, angstrom
    SpectrumPoints m_points;
    std::string m_scratch;
};

/// A file larger than this, a gigabyte, is no spectrum.
constexpr std::int64_t largestSpectrum = std::int64_t{1} << 30;

/// Reads all points of a spectrum file, in the file's order.
/// @param points  are set where the file was read; none where it holds no data
/// @param memory  bytes that the points may take; 0 for what is available
/// @param readings  are set like the points: what the detectors read; null where nobody asks
/// @return Read, TooLarge or Unreadable
ReadOutcome readSpectrum(const ByteSource& file, SpectrumPoints& points, std::size_t memory = 0,
                         std::vector<Readings>* readings = nullptr);

/// Reads a spectrum file by its path.
ReadOutcome readSpectrum(const QString& path, SpectrumPoints& points);

#pragma once

#include "analysis/Spectrum.h"

#include <optional>
#include <string_view>
#include <utility>

class QIODevice;

/// A beamline's spectrum file, token by token: a header, a line with the token "Offset", then a row
/// for each step of the monochromator with the Bragg angle (token 1, degrees) and the incident and
/// transmitted intensities (tokens 3 and 4). The token after "D=" is the lattice spacing.
///
/// Only what a line can still mean is kept of it, so that a line may have any length.
class SpectrumReader
{
public:
    void token(std::string_view text);
    void endLine()
    {
        if (m_line.tokens > 0)
            closeLine();
    }

    /// Hands over the points read so far, in the file's order; none without a start marker.
    SpectrumPoints takePoints() { return std::move(m_points); }

private:
    /// What is known of the line so far.
    struct Line {
        int tokens = 0; ///< counted up to five
        bool offset = false;
        bool spacingMarked = false;    ///< "D=" was found
        std::optional<double> spacing; ///< the number after the first "D="
        double angle = 0.0;            ///< degrees
        double incident = 0.0;
        double transmitted = 0.0;
    };

    void headerToken(std::string_view text);
    void dataToken(std::string_view text);
    void closeLine();
    void addPoint();

    Line m_line;
    bool m_started = false;
    double m_spacing = 3.1355316; ///< of the crystal's lattice planes, angstrom; Si(111)
    SpectrumPoints m_points;
};

/// All points of a spectrum file, in the file's order; empty where it holds no data.
SpectrumPoints readSpectrum(QIODevice& file);

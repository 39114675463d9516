#include "input/SpectrumReader.h"

#include "input/NumberText.h"
#include "input/TextSource.h"
#include "input/TokenScanner.h"

#include <cmath>

namespace
{

/// A line of more tokens after the start is a row of data.
constexpr int headerTokens = 4;

/// Bragg's law with the constants in which the energies of all results are defined: hc in
/// keV angstrom, and pi to ten decimals.
double photonEnergy(double angle, double spacing)
{
    return 12.398424360387684 / (2.0 * spacing * std::sin(angle * 3.1415926535 / 180.0)) * 1000.0;
}

/// ln(I0 / I); 0 where an intensity makes no sense.
double absorption(double incident, double transmitted)
{
    if (transmitted == 0.0)
        return 0.0;
    const double ratio = incident / transmitted;
    return ratio > 0.0 ? std::log(ratio) : 0.0;
}

double number(std::string_view text)
{
    return numberFromToken(text.data(), text.data() + text.size());
}

} // namespace

void SpectrumReader::token(std::string_view text)
{
    if (m_started && m_line.tokens > headerTokens)
        return; // a row has all that it needs
    if (m_started)
        dataToken(text);
    if (!m_started || m_line.tokens < headerTokens)
        headerToken(text);
    if (m_line.tokens <= headerTokens)
        ++m_line.tokens;
}

void SpectrumReader::headerToken(std::string_view text)
{
    if (m_line.spacingMarked && !m_line.spacing)
        m_line.spacing = number(text);
    else if (text == "D=")
        m_line.spacingMarked = true;
    if (text == "Offset")
        m_line.offset = true;
}

void SpectrumReader::dataToken(std::string_view text)
{
    if (m_line.tokens == 1)
        m_line.angle = number(text);
    else if (m_line.tokens == 3)
        m_line.incident = number(text);
    else if (m_line.tokens == 4)
        m_line.transmitted = number(text);
}

void SpectrumReader::closeLine()
{
    if (m_started && m_line.tokens > headerTokens) {
        addPoint();
    } else {
        m_started = m_started || m_line.offset;
        m_spacing = m_line.spacing.value_or(m_spacing);
    }
    m_line = Line();
}

void SpectrumReader::addPoint()
{
    m_points.push_back({m_line.angle, photonEnergy(m_line.angle, m_spacing),
                        absorption(m_line.incident, m_line.transmitted)});
}

SpectrumPoints readSpectrum(QIODevice& file)
{
    TextSource source(file);
    SpectrumReader reader;
    TokenScanner<SpectrumReader> scanner(reader);
    for (std::string_view piece; source.next(piece);)
        scanner.feed(piece);
    scanner.finish();
    return reader.takePoints();
}

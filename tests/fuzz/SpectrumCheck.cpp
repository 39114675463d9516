#include "input/AXafsData.h"
#include "input/SpectrumReader.h"
#include "tests/fuzz/ReaderChecks.h"
#include "tests/fuzz/SameNumber.h"
#include "tests/model/LiteralSpectrum.h"
#include "tests/support/ArrayBytes.h"

namespace
{

const char* pointDifference(const SpectrumPoints& points, const literal::Spectrum& expected)
{
    if (points.size() != expected.points.size())
        return "number of points";
    for (std::size_t i = 0; i < points.size(); ++i) {
        const literal::SpectrumPoint& point = expected.points[i];
        if (!sameNumber(points[i].angle, point.angle))
            return "angle";
        if (!sameNumber(points[i].energy, point.energy))
            return "energy";
        if (!sameNumber(points[i].mut, point.mut))
            return "mu-t";
    }
    return nullptr;
}

bool sameLine(const VictreenLine& line, const formulas::Victreen& expected)
{
    return sameNumber(line.c, expected.c) && sameNumber(line.a, expected.a) &&
           sameNumber(line.b, expected.b);
}

const char* fitDifference(const AXafsData& data, const literal::Spectrum& expected)
{
    if (!sameLine(data.preVic, expected.pre))
        return "pre-edge line";
    if (!sameLine(data.postVic, expected.post))
        return "post-edge line";
    if (!sameNumber(data.edgeJump(), expected.edgeJump()))
        return "edge jump";
    if (!sameNumber(data.edgeJumpNoC(), expected.edgeJumpNoC()))
        return "two-term edge jump";
    for (const double energy : {0.0, 8300.0, 8400.0}) {
        if (!sameNumber(data.normalizedAt(energy), expected.normalizedAt(energy)))
            return "normalized value";
    }
    return nullptr;
}

} // namespace

const char* check::spectrumDifference(const QByteArray& text)
{
    AXafsData data;
    if (readSpectrum(ArrayBytes(text), data.points) != ReadOutcome::Read)
        return "outcome";

    literal::Spectrum expected;
    expected.edge = data.edge = 8350.0;
    expected.preEdgeEnd = data.preEdgeEnd = 8300.0;
    expected.postEdgeStart = data.postEdgeStart = 8400.0;
    expected.readBytes(QString(), text);

    if (const char* difference = pointDifference(data.points, expected))
        return difference;
    data.fitVictreens();
    return fitDifference(data, expected);
}

#include "examples/BeamlineFile.h"

#include "analysis/Constants.h"
#include "analysis/Victreen.h"

#include <cmath>

namespace
{

/// Silicon 111, angstrom; the file names it, and it need not be the program's own.
constexpr double latticeSpacing = 3.13551;

/// In degrees, with the digits by which the reader turns angles back.
double braggAngle(double energy)
{
    return std::asin(wavelength(energy) / (2.0 * latticeSpacing)) * 180.0 / piOfAngles;
}

QByteArray column(double value, int decimals, int width)
{
    return QByteArray::number(value, 'f', decimals).rightJustified(width);
}

} // namespace

QByteArray beamlineText(const QByteArray& title, const std::vector<ScanStep>& steps)
{
    if (steps.empty())
        return {};
    QByteArray text = "  " + title + "\n";
    text += "  Mono :  Si(111)       D=  " + QByteArray::number(latticeSpacing, 'f', 5) +
            " A    Initial angle= " + QByteArray::number(braggAngle(steps.front().energy), 'f', 5) +
            " deg\n";
    text +=
        "  Transmission    Points= " + QByteArray::number(static_cast<int>(steps.size())) + "\n\n";
    text += "  Angle(c)     Angle(o)  time/s           I0            I\n";
    text += "    Offset            0       0        0.000        0.000\n";
    for (const ScanStep& step : steps) {
        const double angle = braggAngle(step.energy);
        text += column(angle, 5, 10) + column(angle, 10, 15) + column(1.0, 2, 6) +
                column(step.incident, 1, 13) + column(step.transmitted, 1, 13) + "\n";
    }
    return text;
}

#include "formats/BeamlineText.h"

#include "analysis/BraggLaw.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace
{

QByteArray numberText(double value)
{
    return QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

/// The number near a first guess at which a rising or falling function comes nearest to a value.
template <class Function>
double nearestArgument(double guess, double value, const Function& function)
{
    constexpr int farthest = 8; // steps of a double
    double best = guess;
    double least = std::abs(function(guess) - value);
    for (const double direction : {-HUGE_VAL, HUGE_VAL}) {
        double x = guess;
        for (int i = 0; i < farthest && least > 0.0; ++i) {
            x = std::nextafter(x, direction);
            const double off = std::abs(function(x) - value);
            if (off < least) {
                least = off;
                best = x;
            }
        }
    }
    return best;
}

/// Planes that reflect all energies: silicon's if they do.
double spacingFor(const SpectrumPoints& points)
{
    constexpr double steepest = 80.0; // degrees, of the lowest energy
    const auto lower = [](const SpectrumPoint& a, const SpectrumPoint& b) {
        return a.energy < b.energy;
    };
    const double lowest = std::min_element(points.begin(), points.end(), lower)->energy;
    return std::max(silicon111Spacing,
                    hcElectronVoltAngstrom /
                        (2.0 * lowest * std::sin(steepest * piOfAngles / 180.0)));
}

QByteArray plain(QByteArray title)
{
    for (char& c : title)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
            c = ' ';
    return title;
}

} // namespace

BeamlineText beamlineText(const QByteArray& title, const SpectrumPoints& points)
{
    BeamlineText written;
    if (points.empty())
        return written;
    const double spacing = spacingFor(points);
    QByteArray text = "  converted: " + plain(title).left(200).replace("Offset", "offset");
    text.replace("D=", "d=");
    text += "\n  Mono : planes that carry the energies   D= " + numberText(spacing) +
            " A\n  readings below zero are no counts: only ln(I0 / I) is meant\n"
            "  Angle(c) Angle(o) time/s I0 I\n  Offset 0 0 0 0\n";
    const auto energyAt = [spacing](double degrees) { return photonEnergy(degrees, spacing); };
    const auto logarithm = [](double ratio) { return std::log(ratio); };
    const auto widen = [](double& largest, double read, double meant) {
        largest = std::max(largest, std::abs(read - meant));
    };
    for (const SpectrumPoint& point : points) {
        const double guess = std::exp(point.mut);
        if (!std::isnormal(guess))
            return {};
        const double ratio = nearestArgument(guess, point.mut, logarithm);
        const double degrees =
            nearestArgument(braggAngle(point.energy, spacing), point.energy, energyAt);
        widen(written.mutChange, std::log(ratio), point.mut);
        widen(written.energyChange, energyAt(degrees), point.energy);
        const QByteArray angle = numberText(degrees);
        text += ' ' + angle + ' ' + angle + " 1 -" + numberText(ratio) + " -1\n";
    }
    written.text = std::move(text);
    return written;
}

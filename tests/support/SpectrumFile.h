#pragma once

#include "analysis/Spectrum.h"
#include "tests/support/Files.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <QtGlobal>

#include <cmath>
#include <functional>
#include <vector>

/// Spectra made for tests, and files of them in the beamline's format.
namespace spectra
{

/// Lattice spacing that the files tell, angstrom.
constexpr double spacing = 3.1355;

/// Energies from first to last in steps, eV.
inline std::vector<double> grid(double first, double last, double step)
{
    std::vector<double> energies;
    for (int i = 0; first + i * step <= last; ++i)
        energies.push_back(first + i * step);
    return energies;
}

/// A spectrum of mu-t over energy; the angle is that of the step's number.
inline SpectrumPoints sampled(const std::vector<double>& energies,
                              const std::function<double(double energy)>& mut)
{
    SpectrumPoints points;
    for (const double energy : energies)
        points.push_back({static_cast<double>(points.size()), energy, mut(energy)});
    return points;
}

/// c + a l^3 + b l^4 with l = 12398.424360387684 / E.
inline std::function<double(double)> victreen(double c, double a, double b)
{
    return [=](double energy) {
        const double l = 12398.424360387684 / energy;
        return c + a * std::pow(l, 3) + b * std::pow(l, 4);
    };
}

/// One background line below the edge, another from the edge on.
inline std::function<double(double)> step(double edge, const std::function<double(double)>& pre,
                                          const std::function<double(double)>& post)
{
    return [=](double energy) { return energy < edge ? pre(energy) : post(energy); };
}

inline QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 17);
}

/// The text of a beamline file of these points: the angle by Bragg's law, I0 and I so that
/// ln(I0 / I) is the mu-t.
inline QByteArray fileText(const SpectrumPoints& points)
{
    QByteArray text = "  9809 made\n made for a test\n  Mono :  crystal  D=  " + number(spacing) +
                      " A   Initial angle= 16.6 deg\n\n  Angle(c) Angle(o) time/s 2 3\n" +
                      "    Offset 0 0 0.000 0.000\n";
    for (const SpectrumPoint& point : points) {
        const double sine = 12398.424360387684 / (2.0 * spacing * point.energy);
        const QByteArray angle = number(std::asin(sine) / 3.1415926535 * 180.0);
        text += "  " + angle + "  " + angle + "  1.00  " + number(1e6 * std::exp(point.mut)) +
                "  1000000\n";
    }
    return text;
}

/// Writes a file of these bytes into a folder.
/// @return its path
inline QString write(const QTemporaryDir& dir, const char* name, const QByteArray& bytes)
{
    return create(dir.filePath(QString::fromLatin1(name)), bytes);
}

} // namespace spectra

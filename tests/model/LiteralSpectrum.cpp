#include "tests/model/LiteralSpectrum.h"

#include "tests/model/LiteralSolver.h"
#include "tests/support/PlainText.h"

#include <QFile>
#include <QStringList>

#include <cmath>

namespace literal
{

namespace
{

double wavelength(double energy)
{
    return 12398.424360387684 / energy;
}

double threeTermValue(const ThreeTerms& line, double energy)
{
    const double l = wavelength(energy);
    return line.c + l * l * l * (line.a + line.b * l);
}

double twoTermValue(const ThreeTerms& line, double energy)
{
    const double l = wavelength(energy);
    return l * l * l * (line.a + line.b * l);
}

void widen(double value, double& min, double& max)
{
    if (value < min)
        min = value;
    if (value > max)
        max = value;
}

void fit(const QVector<SpectrumPoint>& selected, ThreeTerms& noC, ThreeTerms& withC)
{
    double n = 0.0;
    double s3 = 0.0;
    double s4 = 0.0;
    double s6 = 0.0;
    double s7 = 0.0;
    double s8 = 0.0;
    double sm = 0.0;
    double sm3 = 0.0;
    double sm4 = 0.0;
    for (const SpectrumPoint& point : selected) {
        const double l = wavelength(point.energy);
        const double m = point.mut;
        const double l3 = l * l * l;
        const double l4 = l * l3;
        n += 1.0;
        s3 += l3;
        s4 += l4;
        s6 += l3 * l3;
        s7 += l3 * l4;
        s8 += l4 * l4;
        sm += m;
        sm3 += m * l3;
        sm4 += m * l4;
    }
    noC.a = (sm3 * s8 - sm4 * s7) / (s6 * s8 - s7 * s7);
    noC.b = sm3 / s7 - noC.a * s6 / s7;
    const QVector<double> x = solve({{n, s3, s4}, {s3, s6, s7}, {s4, s7, s8}}, {sm, sm3, sm4});
    withC = {x[0], x[1], x[2]};
}

} // namespace

bool Spectrum::read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return readBytes(path, file.readAll());
}

bool Spectrum::readBytes(const QString& path, const QByteArray& bytes)
{
    fileName = path;
    angleMin = energyMin = mutMin = 1e300;
    angleMax = energyMax = mutMax = -1e300;
    points.clear();
    valid = false;
    double d = 3.1355316;
    bool started = false;
    for (const QString& line : plain::text(bytes).split(QLatin1Char('\n'))) {
        const QStringList tokens = line.simplified().split(QLatin1Char(' '));
        if (started && tokens.size() > 4) {
            processRow(tokens, d);
            continue;
        }
        if (tokens.contains(QStringLiteral("Offset")))
            started = true;
        const int mark = tokens.indexOf(QStringLiteral("D="));
        if (mark >= 0 && mark + 1 < tokens.size())
            d = tokens[mark + 1].toDouble();
    }
    if (!started || points.isEmpty())
        return false;
    valid = true;
    fitVictreens();
    return true;
}

void Spectrum::processRow(const QStringList& tokens, double d)
{
    const double theta = tokens[1].toDouble();
    const double i0 = tokens[3].toDouble();
    const double i = tokens[4].toDouble();
    const double energy =
        12.398424360387684 / (2 * d * std::sin(theta * 3.1415926535 / 180)) * 1000;
    double mut = 0.0;
    if (i != 0 && i0 / i > 0)
        mut = std::log(i0 / i);
    points.append({theta, energy, mut});
    widen(theta, angleMin, angleMax);
    widen(energy, energyMin, energyMax);
    widen(mut, mutMin, mutMax);
}

void Spectrum::fitVictreens()
{
    if (points.isEmpty())
        return;
    QVector<SpectrumPoint> pre;
    QVector<SpectrumPoint> post;
    for (const SpectrumPoint& point : points) {
        if (point.energy < preEdgeEnd)
            pre.append(point);
        if (point.energy > postEdgeStart)
            post.append(point);
    }
    fit(pre, preVicNoC, preVic);
    fit(post, postVicNoC, postVic);
}

double Spectrum::preVicAt(double energy) const
{
    return threeTermValue(preVic, energy);
}

double Spectrum::postVicAt(double energy) const
{
    return threeTermValue(postVic, energy);
}

double Spectrum::edgeJump() const
{
    return postVicAt(edge) - preVicAt(edge);
}

double Spectrum::edgeJumpNoC() const
{
    return twoTermValue(postVicNoC, edge) - twoTermValue(preVicNoC, edge);
}

double Spectrum::normalizedPoint(int i) const
{
    const SpectrumPoint& point = points[i];
    return (point.mut - preVicAt(point.energy)) /
           (postVicAt(point.energy) - preVicAt(point.energy));
}

double Spectrum::normalizedAt(double energy) const
{
    if (points.size() < 2 || energy < points.first().energy || energy > points.last().energy)
        return 0.0;
    for (int i = 1; i < points.size(); ++i) {
        const double e0 = points[i - 1].energy;
        const double e1 = points[i].energy;
        if (e0 <= energy && energy <= e1) {
            const double n0 = normalizedPoint(i - 1);
            const double n1 = normalizedPoint(i);
            return n0 + (energy - e0) * (n1 - n0) / (e1 - e0);
        }
    }
    return 0.0;
}

bool Selector::muTAt(double energy, double& result) const
{
    SpectrumPoint previous;
    for (const SpectrumPoint& point : spectrum.points) {
        if (point.energy >= energy) {
            result = previous.mut + (point.mut - previous.mut) / (point.energy - previous.energy) *
                                        (energy - previous.energy);
            if (useVic)
                result -= vicIsPre ? spectrum.preVicAt(energy) : spectrum.postVicAt(energy);
            return true;
        }
        previous = point;
    }
    return false;
}

} // namespace literal
